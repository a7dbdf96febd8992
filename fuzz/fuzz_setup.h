// What every fuzz target needs once: a configuration naming the recorder numbers, so
// that the kind decision sees real kinds, and a log folder the traces may fill.
#pragma once

#include <QDir>
#include <QString>

#include "device/recorder_image.h"
#include "frame/profile.h"
#include "frame/shared_values.h"

inline QString FuzzScratchFolder() {
  const QString dir = QDir::tempPath() + QStringLiteral("/vantora-fuzz-%1").arg(::getpid());
  QDir().mkpath(dir);
  return dir;
}

inline void FuzzConfigure() {
  const QString dir = FuzzScratchFolder();
  const QString conf = dir + QStringLiteral("/config.cnf");
  const RecorderNumbers n;
  const QString sys = QStringLiteral("SYSTEM");
  WriteIniString(conf, sys, QStringLiteral("VALID_VERSION_NUMBER"), QString::number(n.validVersion));
  WriteIniString(conf, sys, QStringLiteral("PMAL_NUMBER"), n.al);
  WriteIniString(conf, sys, QStringLiteral("PMBRIO_JPN_NUMBER"), n.brioJpn);
  WriteIniString(conf, sys, QStringLiteral("PMBRIO_ENG_NUMBER"), n.brioEng);
  WriteIniString(conf, sys, QStringLiteral("PMBRIO_KT200_NUMBER"), n.kt200);
  WriteIniString(conf, sys, QStringLiteral("PMBRIO_KT014_NUMBER"), n.kt014);
  WriteIniString(conf, sys, QStringLiteral("LANG"), QStringLiteral("0"));
  // Traces below this level are dropped: the decoders' dumps would only fill the disk.
  WriteIniString(conf, sys, QStringLiteral("LOG_LEVEL"), QStringLiteral("9"));
  WriteIniString(conf, sys, QStringLiteral("LOG_PATH"), dir);
  SetConfigPath(conf);
  SetLogLevel(QStringLiteral("9"));
}
