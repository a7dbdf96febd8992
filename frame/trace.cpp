#include "frame/trace.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#include "frame/config.h"
#include "frame/shared_values.h"
#include "frame/vbformat.h"

namespace {

// Levels are nearly always one digit; that case must stay cheap because a level-0
// line below the threshold is the most common call in the program.
int levelNumber(const QString& level) {
  if (level.size() == 1 && level[0] >= u'0' && level[0] <= u'9') return level[0].unicode() - u'0';
  return CIntVb(level);
}

QString fitName(const QString& name) {
  // Short names get one blank more than the width; the log has always looked so.
  if (name.size() < 20) return name.leftJustified(21, u' ');
  if (name.size() > 20) return name.left(20);
  return name;
}

void rotateIfFull(const QString& path) {
  const QFileInfo info(path);
  if (!info.exists() || info.size() <= kTraceRotateBytes) return;
  const double seconds = QTime::currentTime().msecsSinceStartOfDay() / 1000.0;
  const QString target = info.absoluteFilePath() + u'.' + QString::number(seconds, 'f', 2);
  // A second rotation within the same clock reading overwrites the first.
  QFile::remove(target);
  if (!QFile::rename(info.absoluteFilePath(), target)) {
    QFile::copy(info.absoluteFilePath(), target);
    QFile::remove(info.absoluteFilePath());
  }
}

}  // namespace

void WriteTrace(const QString& level, const QString& name, const QString& message,
                const QString& path) {
  if (levelNumber(level) < levelNumber(GetLogLevel())) return;

  QString file = path;
  if (file.isEmpty()) file = Ini_GetLogPath() + QStringLiteral("/trace.log");
  rotateIfFull(file);

  const QString line = QDateTime::currentDateTime().toString(QStringLiteral("yyyy/MM/dd HH:mm:ss")) +
                       u'|' + level + u'|' + fitName(name) + u'|' + message + QStringLiteral("\r\n");
  QFile out(file);
  // The log names people and their figures: a new log is its owner's alone.
  if (!out.open(QIODevice::WriteOnly | QIODevice::Append, QFileDevice::ReadOwner | QFileDevice::WriteOwner))
    return;
  out.write(line.toUtf8());
}
