// The sample user, and a fresh database in a test installation holding that user, the starting
// point of the tests that work on stored days. Header-only: only tests that link the store and
// the receive use it.
#pragma once

#include <QString>

#include "device/device.h"
#include "device/recorder_image.h"
#include "frame/shared_values.h"
#include "receive/day_rows.h"
#include "store/store.h"
#include "testsupport/device_test_util.h"
#include "testsupport/test_installation.h"

// Hana Sato, 41, 160 cm, 60 kg, with step and calorie targets, in the default group.
inline UserRecord SampleUser(const QString& userId) {
  return {.USER_ID = userId, .GROUP_ID = kDefaultGroupId, .LOGIN_ID = "hana", .FIRST_NAME = "Hana",
          .LAST_NAME = "Sato", .NICK_NAME = "hana", .GENDAR = "1", .AGE = "41", .HEIGHT_CM = "160",
          .WEIGHT_KG = "60.0", .TARGET_CAL = "250", .TARGET_STEP = "9000"};
}

// The same person as the screens enter one, with the given names, for SetUser and EditUser
// (which give the id).
inline UserInfo SampleUserInfo(const QString& first, const QString& last = QString(),
                               const QString& nick = QString()) {
  const UserRecord r = SampleUser(QString());
  return {.GROUP_ID = r.GROUP_ID, .LOGIN_ID = r.LOGIN_ID, .FIRST_NAME = first, .LAST_NAME = last,
          .NICK_NAME = nick, .TARGET_CAL = r.TARGET_CAL, .TARGET_STEP = r.TARGET_STEP, .TARGET_ACTMIN = "40",
          .GENDAR = r.GENDAR, .AGE = r.AGE, .HEIGHT_CM = r.HEIGHT_CM, .WEIGHT_KG = r.WEIGHT_KG};
}

// Creates the installation's database, opens it on db and stores SampleUser(userId) as the
// current user. Returns an error text, empty on success.
inline QString OpenDatabaseWithSampleUser(const TestInstallation& inst, VtDatabase& db, const QString& userId) {
  QString error;
  if (!CreateDatabaseFile(inst.dbFile(), kDefaultDbPassword, &error)) return error;
  db.open(inst.dbFile(), kDefaultDbPassword);
  if (!VTDB_SetUserInfo(db, SampleUser(userId))) return QStringLiteral("the sample user was not stored");
  SetCurrentUserId(userId);
  return QString();
}

// Stores the days of a generated recorder under userId as one reception, as the receive does
// (erased pages left out). Returns an error text, empty on success.
inline QString StoreRecorderDays(VtDatabase& db, const QString& userId, const RecorderImageOptions& o) {
  FlashManage manage;
  if (FlashManage_ConvertByteArray2Struct_Brio(AsBytes(MakeManageBlock(o)), manage, o.kind) != 0)
    return QStringLiteral("the management block does not decode");
  const QString receiveId = CreateReceiveId(db);
  if (receiveId.isEmpty()) return QStringLiteral("no receive id");
  int seq = 1;
  for (const ImagePage& p : RecorderImagePages(o)) {
    if (p.erased) continue;
    FlashData data;
    if (FlashData_Decode(AsBytes(MakeDayPage(o, p.date, p.recording)), data, o.kind) != 0)
      return QStringLiteral("page %1 does not decode").arg(p.page);
    if (!VTDB_SetDayMeasurement(db, DayMeasurementRow(receiveId, seq, userId, p.page, o.startPage, data, manage,
                                                      o.kind)) ||
        !VTDB_SetTimeMeasurementBlock(db, TimeMeasurementBlockRow(receiveId, seq, data, o.kind)))
      return QStringLiteral("page %1 was not stored").arg(p.page);
    ++seq;
  }
  return QString();
}
