// Whole receives of generated recorders through the emulated reader, with no waits.
#include <QFile>
#include <QFileInfo>
#include <algorithm>

#include "testsupport/receive_fixture.h"

using Answer = ReceiveQuestions::NewCpuAnswer;
using Scenario = ReceiveFixture;

TEST_F(Scenario, FirstReceiveOfANewRecorderRegistersAUserAndStoresEveryDay) {
  place(recorder(10));
  const QString id = addUser(QStringLiteral("山田 花子"));
  ScriptedQuestions q;
  q.newCpu = {Answer::CreateUser};
  q.registered = {id};
  for (const char* key : {"MANAGEMENT_RECEIVING", "CURRENTPAGE_RECEIVING", "STARTPAGE_RECEIVING"})
    inst->setResource(kSectionRecvManagement, QLatin1String(key), QStringLiteral("m:") + QLatin1String(key));
  inst->setResource(kSectionRecvData, QStringLiteral("DATA_RECEIVING"), QStringLiteral("d:DATA_RECEIVING"));
  CountingProgress progress;
  const ReceiveReport r = receive(q, &progress);
  EXPECT_EQ(progress.statuses,
            (QStringList{"m:MANAGEMENT_RECEIVING", "m:CURRENTPAGE_RECEIVING", "m:STARTPAGE_RECEIVING",
                         "d:DATA_RECEIVING"}));

  ASSERT_EQ(r.ending, ReceiveEnding::Received) << r.messageCodes.join(u',').toStdString();
  EXPECT_EQ(r.dialogs, (QStringList{QStringLiteral("frmRecvMsgNewCPU"), QStringLiteral("frmUserRegist")}));
  EXPECT_EQ(QStringList({r.kind, r.lang, r.cpuNo, r.receiveId, r.userId}),
            QStringList({KindText(RecorderKind::BrioNormal), LangText(RecorderLang::Japanese), "A00042",
                         "R000000001", id}));
  EXPECT_EQ(std::tuple(r.pagesFetched, r.daysStored, progress.maximum, progress.value), std::tuple(10, 10, 11, 11));
  EXPECT_TRUE(r.messageCodes.isEmpty());

  EXPECT_EQ(std::tuple(rows("DAY_MEASUREMENT", "USER_ID = ?", id), rows("TIME_MEASUREMENT_BLOCK"),
                       rows("RECEIVE_HISTORY")),
            std::tuple(10, 10, 1));
  EXPECT_EQ(VTDB_GetUserIDFromCPUNo(*db, QStringLiteral("A00042")).trimmed(), id);
  EXPECT_EQ(scalar(QStringLiteral("SELECT MIN(MEASUREMENT_DAY) || '-' || MAX(MEASUREMENT_DAY) FROM DAY_MEASUREMENT")),
            QStringLiteral("20240621-20240630"));
  EXPECT_EQ(user(id).LAST_PAGE.trimmed() + " " + user(id).LAST_RECEIVE_ID.trimmed(), "10 R000000001");
  EXPECT_EQ(std::tuple(GetCurrentUserId(), GetScreenState(), GetRecorderHandled(), GetModalFormOpen()),
            std::tuple(id, kStateJob, true, false));
}

TEST_F(Scenario, ASecondReceiveFetchesOnlyTheNewPagesAndReplacesTheDayBeingRecorded) {
  const QString id = firstReceive(recorder(10));
  const auto lastDay = [this](const char* column) {
    return scalar(QStringLiteral("SELECT %1 FROM DAY_MEASUREMENT WHERE MEASUREMENT_DAY = '20240630'").arg(column));
  };
  const QString oldStepsOfLastDay = lastDay("STEP_COUNT");
  place(recorder(13, QDate(2024, 7, 3)));
  SetScreenState(kStateUserSelect);
  ScriptedQuestions q;
  const ReceiveReport r = receive(q);

  ASSERT_EQ(r.ending, ReceiveEnding::Received) << r.messageCodes.join(u',').toStdString();
  EXPECT_TRUE(q.asked.isEmpty());  // known owner, nothing reset: no dialog at all
  EXPECT_EQ(std::tuple(r.startPage, r.endPage, r.pagesFetched, r.daysStored), std::tuple(10, 13, 4, 4));
  // Every day once: the old row of the day that was being recorded is gone.
  EXPECT_EQ(std::tuple(rows("DAY_MEASUREMENT"), count("SELECT COUNT(DISTINCT MEASUREMENT_DAY) FROM DAY_MEASUREMENT"),
                       lastDay("RECEIVE_ID")),
            std::tuple(13, 13, QString("R000000002")));
  EXPECT_NE(lastDay("STEP_COUNT"), oldStepsOfLastDay);
  // Only TIME_MEASUREMENT is cleared for the re-fetched day: its old profile row stays.
  EXPECT_EQ(rows("TIME_MEASUREMENT_BLOCK", "RECEIVE_ID = ?", QStringLiteral("R000000001")), 10);
  EXPECT_EQ(user(id).LAST_PAGE.trimmed() + " " + user(id).LAST_RECEIVE_ID.trimmed(), "13 R000000002");

  // With the owner open on the main screen it is the same: no question, the new pages.
  place(recorder(14, QDate(2024, 7, 4)));
  SetScreenState(kStateJob);
  SetCurrentUserId(id);
  ScriptedQuestions again;
  const ReceiveReport r2 = receive(again);
  EXPECT_EQ(std::tuple(r2.ending, again.asked, r2.pagesFetched),
            std::tuple(ReceiveEnding::Received, QStringList(), 2));
}

TEST_F(Scenario, FullReceivesFetchEverythingEveryTime) {
  firstReceive(recorder(10));
  inst->setConfig(QStringLiteral("DOWNLOAD"), QStringLiteral("DOWNLOAD_DATA_RANGE"), QStringLiteral("0"));
  place(recorder(12, QDate(2024, 7, 2)));
  ScriptedQuestions q;
  const ReceiveReport r = receive(q);
  EXPECT_EQ(std::tuple(r.ending, r.pagesFetched, rows("DAY_MEASUREMENT")),
            std::tuple(ReceiveEnding::Received, 12, 22));
}

TEST_F(Scenario, AWrappedRingIsFetchedAcrossItsEnd) {
  RecorderImageOptions o = recorder(10);
  o.startPage = 235;
  const QString id = firstReceive(o);
  QStringList pages;
  Statement st(*db, QStringLiteral("SELECT PAGE FROM DAY_MEASUREMENT ORDER BY CINT(SEQ_NUM)"));
  while (st.step()) pages << st.text(0);
  EXPECT_EQ(pages.join(u','), QStringLiteral("235,236,237,238,239,240,1,2,3,4"));
  EXPECT_EQ(user(id).LAST_PAGE.trimmed(), QStringLiteral("4"));

  // And on from there: the next receive starts at page 4 again.
  o.days = 12;
  o.lastDay = QDate(2024, 7, 2);
  place(o);
  ScriptedQuestions q;
  const ReceiveReport r = receive(q);
  EXPECT_EQ(std::tuple(r.ending, r.startPage, r.pagesFetched), std::tuple(ReceiveEnding::Received, 4, 3));
}

TEST_F(Scenario, ARingThatWentRoundTwiceIsStillNoReset) {
  // A recorder worn for well over a year and received now and then: page numbers are reused,
  // and the start page's day must be compared with the newest reception of that page.
  const QDate firstDay(2023, 1, 1);
  auto worn = [&](int daysWorn) {
    RecorderImageOptions o = recorder(std::min(daysWorn, 239), firstDay.addDays(daysWorn - 1));
    o.startPage = daysWorn <= 239 ? 1 : (daysWorn - 239) % 240 + 1;
    return o;
  };
  firstReceive(worn(200));
  for (int daysWorn : {239, 339, 480, 520}) {
    place(worn(daysWorn));
    ScriptedQuestions q;
    const ReceiveReport r = receive(q);
    ASSERT_EQ(r.ending, ReceiveEnding::Received) << daysWorn;
    EXPECT_TRUE(q.asked.isEmpty()) << "no reset question after " << daysWorn << " days";
  }
  EXPECT_EQ(count(QStringLiteral("SELECT COUNT(DISTINCT MEASUREMENT_DAY) FROM DAY_MEASUREMENT")), 520);
}

TEST_F(Scenario, MemoryLockStopsAtTheRecordersEndPage) {
  RecorderImageOptions o = recorder(12);
  o.memorySetting = 1;
  o.memoryDays = 7;
  place(o);
  const QString id = addUser(QStringLiteral("鈴木 次郎"));
  FakeReader fake(image(o));
  const ReceiveReport r = receiveSelecting(id, &fake);
  ASSERT_EQ(r.ending, ReceiveEnding::Received) << r.messageCodes.join(u',').toStdString();
  // Block and start page only: the current page lies beyond the limit and isn't checked.
  EXPECT_EQ(std::tuple(r.endPage, r.pagesFetched, fake.transfers()), std::tuple(7, 7, 2 + 7));
  EXPECT_EQ(user(id).LAST_PAGE.trimmed(), QStringLiteral("7"));
}

TEST_F(Scenario, AnUnsetWeightOnTheLastPageLeavesThatDayForNextTime) {
  RecorderImageOptions o = recorder(5);
  o.unsetWeight = true;
  const QString id = firstReceive(o);
  EXPECT_EQ(std::tuple(rows("DAY_MEASUREMENT"), rows("DAY_MEASUREMENT", "MEASUREMENT_DAY = '20240630'")),
            std::tuple(4, 0));
  EXPECT_EQ(user(id).LAST_PAGE.trimmed(), QStringLiteral("5"));
  EXPECT_TRUE(inst->traceText().contains(QStringLiteral("WeightErr UserID=") + id));

  // Family A has no weight setting: its day is stored all the same.
  o.kind = RecorderKind::AL;
  o.cpuNo = QStringLiteral("B00007");
  SetScreenState(kStateUserSelect);
  const QString other = firstReceive(o, QStringLiteral("田中 三郎"));
  EXPECT_EQ(rows("DAY_MEASUREMENT", "USER_ID = ?", other), 5);
}

TEST_F(Scenario, ARecorderOfAnotherUserChangesHandsOnlyWhenAgreed) {
  const QString owner = firstReceive(recorder(10));
  const QString other = addUser(QStringLiteral("田中 三郎"));
  place(recorder(12, QDate(2024, 7, 2)));
  SetScreenState(kStateJob);
  SetCurrentUserId(other);

  ScriptedQuestions no;
  ReceiveReport r = receiveChangingNothing(no);
  EXPECT_EQ(std::tuple(r.ending, no.asked), std::tuple(ReceiveEnding::Cancelled, QStringList{"AlertUser"}));

  ScriptedQuestions yes;
  yes.yesNo = {true};
  r = receive(yes);
  ASSERT_EQ(r.ending, ReceiveEnding::Received) << r.messageCodes.join(u',').toStdString();
  EXPECT_EQ(std::tuple(r.userId, r.pagesFetched), std::tuple(other, 12));  // entered afresh: the whole range
  EXPECT_EQ(VTDB_GetUserIDFromCPUNo(*db, QStringLiteral("A00042")).trimmed(), other);
  EXPECT_EQ(std::tuple(rows("CPU_TABLE"), rows("DAY_MEASUREMENT", "USER_ID = ?", owner)), std::tuple(1, 10));
}

TEST_F(Scenario, AResetRecorderAsksAndThenFetchesWhatItHolds) {
  const QString owner = firstReceive(recorder(10));
  // Cleared and started again: page 1 now holds a day the database doesn't know.
  place(recorder(3, QDate(2024, 8, 3)));
  ScriptedQuestions no;
  ReceiveReport r = receiveChangingNothing(no);
  EXPECT_EQ(std::tuple(r.ending, no.asked), std::tuple(ReceiveEnding::Cancelled, QStringList{"AlertReset"}));

  ScriptedQuestions yes;
  yes.yesNo = {true};
  r = receive(yes);
  ASSERT_EQ(r.ending, ReceiveEnding::Received);
  EXPECT_EQ(std::tuple(r.userId, r.startPage, r.pagesFetched, rows("DAY_MEASUREMENT")), std::tuple(owner, 1, 3, 13));
}

TEST_F(Scenario, CancelledRegistrationOrSelectionReturnsToTheNewRecorderQuestion) {
  place(recorder(4));
  const QString id = addUser(QStringLiteral("高橋 四郎"));
  ScriptedQuestions q;
  q.newCpu = {Answer::CreateUser, Answer::SelectUser, Answer::SelectUser};
  q.registered = {QString()};
  q.selected = {QString(), id};
  const ReceiveReport r = receive(q);
  ASSERT_EQ(r.ending, ReceiveEnding::Received);
  EXPECT_EQ(std::tuple(q.asked, r.userId),
            std::tuple(QStringList{"NewCPU", "UserRegist", "NewCPU", "UserSelect", "NewCPU", "UserSelect"}, id));

  // Cancelling the question itself removes the receive again.
  RecorderImageOptions other = recorder(4, QDate(2024, 9, 1));
  other.cpuNo = QStringLiteral("B00007");
  place(other);
  ScriptedQuestions cancel;
  EXPECT_EQ(receiveChangingNothing(cancel).ending, ReceiveEnding::Cancelled);
}

TEST_F(Scenario, ANewRecorderForTheOpenUserReplacesTheUsersEarlierRecorder) {
  const QString id = firstReceive(recorder(5));
  RecorderImageOptions second = recorder(3, QDate(2024, 7, 10));
  second.cpuNo = QStringLiteral("B00007");
  place(second);
  SetScreenState(kStateJob);
  SetCurrentUserId(id);
  ScriptedQuestions q;
  q.yesNo = {true};
  const ReceiveReport r = receive(q);
  EXPECT_EQ(std::tuple(r.ending, q.asked), std::tuple(ReceiveEnding::Received, QStringList{"NewCPUSelectUser"}));
  EXPECT_EQ(VTDB_GetUserIDFromCPUNo(*db, "A00042") + "/" + VTDB_GetUserIDFromCPUNo(*db, "B00007").trimmed(), "/" + id);
}

TEST_F(Scenario, RefusedKindsLeaveNoTrace) {
  inst->setConfig(QStringLiteral("SYSTEM"), QStringLiteral("SAVE_RAW_DATA"), QStringLiteral("1"));
  inst->setConfig(QStringLiteral("PM_TEST"), QStringLiteral("PM_AL"), QStringLiteral("0"));
  // Family A while it is switched off, and an English recorder on the Japanese edition.
  RecorderImageOptions al = recorder(3), english = recorder(3);
  al.kind = RecorderKind::AL;
  english.english = true;
  for (const RecorderImageOptions& o : {al, english}) {
    place(o);
    ScriptedQuestions q;
    const ReceiveReport r = receiveChangingNothing(q);
    EXPECT_EQ(std::tuple(r.ending, r.messageCodes, q.asked),
              std::tuple(ReceiveEnding::Refused, QStringList{"MDWN-W-0003"}, QStringList()));
    EXPECT_FALSE(QFile::exists(inst->rawPath() + QStringLiteral("/") + r.receiveId + QStringLiteral(".bin")));
  }
}

TEST_F(Scenario, TheRawFileHoldsTheBlockAndEveryPageOfTheDayLoop) {
  inst->setConfig(QStringLiteral("SYSTEM"), QStringLiteral("SAVE_RAW_DATA"), QStringLiteral("1"));
  firstReceive(recorder(6));
  const QString raw = scalar(QStringLiteral("SELECT RAWFILENAME FROM RECEIVE_HISTORY"));
  ASSERT_FALSE(raw.isEmpty());
  EXPECT_EQ(QFileInfo(raw).size(), 992 * (1 + 6));
}

TEST_F(Scenario, AStaleCurrentPageEndsWithTheHistoryRowKept) {
  RecorderImageOptions o = recorder(5);
  o.erasedPages = {5};  // the page being recorded reads as erased memory: the zero date
  place(o);
  ScriptedQuestions q;
  const ReceiveReport r = receive(q);
  EXPECT_EQ(std::tuple(r.ending, r.messageCodes), std::tuple(ReceiveEnding::StalePage, QStringList{"MDWN-I-0001"}));
  EXPECT_EQ(std::tuple(rows("RECEIVE_HISTORY"), rows("DAY_MEASUREMENT")), std::tuple(1, 0));
  EXPECT_TRUE(inst->traceText().contains(QStringLiteral("StartPageDateErr")));
}

TEST_F(Scenario, NoRecorderOnTheReader) {
  QDir(inst->readerPath()).removeRecursively();
  QDir().mkpath(inst->readerPath());
  ScriptedQuestions q;
  const ReceiveReport r = receiveChangingNothing(q);
  EXPECT_EQ(std::tuple(r.ending, r.messageCodes),
            std::tuple(ReceiveEnding::Failed, QStringList{"COMN-I-0001", "COMN-C-0001"}));
}

TEST_F(Scenario, NamesAreLaidOutByEdition) {
  UserInfo u{.FIRST_NAME = QStringLiteral("山田 花子")};
  NameRows ja = LayOutNames(u, QStringLiteral("様"));
  EXPECT_EQ(std::tuple(ja.first, ja.middleVisible, ja.lastVisible),
            std::tuple(QStringLiteral("山田 花子 様"), false, false));
  SetLangCode(QStringLiteral("1"));
  u = {.FIRST_NAME = "Ann", .MIDDLE_NAME = "B", .LAST_NAME = "Carter"};
  NameRows en = LayOutNames(u, QStringLiteral("様"));
  EXPECT_EQ(std::tuple(en.first, en.last, en.middleVisible), std::tuple(QString("Ann"), QString("Carter"), true));
  QString id;
  EXPECT_EQ(RegisterUserByName(*db, QStringLiteral("Ann"), id), -1);
  EXPECT_EQ(RegisterUserByName(*db, QStringLiteral("Ann B Carter"), id), 0);
  EXPECT_EQ(user(id).MIDDLE_NAME.trimmed(), QStringLiteral("B"));
  SetLangCode(QStringLiteral("0"));
}

TEST_F(Scenario, ARecorderWhoseUserIsGoneCountsAsNewAndGoesToTheOneChosen) {
  const QString gone = firstReceive(recorder(5));
  ASSERT_TRUE(VTDB_DeleteUserInfo(*db, gone));
  const QString next = addUser(QStringLiteral("小林 七子"));
  place(recorder(7, QDate(2024, 7, 2)));
  SetScreenState(kStateUserSelect);
  ScriptedQuestions q;
  q.newCpu = {Answer::SelectUser};
  q.selected = {next};
  const ReceiveReport r = receive(q);
  ASSERT_EQ(r.ending, ReceiveEnding::Received) << r.messageCodes.join(u',').toStdString();
  // Nothing of the new user is known: every held page.
  EXPECT_EQ(std::tuple(q.asked, r.pagesFetched), std::tuple(QStringList{"NewCPU", "UserSelect"}, 7));
  EXPECT_EQ(std::tuple(VTDB_GetUserIDFromCPUNo(*db, "A00042"), rows("CPU_TABLE")), std::tuple(next, 1));
}
