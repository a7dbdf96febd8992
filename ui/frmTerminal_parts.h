// What the source files of the main window share: its caption section and its trace lines.
#pragma once

#include <QString>

#include "frame/config.h"
#include "frame/trace.h"

namespace terminal {

inline const QString& Section() {
  static const QString s = QStringLiteral("USERSELECTION");
  return s;
}
inline const QString& FormName() {
  static const QString s = QStringLiteral("frmTerminal");
  return s;
}
inline QString Caption(const char* key) { return GetIniCaption(Section(), QString::fromLatin1(key)); }
inline void Trace0(const QString& text) { WriteTrace(QStringLiteral("0"), FormName(), text); }

}  // namespace terminal
