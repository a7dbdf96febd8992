// Small helpers shared by the device tests.
#pragma once

#include <QString>

#include "testsupport/test_installation.h"

// True when the installation's trace log holds the line "|level|name|message" (the
// log pads short names to a fixed width).
inline bool Logged(const TestInstallation& inst, const QString& level, const QString& name,
                   const QString& message) {
  QString shownName = name;
  if (name.size() < 20) shownName = name.leftJustified(21, QLatin1Char(' '));
  else if (name.size() > 20) shownName = name.left(20);
  return inst.traceText().contains(QLatin1Char('|') + level + QLatin1Char('|') + shownName +
                                   QLatin1Char('|') + message);
}
