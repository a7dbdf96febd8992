#include <gtest/gtest.h>

#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QStringEncoder>

#include "frame/catalogue.h"
#include "frame/shared_values.h"
#include "testsupport/test_installation.h"

namespace {

class Catalogue : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(inst.isValid());
    LoadResourceFromText(QStringLiteral(
        "TITL-I-0001,0,\"Vantora\",\"\"\n"
        "; a comment, with commas, \"quotes\" and, more\n"
        "INFO-I-0001,0,Saved.,\n"
        "WARN-W-0001,1,\"Low, really low\",\"Charge it.\"\n"
        "CRIT-C-0001,2,Broken,Call us\n"
        "CRIT-C-0001,2,Second copy,ignored\n"
        "SPAN-I-0001,0\n"
        "\"first line part\"\n"
        "\"second\"\n"
        ",0,no code,skipped\n"
        "\n"
        "ODD-I-0001,5,odd level,\n"));
  }
  const std::vector<RecordingDialog::Shown>& shown() { return inst.dialog().shown; }

  TestInstallation inst;
};

TEST_F(Catalogue, RecordsFieldsAndFirstCodeWins) {
  const auto fields = [](const char* code) {
    const auto m = FindMessage(code);
    return m ? std::tuple(m->level, m->text1, m->text2) : std::tuple(-1, QString("missing"), QString());
  };
  EXPECT_EQ(fields("WARN-W-0001"), std::tuple(1, QString("Low, really low"), QString("Charge it.")));
  EXPECT_EQ(fields("CRIT-C-0001"), std::tuple(2, QString("Broken"), QString("Call us")));
  EXPECT_EQ(fields("SPAN-I-0001"), std::tuple(0, QString("first line part"), QString("second")));
  EXPECT_EQ(fields("INFO-I-0001"), std::tuple(0, QString("Saved."), QString()));
  EXPECT_TRUE(FindMessage("ODD-I-0001"));
  EXPECT_FALSE(FindMessage("; a comment") || FindMessage("") || FindMessage("info-i-0001"));  // codes compare exactly
}

TEST_F(Catalogue, MessageTextsIconsAndAnswers) {
  MessageDialog("CRIT-C-0001");
  MessageDialog("WARN-W-0001", "extra line");
  MessageDialog("INFO-I-0001", "<__MESSAGE1__|__MESSAGE2__|__MESSAGE1__>", true);
  MessageDialog("ODD-I-0001");
  ASSERT_EQ(shown().size(), 4u);
  EXPECT_EQ(std::tuple(shown()[0].title, shown()[0].question), std::tuple(QString("Vantora"), false));
  const std::pair<QString, DialogIcon> boxes[] = {
      {"Broken\r\nCall us", DialogIcon::Critical},
      {"Low, really low\r\nCharge it.\r\nextra line", DialogIcon::Exclamation},
      {"<Saved.||Saved.>", DialogIcon::Information}};
  for (size_t i = 0; i < 3; ++i) EXPECT_EQ(std::pair(shown()[i].text, shown()[i].icon), boxes[i]) << i;
  EXPECT_EQ(shown()[3].icon, DialogIcon::None);
  inst.dialog().queueAnswer(kAnswerYes);
  EXPECT_EQ(QuestionDialog("WARN-W-0001"), kAnswerYes);
  EXPECT_EQ(QuestionDialog("WARN-W-0001"), kAnswerNo);  // empty queue answers No
  EXPECT_TRUE(shown()[4].question);

  MessageRecord rec{0, "one", "", "X"};
  // An empty text is not corrected.
  EXPECT_EQ(std::tuple(BuildMessageText(rec, "", true), BuildMessageText(rec, "two", false)),
            std::tuple(QString(), QString("one\r\ntwo")));
}

TEST_F(Catalogue, WarningsAndErrorsAreLoggedBeforeTheBox) {
  // A dialog that looks at the log at the moment the box appears.
  struct LogChecking : DialogInterface {
    QString logAtShow;
    TestInstallation* inst = nullptr;
    void showMessage(const QString&, const QString&, DialogIcon) override { logAtShow = inst->traceText(); }
    int askQuestion(const QString&, const QString&, DialogIcon) override { return kAnswerYes; }
  } checking;
  checking.inst = &inst;
  ScopedDialogInterface guard(&checking);

  MessageDialog("CRIT-C-0001");
  EXPECT_TRUE(checking.logAtShow.contains("|2|MessageDialog        |Broken_Call us\r\n"));
  EXPECT_EQ(QuestionDialog("WARN-W-0001"), kAnswerYes);
  EXPECT_TRUE(inst.traceText().contains("|1|QuestionDialog       |Low, really low_Charge it.\r\n"));
  const auto before = inst.traceText().size();
  MessageDialog("INFO-I-0001");
  EXPECT_EQ(inst.traceText().size(), before);  // level 0 is not logged
}

TEST_F(Catalogue, MissingCodeAndMissingTitle) {
  inst.dialog().queueAnswer(kAnswerYes);
  EXPECT_EQ(QuestionDialog("NONE-C-0001"), 0);
  ASSERT_EQ(shown().size(), 1u);
  EXPECT_EQ(std::tuple(shown()[0].text, shown()[0].icon, shown()[0].question),
            std::tuple(QString("*** Resouce Not Exist *** (NONE-C-0001)"), DialogIcon::Critical, false));

  LoadResourceFromText("CRIT-C-0001,2,Broken,\n");
  inst.dialog().shown.clear();
  EXPECT_EQ(QuestionDialog("CRIT-C-0001"), 0);
  MessageDialog("CRIT-C-0001");
  ASSERT_EQ(shown().size(), 2u);
  EXPECT_EQ(std::tuple(shown()[1].text, shown()[1].icon),
            std::tuple(QString("*** Resouce Not Exist *** TITL-I-0001, vbCritical + vbOKOnly"), DialogIcon::None));
  // The message itself still reached the log.
  EXPECT_TRUE(inst.traceText().contains("|MessageDialog        |Broken\r\n"));
}

TEST_F(Catalogue, MenuCaptions) {
  LoadMenuResourceFromText(
      ";mnuFile,commented out\nmnuFile,\"&File, data\"\nmnuFile,second\nmnuQuit,Quit\n,empty\n");
  EXPECT_EQ(QStringList({GetMenuCaption("mnuFile"), GetMenuCaption("mnuQuit"), GetMenuCaption("mnuNone")}),
            QStringList({"&File, data", "Quit", "*** Resouce Not Exist ***"}));
}

TEST_F(Catalogue, FilesInUtf8OrCp932) {
  QStringEncoder cp932("CP932");
  inst.writeCatalogue(cp932.encode(
      QStringLiteral("TITL-I-0001,0,\"ヴァントーラ\",\"\"\r\nPTOP-I-0001,0,\"既に起動しています。\",\"\"\r\n")));
  EXPECT_EQ(FindMessage("TITL-I-0001")->text1 + "|" + FindMessage("PTOP-I-0001")->text1,
            "ヴァントーラ|既に起動しています。");
  inst.writeMenu(QStringLiteral("mnuQuit,\"終了\"\n").toUtf8());
  EXPECT_EQ(GetMenuCaption("mnuQuit"), "終了");

  QFile::remove("ACTA.res");
  EXPECT_FALSE(LoadResource());
  EXPECT_EQ(shown().back().text, "resource file[ACTA.res] not found.");
  QFile::remove("menu.res");
  EXPECT_FALSE(LoadMenuResource());
}

// Every message code the program's sources name, in the order found; read from the
// sources so that a code added to the program without its message fails here.
QStringList CodesNamedInSources() {
  static const QRegularExpression code(QStringLiteral("\"([A-Z]{4}-[CWI]-[0-9]{4})\""));
  QStringList codes;
  for (const char* folder : {"frame", "device", "store", "receive", "charts", "chartmaker", "exchange", "plan", "ui", "app"}) {
    QDirIterator it(QStringLiteral(VANTORA_SOURCE_DIR "/") + QLatin1String(folder), {"*.cpp", "*.h"}, QDir::Files,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
      QFile f(it.next());
      if (!f.open(QIODevice::ReadOnly)) continue;
      auto matches = code.globalMatch(QString::fromUtf8(f.readAll()));
      while (matches.hasNext()) {
        const QString c = matches.next().captured(1);
        if (!codes.contains(c)) codes << c;
      }
    }
  }
  return codes;
}

TEST_F(Catalogue, InstalledCataloguesHaveEveryCodeTheProgramUses) {
  const QStringList codes = CodesNamedInSources();
  ASSERT_GT(codes.size(), 10);
  for (const char* lang : {"ja", "en"}) {
    TestInstallation edition(QString::fromLatin1(lang));
    ASSERT_TRUE(edition.isValid());
    const auto title = FindMessage("TITL-I-0001");
    ASSERT_TRUE(title) << lang;
    EXPECT_FALSE(title->text1.isEmpty());
    for (const QString& code : codes) {
      const auto rec = FindMessage(code);
      ASSERT_TRUE(rec) << lang << " " << code.toStdString();
      EXPECT_FALSE(rec->text1.isEmpty()) << lang << " " << code.toStdString();
      // The class letter is for the reader of the file; it should still agree with the level.
      const int expected = code[5] == u'C' ? 2 : code[5] == u'W' ? 1 : 0;
      EXPECT_EQ(rec->level, expected) << lang << " " << code.toStdString();
    }
  }
}

TEST_F(Catalogue, ProfileLookupsOfTheResourceFile) {
  inst.setResource("VB_COMMON", "FORM_BKCOLOR_R", "255");
  inst.setResource("VB_COMMON", "FORM_BKCOLOR_G", "128");
  inst.setResource("VB_COMMON", "FORM_BKCOLOR_B", "1");
  EXPECT_EQ(GetIniBackColor("VB_COMMON", "FORM_BKCOLOR"), 255u + 128u * 256u + 65536u);
  for (auto [key, value] : {std::pair{"C_R", "10"}, std::pair{"C_G", "300"}, std::pair{"C_B", "1"}})
    inst.setResource("X", key, value);
  EXPECT_EQ(GetIniBackColor("X", "C"), 0u);
  EXPECT_TRUE(inst.logged("1", "GetIniBackColor", "color not found: X,C"));

  ASSERT_TRUE(WriteBytes(inst.path("images/user1.png"), QByteArray()));
  inst.setResource("VB_COMMON", "IMAGE_USERICON_1", "../images/user1.png");
  inst.setResource("VB_COMMON", "IMAGE_USERICON_2", "../images/none.png");
  EXPECT_EQ(GetIniPicturePath("VB_COMMON", "IMAGE_USERICON_1") + "|" +
                GetIniPicturePath("VB_COMMON", "IMAGE_USERICON_2"),
            "../images/user1.png|");
  EXPECT_TRUE(inst.logged("1", "SetIniPicture", "image file not found: VB_COMMON,IMAGE_USERICON_2"));

  inst.setResource("VB_COMMON", "FONT", "Noto Sans CJK JP");
  inst.setResource("VB_COMMON", "DATE_FORMAT", "yyyy-MM-dd");
  inst.setConfig("SYSTEM", "LOCALE_SHORTDATE", " ");
  LoadCommonFormat();
  EXPECT_EQ(std::tuple(GetCommonFontName(), GetCommonDateFormat(), GetCommonScreenDateFormat()),
            std::tuple(QString("Noto Sans CJK JP"), QString("yyyy-MM-dd"), QString("yyyy\\-MM\\-dd")));
  EXPECT_EQ(GetCommonFormBackColor(), 255u + 128u * 256u + 65536u);
  inst.setConfig("SYSTEM", "LOCALE_SHORTDATE", "dd/MM/yyyy");
  inst.setConfig("SYSTEM", "DATESCREEN_YMD", "dd\\/MM\\/yyyy");
  LoadCommonFormat();
  EXPECT_EQ(GetCommonDateFormat() + "|" + GetCommonScreenDateFormat(), "dd/MM/yyyy|dd\\/MM\\/yyyy");
}

}  // namespace
