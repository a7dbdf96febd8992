// A test installation of one edition with a user whose days come from a generated
// recorder, plus one day stored as a CSV import would store it (metric, a short
// profile with "-1" and "0", one event set and the rest "9999").
#pragma once

#include <QFile>
#include <QStringDecoder>
#include <gtest/gtest.h>

#include <memory>

#include "exchange/exchange.h"
#include "frame/frame.h"
#include "store/store.h"
#include "testsupport/sample_user.h"
#include "testsupport/test_installation.h"

inline const QString kCsvUser = QStringLiteral("U000000001");

inline QString TestDataPath(const QString& relative) {
  return QStringLiteral(VANTORA_TEST_DATA "/") + relative;
}

class ExchangeTest : public ::testing::Test {
 protected:
  void SetUpEdition(const QString& lang) {
    inst_ = std::make_unique<TestInstallation>(lang);
    ASSERT_TRUE(inst_->isValid());
    english_ = lang == QLatin1String("en");
    const QString error = OpenDatabaseWithSampleUser(*inst_, db_, kCsvUser);
    ASSERT_TRUE(error.isEmpty()) << error.toStdString();
    UserRecord u = SampleUser(kCsvUser);
    u.FIRST_NAME = english_ ? QStringLiteral("Mary") : QStringLiteral("山田");
    u.LAST_NAME = english_ ? QStringLiteral("Jones") : QStringLiteral("花子");
    if (english_) {
      u.MIDDLE_NAME = QStringLiteral("Ann");
      u.NICK_NAME.clear();
    }
    ASSERT_TRUE(VTDB_ChangeUserInfo(db_, u));
    ASSERT_TRUE(GetUserInfo(db_, user_, kCsvUser));
  }

  // The edition with both kinds of stored days.
  void SetUpWithDays(const QString& lang) {
    SetUpEdition(lang);
    StoreRecorder();
    StoreImportedDay();
  }

  // Days 2024-06-23 to 2024-06-30 from a recorder (the last one still being recorded).
  void StoreRecorder() {
    const RecorderImageOptions o{.kind = english_ ? RecorderKind::BrioNormal : RecorderKind::BrioZr,
                                 .english = english_, .days = 8, .seed = 7, .unitFlag = english_ ? 1 : 0};
    const QString error = StoreRecorderDays(db_, kCsvUser, o);
    ASSERT_TRUE(error.isEmpty()) << error.toStdString();
  }

  // 2024-06-20 as an import stores it.
  void StoreImportedDay() {
    CsvRow r;
    const std::pair<QString CsvRow::*, const char*> fields[] = {
        {&CsvRow::MEASUREMENT_DAY, "20240620"}, {&CsvRow::RAW_MEASUREMENT_DAY, "20240620"}, {&CsvRow::WEEK_DAY, "4"},
        {&CsvRow::GENDAR, "1"}, {&CsvRow::AGE, "41"}, {&CsvRow::HEIGHT_CM, "158"}, {&CsvRow::WEIGHT_KG, "58.5"},
        {&CsvRow::TARGET_CAL, "250"}, {&CsvRow::ENERGY_EXPENDITURE, "1850"}, {&CsvRow::ACTIVITY, "240"},
        {&CsvRow::STEP_COUNT, "6400"}, {&CsvRow::TARGET_STEP, "9000"}, {&CsvRow::PACE_CM, "65"},
        {&CsvRow::DISTANCE_KM, "4.2"}, {&CsvRow::TARGET_TIME, "60"}, {&CsvRow::ACCUMULATION_TIME, "75"},
        {&CsvRow::LOWER_BOUND, "4"}, {&CsvRow::UPPER_BOUND, "9"}, {&CsvRow::PEDOMERA, "1"}, {&CsvRow::MEMORY_LOCK, "1"},
        {&CsvRow::MEASUREMENT_MODE, "1"}, {&CsvRow::ACTIVITY_LEVEL_SMALL, "3000"}, {&CsvRow::EXERCISE, "2.5"},
        {&CsvRow::ACT_LEVEL_BLOCK, "-1,0,3,-1,12"}};
    for (const auto& [field, value] : fields) r.*field = QString::fromLatin1(value);
    for (int i = 0; i <= 9; ++i) r.ACTIVITY_LEVEL[static_cast<size_t>(i)] = QString::number(100 * (10 - i));
    r.EVENT[0] = QStringLiteral("0830");
    r.EVENT[1] = QStringLiteral("9999");
    const QString receiveId = CreateReceiveId(db_);
    ASSERT_TRUE(VTDB_SetDayMeasurementForCSV(db_, receiveId, 1, user_, r));
    ASSERT_TRUE(VTDB_SetTimeMeasurementBlockForCSV(db_, receiveId, 1, user_, r));
  }

  // Exports to a file and gives its text decoded (CP932 for the Japanese default).
  QString Export(const QString& from, const QString& to, int kind, int maxRows = -1, bool* ok = nullptr) {
    const QString path = inst_->path(QStringLiteral("temp/out_%1_%2_%3.csv").arg(from, to).arg(kind));
    QFile::remove(path);
    CsvExportOptions options{.today = QDate(2024, 7, 1)};
    QString error;
    const bool written = MakeCSVData2(db_, kCsvUser, from, to, QStringLiteral("20240630"), path, user_, maxRows,
                                      kind, options, error);
    if (ok) *ok = written;
    if (!written) return QString();
    const QByteArray bytes = ReadBytes(path);
    if (english_) return QString::fromUtf8(bytes);
    QStringDecoder cp932("CP932");
    return cp932.decode(bytes);
  }

  std::unique_ptr<TestInstallation> inst_;
  VtDatabase db_;
  UserInfo user_;
  bool english_ = false;
};
