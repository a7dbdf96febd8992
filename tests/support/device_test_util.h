// The sample recorder of the tests and a way to put it on the emulated reader.
#pragma once

#include <gtest/gtest.h>

#include <QDate>
#include <QDir>
#include <QString>

#include "device/recorder_image.h"
#include "testsupport/test_installation.h"

// A Japanese normal recorder "A00042" worn for `days` days up to lastDay, with the
// installation's recorder numbers.
inline RecorderImageOptions SampleRecorder(int days, const QDate& lastDay = QDate(2024, 6, 30)) {
  return {.kind = RecorderKind::BrioNormal, .days = days, .cpuNo = QStringLiteral("A00042"), .lastDay = lastDay,
          .numbers = RecorderNumbers::FromConfig()};
}

// Makes the recorder the only image on the installation's emulated reader.
inline void PlaceRecorder(const TestInstallation& inst, const RecorderImageOptions& o) {
  QDir(inst.readerPath()).removeRecursively();
  QDir().mkpath(inst.readerPath());
  QString error;
  ASSERT_TRUE(WriteRecorderImage(o, inst.readerPath() + QStringLiteral("/recorder.img"), &error))
      << error.toStdString();
}
