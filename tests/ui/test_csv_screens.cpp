// The progress screen and the CSV screens on the offscreen platform: the operation runs
// once the window is shown, Cancel is seen between users, and the export screen offers
// the user's measured days.
#include <QDir>
#include <QTimer>
#include <gtest/gtest.h>

#include "testsupport/sample_user.h"
#include "ui/csv_dialogs.h"
#include "ui/frmProgressBar.h"

namespace {

class CsvScreens : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(inst_.isValid());
    ASSERT_TRUE(OpenDatabaseWithSampleUser(inst_, db_, QStringLiteral("U000000001")).isEmpty());
    const RecorderImageOptions o{.kind = RecorderKind::BrioZr, .days = 10};
    ASSERT_TRUE(StoreRecorderDays(db_, QStringLiteral("U000000001"), o).isEmpty());
    UserRecord second = SampleUser(QStringLiteral("U000000002"));
    second.LOGIN_ID = QStringLiteral("ken");
    second.FIRST_NAME = QStringLiteral("健");
    second.NICK_NAME.clear();
    ASSERT_TRUE(VTDB_SetUserInfo(db_, second));
    ASSERT_TRUE(StoreRecorderDays(db_, QStringLiteral("U000000002"), o).isEmpty());
  }

  // Saves a picture of a window for a person to look at (beside the build).
  static void grab(QWidget& w, const char* name) {
    w.adjustSize();
    w.grab().save(QDir::temp().filePath(QString::fromLatin1(name)));
  }

  TestInstallation inst_{QStringLiteral("ja")};
  VtDatabase db_;
};

}  // namespace

TEST_F(CsvScreens, ProgressScreenRunsItsExportWhenShownAndCancelStopsAfterTheUser) {
  const QString folder = inst_.path(QStringLiteral("temp/out"));
  QDir().mkpath(folder);
  frmProgressBar form(&db_);
  form.ProcSetExecParam(ProgressDriver::kCsvExport, QStringLiteral("CSV 出力"), QStringLiteral("出力しています..."),
                        QStringLiteral("キャンセル"), 2, 0, true);
  form.ProcSetCSVExportParam(QStringLiteral("20240101"), QStringLiteral("20241231"), 0, folder,
                             {QStringLiteral("U000000001"), QStringLiteral("U000000002")});
  EXPECT_EQ(form.findChild<QLabel*>(QStringLiteral("lblStatus"))->text(), QStringLiteral("出力しています..."));
  grab(form, "frmProgressBar.png");
  // The click arrives through the window's events while the first user is written.
  QTimer::singleShot(0, form.cmdCancel, [&form] { form.cmdCancel->click(); });
  form.exec();
  EXPECT_TRUE(form.driver().hasRun() && form.ProcGetCancelParam());
  int written = 0, result = 0;
  QString log;
  form.ProcGetCSVExportParam(written, log, result);
  EXPECT_EQ(std::pair(written, QDir(folder).entryList(QDir::Files).size()), std::pair(1, qsizetype{1}));
}

TEST_F(CsvScreens, ExportScreenOffersTheMeasuredDaysAndRefusesAMissingFolder) {
  RecordingDialog dialogs;
  ScopedDialogInterface guard(&dialogs);
  frmCsvExport form(db_, QStringLiteral("U000000001"));
  EXPECT_EQ(std::pair(form.dtDateFrom->date(), form.dtDateTo->date()), std::pair(QDate(2024, 6, 21), QDate(2024, 6, 30)));
  EXPECT_TRUE(form.optCurrentUser->isChecked());
  EXPECT_EQ(form.cmbFormat->count(), 3);
  form.txtFolder->setText(inst_.path(QStringLiteral("no/such/folder")));
  grab(form, "frmCsvExport.png");
  form.btnOK_Click();
  ASSERT_EQ(dialogs.shown.size(), 1u);
  EXPECT_EQ(dialogs.shown[0].text, CsvDialogText("CAPTION_NO_FOLDER"));
  // Without a current user only "every user" is offered.
  frmCsvExport all(db_, QString());
  EXPECT_TRUE(!all.optCurrentUser->isEnabled() && all.optAllUsers->isChecked());
}

TEST_F(CsvScreens, LogScreenShowsTheLogForCopying) {
  frmCsvLog log(QStringLiteral("2 件中 1 件のファイルを取り込みました。"),
                QStringLiteral("CSVインポート成功@ファイル名=a_b_20240101.csv\r\nCSVインポートエラー@ファイル名=x.csv@取込対象外のファイル名です。\r\n"));
  EXPECT_EQ(log.txtLog->toPlainText().count(u'\n'), 2);
  EXPECT_TRUE(log.txtLog->isReadOnly());
  grab(log, "frmCsvLog.png");
  frmCsvImport import(db_);
  import.addSources({inst_.path(QStringLiteral("temp")), inst_.path(QStringLiteral("temp"))});
  EXPECT_EQ(import.lstSources->count(), 1);
  grab(import, "frmCsvImport.png");
}
