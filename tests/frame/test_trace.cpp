#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <stdexcept>

#include "frame/shared_values.h"
#include "frame/trace.h"
#include "testsupport/test_installation.h"

namespace {

class Trace : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(inst.isValid()); }
  void fill(qint64 bytes) { ASSERT_TRUE(WriteBytes(inst.traceFile(), QByteArray(bytes, 'x'))); }
  QStringList rotated() const {
    return QDir(inst.logPath()).entryList({"trace.log.*"}, QDir::Files);
  }
  TestInstallation inst;
};

TEST_F(Trace, LineFormatAndNameWidth) {
  WriteTrace("0", "frmTerminal", "Form_Load Start");
  WriteTrace("1", "ExactlyTwentyChars__", "a|b");
  WriteTrace("2", "ANameThatIsLongerThanTwenty", "x");
  const QStringList lines = inst.traceText().split("\r\n", Qt::SkipEmptyParts);
  ASSERT_EQ(lines.size(), 3);
  const QRegularExpression stamp("^\\d{4}/\\d{2}/\\d{2} \\d{2}:\\d{2}:\\d{2}\\|");
  EXPECT_TRUE(stamp.match(lines[0]).hasMatch()) << lines[0].toStdString();
  // Names padded to 21 wide or cut at 20.
  EXPECT_TRUE(lines[0].endsWith("|0|frmTerminal          |Form_Load Start") &&
              lines[1].endsWith("|1|ExactlyTwentyChars__|a|b") && lines[2].endsWith("|2|ANameThatIsLongerTha|x"))
      << lines.join(u'\n').toStdString();
}

TEST_F(Trace, BelowTheThresholdNothingIsTouched) {
  SetLogLevel("1");
  // Even a configuration that would make the log folder fails to matter.
  QDir(inst.logPath()).removeRecursively();
  WriteTrace("0", "frmTerminal", "Form_Load Start");
  EXPECT_FALSE(QDir(inst.logPath()).exists());
  WriteTrace("1", "frmTerminal", "warned");
  EXPECT_TRUE(inst.traceText().contains("warned"));
  SetLogLevel("2");
  WriteTrace("1", "frmTerminal", "hidden");
  EXPECT_FALSE(inst.traceText().contains("hidden"));
}

TEST_F(Trace, LevelsMustBeNumbers) {
  EXPECT_THROW(WriteTrace("x", "n", "m"), std::invalid_argument);
  SetLogLevel("");
  EXPECT_THROW(WriteTrace("1", "n", "m"), std::invalid_argument);
}

TEST_F(Trace, RotatesOnlyAboveTheLimit) {
  fill(kTraceRotateBytes);
  WriteTrace("2", "n", "first");  // exactly at the limit: appended
  EXPECT_TRUE(rotated().isEmpty());
  EXPECT_GT(QFile(inst.traceFile()).size(), kTraceRotateBytes);
  WriteTrace("2", "n", "second");  // now above: moved aside first
  ASSERT_EQ(rotated().size(), 1);
  EXPECT_TRUE(rotated()[0].contains(QRegularExpression("^trace\\.log\\.\\d+\\.\\d+$")))
      << rotated()[0].toStdString();
  EXPECT_TRUE(!inst.traceText().contains("first") && inst.traceText().contains("second"));
  QFile old(inst.path("log/" + rotated()[0]));
  // The old file holds the filler and the "first" line, one character shorter than "second"'s.
  EXPECT_EQ(old.size(), kTraceRotateBytes + inst.traceText().size() - 1);
}

TEST_F(Trace, ExplicitPathAndEmptyLogFolder) {
  WriteTrace("2", "n", "elsewhere", inst.path("temp/other.log"));
  EXPECT_TRUE(QFile::exists(inst.path("temp/other.log")));
  inst.setConfig("SYSTEM", "LOG_PATH", "");
  WriteTrace("2", "n", "here");
  EXPECT_TRUE(QFile::exists(inst.path("bin/trace.log")));
}

}  // namespace
