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
  UserRecord u;
  u.USER_ID = userId;
  u.GROUP_ID = kDefaultGroupId;
  u.LOGIN_ID = u.NICK_NAME = QStringLiteral("hana");
  u.FIRST_NAME = QStringLiteral("Hana");
  u.LAST_NAME = QStringLiteral("Sato");
  u.GENDAR = QStringLiteral("1");
  u.AGE = QStringLiteral("41");
  u.HEIGHT_CM = QStringLiteral("160");
  u.WEIGHT_KG = QStringLiteral("60.0");
  u.TARGET_STEP = QStringLiteral("9000");
  u.TARGET_CAL = QStringLiteral("250");
  return u;
}

// The same person as the screens enter one, with the given names, for SetUser and EditUser
// (which give the id).
inline UserInfo SampleUserInfo(const QString& first, const QString& last = QString(),
                               const QString& nick = QString()) {
  const UserRecord r = SampleUser(QString());
  UserInfo u;
  u.GROUP_ID = r.GROUP_ID;
  u.LOGIN_ID = r.LOGIN_ID;
  u.FIRST_NAME = first;
  u.LAST_NAME = last;
  u.NICK_NAME = nick;
  u.GENDAR = r.GENDAR;
  u.AGE = r.AGE;
  u.HEIGHT_CM = r.HEIGHT_CM;
  u.WEIGHT_KG = r.WEIGHT_KG;
  u.TARGET_STEP = r.TARGET_STEP;
  u.TARGET_CAL = r.TARGET_CAL;
  u.TARGET_ACTMIN = QStringLiteral("40");
  return u;
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
