// Users, groups, recorders and general items.
#include "frame/catalogue.h"
#include "testsupport/sample_user.h"
#include "testsupport/store_fixture.h"

namespace {

QString rawColumn(VtDatabase& db, const QString& column, const QString& userId) {
  Statement st(db, QStringLiteral("SELECT %1 FROM [USER] WHERE StrComp(USER_ID, ?, 0) = 0").arg(column));
  st.bind(1, userId);
  return st.step() ? st.text(0) : QStringLiteral("<none>");
}

// One person after another is offered; each is stored (0) or refused with the code of the
// first rule it breaks.
struct Offer {
  const char* first;
  const char* last;
  const char* nick;
  bool instructor;
  int code;
  const char* why;
};

void ExpectCodes(VtDatabase& db, std::initializer_list<Offer> offers) {
  for (const Offer& o : offers) {
    UserInfo u = SampleUserInfo(QString::fromUtf8(o.first), QString::fromUtf8(o.last), QString::fromUtf8(o.nick));
    if (o.instructor) u.GROUP_ID = kInstructorGroupId;
    EXPECT_EQ(SetUser(db, u), o.code) << o.first << " / " << o.nick << ": " << o.why;
  }
}

TEST_F(StoreTest, JapaneseUserCodesInOrder) {
  UserInfo a = SampleUserInfo(QStringLiteral("森 花子"), QString(), QStringLiteral("0001"));
  ASSERT_EQ(SetUser(db_, a), 0);
  EXPECT_EQ(a.USER_ID, QStringLiteral("U000000001"));
  // Stored padded to the widths, read back trimmed.
  EXPECT_EQ(std::tuple(rawColumn(db_, "FIRST_NAME", a.USER_ID).size(), rawColumn(db_, "HEIGHT_FEET", a.USER_ID)),
            std::tuple(20, QString(" ")));
  ExpectCodes(db_, {
      {"", "", "", false, 13, "no name"},
      {"森 次郎", "", "   ", false, 8, "a nick of blanks is unusable, not missing"},
      {"森 次郎", "", "0001", false, 7, "number taken"},
      {"森 次郎", "", "０００１", false, 0, "a full-width number is another number"},
      {"Instructor", "", "", false, 10, "the instructor's name"},
      // Same name and number outside the instructor group: "=" ignores case, width and trailing blanks.
      {"森 花子  ", "", "0002", false, 0, "another number"},
      {"森 花子", "", "0002", false, 7, "number taken"},
      {"森 花子", "", "", false, 0, "no nick: the name with an empty nick is not yet used"},
      {"森 花子", "", "", false, 9, "name taken"},
      {"森 花子", "", "", true, 0, "the instructor group is left out of the name test"},
  });
}

TEST_F(StoreTestEn, EnglishUserCodesInOrder) {
  ExpectCodes(db_, {
      {"Hana", "Mori", "hana", false, 0, "first"},
      {"Hana", "", "", false, 13, "no last name"},
      {"Instructor", "Vantora", "", false, 10, "the instructor's name"},
      {"Jiro", "Mori", "  ", false, 8, "a nick of blanks"},
      {"Jiro", "Mori", "HANA", false, 7, "plain = ignores case"},
      {"HANA", "mori", "", false, 9, "name taken"},
      {"HANA", "mori", "hana", true, 0, "instructors skip the nick and name tests"},
  });
  std::vector<UserInfo> users;
  ASSERT_EQ(GetUserList(db_, kDefaultGroupId, users), 1);
  EXPECT_EQ(users[0].DisplayName, QStringLiteral("hana"));
}

TEST_F(StoreTestEn, ProhibitedCharactersGive18) {
  inst_.setConfig(QStringLiteral("PROHIBIT_FILENAME"), QStringLiteral("STRING_1"), QStringLiteral("/"));
  ExpectCodes(db_, {{"Ha/na", "Mori", "", false, 18, "a prohibited character"}});
}

TEST_F(StoreTest, EditingFindsTheUserHimselfNoConflict) {
  UserInfo a = SampleUserInfo(QStringLiteral("森 花子"), QString(), QStringLiteral("0001"));
  ASSERT_EQ(SetUser(db_, a), 0);
  UserInfo b = SampleUserInfo(QStringLiteral("森 次郎"), QString(), QStringLiteral("0002"));
  ASSERT_EQ(SetUser(db_, b), 0);
  db_.exec(QStringLiteral("UPDATE [USER] SET LAST_RECEIVE_ID = 'R000000007', HEIGHT_FEET = '5' "
                          "WHERE USER_ID = 'U000000001'"));

  UserInfo edit = a;
  edit.COMMENT = QStringLiteral("walks daily");
  edit.AGE.clear();  // empty: kept
  edit.TARGET_CAL.clear();  // always replaced, even when empty
  EXPECT_EQ(EditUser(db_, edit), 0);
  UserInfo back;
  ASSERT_TRUE(GetUserInfo(db_, back, a.USER_ID));
  EXPECT_EQ(QStringList({back.COMMENT, back.AGE, back.TARGET_CAL, rawColumn(db_, "LAST_RECEIVE_ID", a.USER_ID),
                         rawColumn(db_, "HEIGHT_FEET", a.USER_ID)}),
            QStringList({"walks daily", "41", "", "R000000007", "5"}));

  edit.NICK_NAME = QStringLiteral("0002");
  EXPECT_EQ(EditUser(db_, edit), 7);
  edit = b;
  edit.FIRST_NAME = QStringLiteral("森 花子");
  edit.NICK_NAME = QStringLiteral("0001 ");
  EXPECT_EQ(EditUser(db_, edit), 7);

  UserInfo ghost = SampleUserInfo(QStringLiteral("誰か"));
  ghost.USER_ID = QStringLiteral("U000000099");
  EXPECT_EQ(EditUser(db_, ghost), 12);
  EXPECT_TRUE(traced(QStringLiteral("2"), QStringLiteral("EditUser"), QStringLiteral("VTDB_ChangeUserInfo Error")));
}

TEST_F(StoreTest, LoginIdsAreComparedExactly) {
  UserInfo a = SampleUserInfo(QStringLiteral("森 花子"));
  a.LOGIN_ID = QStringLiteral("AB");
  ASSERT_EQ(SetUser(db_, a), 0);
  EXPECT_EQ(QStringList({VTDB_SearchUserIdFromLoginID(db_, "ab"), VTDB_SearchUserIdFromLoginID(db_, "AB"),
                         VTDB_SearchUserIdFromNickName(db_, "x")}),
            QStringList({"", a.USER_ID, ""}));
  EXPECT_EQ(messages(), 0u);
}

TEST_F(StoreTest, LineBreaksBecomeBlanksAndNamesAreStoredAsTypedOrRefused) {
  // 21 characters: refused with the limit and the count, nothing stored.
  UserInfo tooLong = SampleUserInfo(QStringLiteral("ABCDEFGHIJKLMNOPQRSTU"));
  EXPECT_EQ(std::tuple(SetUser(db_, tooLong), tooLong.USER_ID), std::tuple(kUserNameTooLong, QString()));
  QString code, argument;
  UserRefusalMessage(kUserNameTooLong, tooLong, code, argument);
  EXPECT_TRUE(code == "UREG-W-0014" && argument.contains("20") && argument.contains("21"))
      << code.toStdString() << " " << argument.toStdString();

  // 20 characters outside the basic plane (40 UTF-16 units) fit and come back whole.
  QString faces;
  for (int i = 0; i < 20; ++i) faces += QString::fromUtf8("\xF0\x9F\x99\x82");
  UserInfo a = SampleUserInfo(faces);
  a.COMMENT = QStringLiteral("one\r\ntwo\nthree");
  ASSERT_EQ(SetUser(db_, a), 0);
  UserInfo back;
  ASSERT_TRUE(GetUserInfo(db_, back, a.USER_ID));
  EXPECT_EQ(back.FIRST_NAME + "|" + back.COMMENT, faces + "|one  two three");
  // A cut elsewhere never splits such a character.
  const QString face = QString::fromUtf8("\xF0\x9F\x99\x82");
  EXPECT_EQ(std::tuple(FixWidth("ab" + face, 3), CharacterCount(faces)), std::tuple("ab" + face, 20));
}

TEST_F(StoreTest, GroupsAndRecorders) {
  GroupRecord g;
  EXPECT_TRUE(VTDB_GetGroupInfoFromId(db_, QStringLiteral("G123456789"), g) && g.GROUP_ID.isEmpty());
  std::vector<GroupInfo> groups;
  EXPECT_EQ(GetGroupList(db_, groups), 2);

  UserInfo a = SampleUserInfo(QStringLiteral("森 花子"));
  ASSERT_EQ(SetUser(db_, a), 0);
  EXPECT_EQ(VTDB_GetUserIDFromCPUNo(db_, QStringLiteral("A1B2C3")), QString());
  UserInfo none;
  EXPECT_TRUE(GetUserInfoFromCPUNo(db_, none, QStringLiteral("A1B2C3")) && none.USER_ID.isEmpty());
  bool found = true;
  ASSERT_TRUE(VTDB_ChangeUserIdOnCPUNo(db_, QStringLiteral("A1B2C3"), a.USER_ID, &found));
  EXPECT_FALSE(found) << "nothing to change yet";
  ASSERT_TRUE(VTDB_SetUserIdOnCPUNo(db_, QStringLiteral("A1B2C3"), a.USER_ID));
  EXPECT_TRUE(VTDB_ChangeUserIdOnCPUNo(db_, "A1B2C3", "U999999999", &found) && found);
  EXPECT_EQ(VTDB_GetUserIDFromCPUNo(db_, QStringLiteral("A1B2C3")), QStringLiteral("U999999999"));
}

TEST_F(StoreTest, DeletingAUserLeavesHistoryPlanAndSecondRecorder) {
  UserInfo a = SampleUserInfo(QStringLiteral("森 花子"));
  ASSERT_EQ(SetUser(db_, a), 0);
  ASSERT_TRUE(VTDB_SetUserIdOnCPUNo(db_, QStringLiteral("CPU001"), a.USER_ID));
  ASSERT_TRUE(VTDB_SetUserIdOnCPUNo(db_, QStringLiteral("CPU002"), a.USER_ID));
  EXPECT_EQ(SetGeneralData(db_, a.USER_ID, QStringLiteral("2024"), QStringLiteral("05"), QStringLiteral("01"),
                           QStringLiteral("IT007"), QStringLiteral("IT007001"), QStringLiteral("3")),
            0);
  ASSERT_TRUE(VTDB_SetReceiveHistory(db_, {.RECEIVE_ID = "R000000001", .RECEIVE_DATE = "20240501120000"}));
  const CsvRow row{.MEASUREMENT_DAY = "20240430", .RAW_MEASUREMENT_DAY = "20240430", .STEP_COUNT = "5000"};
  ASSERT_TRUE(VTDB_SetDayMeasurementForCSV(db_, QStringLiteral("R000000001"), 1, a, row));
  ASSERT_TRUE(VTDB_SetTimeMeasurementBlockForCSV(db_, QStringLiteral("R000000001"), 1, a, row));
  ASSERT_TRUE(VTDB_SetReceiveHistoryDate(db_, QStringLiteral("R000000001"), QStringLiteral("20240430"), a.USER_ID,
                                         QStringLiteral("20240501120000"), QStringLiteral("1")));

  EXPECT_EQ(DeleteUser(db_, a.USER_ID, false), 2);
  UserInfo still;
  EXPECT_TRUE(GetUserInfo(db_, still, a.USER_ID));
  EXPECT_EQ(DeleteUser(db_, a.USER_ID, true), 0);

  auto count = [&](const char* table) {
    Statement st(db_, QStringLiteral("SELECT count(*) FROM [%1]").arg(QLatin1String(table)));
    st.step();
    return st.text(0).toInt();
  };
  // The days go; the reception and the plan stay.
  EXPECT_EQ(std::tuple(count("DAY_MEASUREMENT"), count("TIME_MEASUREMENT_BLOCK"), count("RECEIVE_HISTORY_DATE"),
                       count("RECEIVE_HISTORY"), count("GENERAL_DATA")),
            std::tuple(0, 0, 0, 1, 1));
  EXPECT_EQ(VTDB_GetUserIDFromCPUNo(db_, QStringLiteral("CPU001")), QString());
  EXPECT_EQ(VTDB_GetUserIDFromCPUNo(db_, QStringLiteral("CPU002")), a.USER_ID) << "the dead assignment stays";
  UserRecord gone;
  EXPECT_FALSE(VTDB_GetUserInfoFromUserId(db_, a.USER_ID, gone));
}

TEST_F(StoreTest, WeightPlanIsReplacedAndReadBack) {
  WeightPlanRecord plan{.UserId = "U000000001", .PeriodIndex = "3", .StartDate = "20240501", .EndDate = "20240801",
                        .TargetWeight = "55.0", .DietOption = "True", .FoodIndex = "2", .StartWeight = "60.0",
                        .PoundFlag = "0"};
  ASSERT_TRUE(SetWeightPlan(db_, plan));
  plan.TargetWeight = QStringLiteral("54.0");
  ASSERT_TRUE(SetWeightPlan(db_, plan));

  std::vector<GeneralInfo> rows;
  ASSERT_EQ(GetGeneralData(db_, rows, QStringLiteral("IT007"), plan.UserId, QString(), QString(), QString(),
                           QString()),
            14);
  EXPECT_EQ(std::tuple(rows[3].SUB_ITEM, rows[9].VALUE), std::tuple(QString("IT007004"), QString("54.0")));
  WeightPlanRecord back;
  ASSERT_TRUE(GetWeightPlan(db_, back, plan.UserId));
  EXPECT_EQ(QStringList({back.TargetWeight, back.FoodIndex, back.PortionIndex, back.EndDate}),
            QStringList({"54.0", "2", "", "20240801"}));
}

TEST_F(StoreTest, GeneralDataFiltersNestAndTheSubItemNarrowsNothing) {
  const QString u = QStringLiteral("U000000001");
  for (const char* d : {"01", "02"})
    for (const char* s : {"IT007001", "IT007002"})
      ASSERT_EQ(SetGeneralData(db_, u, QStringLiteral("2024"), QStringLiteral("05"), QLatin1String(d),
                               QStringLiteral("IT007"), QLatin1String(s), QStringLiteral("v")),
                0);
  std::vector<GeneralInfo> rows;
  EXPECT_EQ(GetGeneralData(db_, rows, QStringLiteral("IT007"), u, QStringLiteral("2024"), QString(),
                           QStringLiteral("01"), QString()),
            4) << "a day without a month narrows nothing";
  EXPECT_EQ(GetGeneralData(db_, rows, QStringLiteral("IT007"), u, QStringLiteral("2024"), QStringLiteral("05"),
                           QStringLiteral("01"), QStringLiteral("IT007001")),
            2);
  ASSERT_TRUE(VTDB_DeleteGeneralData(db_, u, QStringLiteral("IT007"), QStringLiteral("2024"),
                                     QStringLiteral("05"), QStringLiteral("02"), QStringLiteral("IT007002")));
  EXPECT_EQ(GetGeneralData(db_, rows, QStringLiteral("IT007"), u, QString(), QString(), QString(), QString()), 3);
}

}  // namespace
