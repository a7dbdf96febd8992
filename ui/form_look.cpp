#include "ui/form_look.h"

#include <QPalette>
#include <QWidget>

#include "frame/shared_values.h"

void ApplyCommonFormLook(QWidget& form) {
  const std::uint32_t c = GetCommonFormBackColor();
  if (c != 0) {
    QPalette pal = form.palette();
    pal.setColor(QPalette::Window, QColor(static_cast<int>(c & 0xff), static_cast<int>((c >> 8) & 0xff),
                                          static_cast<int>((c >> 16) & 0xff)));
    form.setPalette(pal);
    form.setAutoFillBackground(true);
  }
  const QString font = GetCommonFontName();
  if (!font.isEmpty()) {
    QFont f = form.font();
    f.setFamily(font);
    form.setFont(f);
  }
}
