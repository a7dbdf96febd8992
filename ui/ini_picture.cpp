#include "ui/ini_picture.h"

#include <QAbstractButton>
#include <QIcon>
#include <QImageReader>
#include <QLabel>

#include "frame/catalogue.h"
#include "frame/trace.h"

bool LoadIniPicture(const QString& section, const QString& key, QPixmap& picture) {
  // GetIniPicturePath logs a missing file itself.
  const QString path = GetIniPicturePath(section, key);
  if (path.isEmpty()) return false;
  QImageReader reader(path);
  const QImage image = reader.read();
  if (image.isNull()) {
    WriteTrace(QStringLiteral("1"), QStringLiteral("SetIniPicture"),
               QStringLiteral("SetIniPicture ") + reader.errorString());
    return false;
  }
  picture = QPixmap::fromImage(image);
  return true;
}

void SetIniPicture(QLabel& target, const QString& section, const QString& key) {
  QPixmap picture;
  if (LoadIniPicture(section, key, picture)) target.setPixmap(picture);
}

void SetIniPicture(QAbstractButton& target, const QString& section, const QString& key) {
  QPixmap picture;
  if (!LoadIniPicture(section, key, picture)) return;
  target.setIcon(QIcon(picture));
  target.setIconSize(picture.size());
}
