// Which pages of the recorder's ring a receive fetches, and whether the recorder looks
// reset since its owner's last receive.
#include <exception>

#include "frame/config.h"
#include "frame/helpers.h"
#include "frame/trace.h"
#include "frame/vbformat.h"
#include "receive/receive.h"

namespace {

const QString kCalcName = QStringLiteral("CalcReceivePage");

// A stored text as the old fixed fields held it: blanks trimmed, cut at the first NUL.
QString CleanField(const QString& text) { return CutAtNul(text.trimmed()).trimmed(); }

// The day at the start page of the recorder, and the day the database holds for that
// page number for the user. Equal texts mean the ring has not moved past what is known.
bool StartPageDayKnown(VtDatabase& db, const ReceiveContext& ctx, const QString& userId) {
  const QString recorderDay = DateToYmd(ctx.device.startPage.bcDate);
  const QString storedDay = VTDB_GetMeasurementDayFromPage(
      db, QString::number(ctx.device.manage.RecordStartPage), userId);
  return recorderDay == storedDay;
}

}  // namespace

qint16 ReceiveEndPage(const DeviceState& device) {
  const FlashManage& m = device.manage;
  if (m.MemorySetting == 1) {
    const qint16 span = WrapPageCount(static_cast<qint16>(m.RecordingPage - m.RecordStartPage + 1),
                                      device);
    if (span > m.MemoryDays) return static_cast<qint16>(m.RecordEndPage);
  }
  return static_cast<qint16>(m.RecordingPage);
}

bool CalcReceivePage(VtDatabase& db, const ReceiveContext& ctx, qint16& startPage,
                     qint16& endPage, qint16& pageCount, bool wholeRange) {
  try {
    qint16 start = static_cast<qint16>(ctx.device.manage.RecordStartPage);
    const qint16 end = ReceiveEndPage(ctx.device);

    if (!wholeRange && !Ini_GetDownloadDataRange()) {
      UserRecord user;
      if (!VTDB_GetUserInfoFromUserId(db, ctx.receiveUserId, user)) return false;
      if (StartPageDayKnown(db, ctx, ctx.receiveUserId)) {
        const QString lastPage = CleanField(user.LAST_PAGE);
        const QString lastReceiveId = CleanField(user.LAST_RECEIVE_ID);
        if (!lastPage.isEmpty()) {
          start = CIntVb(lastPage);
          // The day that was still being recorded last time is fetched again; its old
          // row goes first. Only TIME_MEASUREMENT is cleared, so the old profile row
          // stays behind under its old receive id, where nothing reads it.
          QString seqNum;
          if (!VTDB_DeleteDayMeasurementFromPage(db, lastReceiveId, lastPage, seqNum)) {
            WriteTrace(QStringLiteral("2"), kCalcName,
                       QStringLiteral("VTDB_DeleteDayMeasurementFromPage Error"));
            return false;
          }
          if (!VTDB_DeleteTimeMeasurement(db, lastReceiveId, seqNum)) {
            WriteTrace(QStringLiteral("2"), kCalcName,
                       QStringLiteral("VTDB_DeleteTimeMeasurement Error"));
            return false;
          }
        }
      }
    }

    pageCount = WrapPageCount(static_cast<qint16>(end - start + 1), ctx.device);
    startPage = start;
    endPage = end;
    return true;
  } catch (const std::exception& e) {
    WriteTrace(QStringLiteral("2"), kCalcName, QString::fromUtf8(e.what()));
    return false;
  }
}

bool CheckPMReset(VtDatabase& db, const ReceiveContext& ctx, const QString& userId) {
  try {
    if (Ini_GetDownloadDataRange()) return false;  // full receives need no warning
    if (userId.isEmpty()) return false;
    UserRecord user;
    if (!VTDB_GetUserInfoFromUserId(db, userId, user)) return false;
    if (StartPageDayKnown(db, ctx, userId)) return CleanField(user.LAST_PAGE).isEmpty();
    return true;
  } catch (const std::exception& e) {
    WriteTrace(QStringLiteral("2"), QStringLiteral("CheckPMReset"), QString::fromUtf8(e.what()));
    return false;
  }
}

qint16 DayLoopPage(qint16 startPage, int i, qint16 ringSize) {
  int page = startPage + i - 1;
  if (page > ringSize) page -= ringSize;
  return static_cast<qint16>(page);
}
