// The rows a reception writes, made from the recorder's records: the day row and the
// profile row of a page, the reception history row of a management block, and the
// update of the user's row after the last page. The store writes them as they stand.
#pragma once

#include <QString>

#include "device/device.h"
#include "store/records.h"

// The DAY_MEASUREMENT row of a page. The version text of the management block chooses the
// family rules, kind the ZR/KT column rules; a family B page gets the distance carry
// applied to the record itself. A page dated with the zero date gets empty
// MEASUREMENT_DAY and RAW_MEASUREMENT_DAY.
DayRecord DayMeasurementRow(const QString& receiveId, int seqNum, const QString& userId, int page,
                            int startPage, FlashData& day, const FlashManage& manage,
                            RecorderKind kind);

// The 720 comma-joined slot texts of a page's profile for a recorder kind;
// "" for an unknown kind.
QString MakeActLevelBlockText(const FlashData& day, RecorderKind kind);
// The TIME_MEASUREMENT_BLOCK row of a page: its slot texts, MEASUREMENT_MODE "1" for a
// METS recorder.
TimeBlockRecord TimeMeasurementBlockRow(const QString& receiveId, int seqNum, const FlashData& day,
                                        RecorderKind kind);

// The RECEIVE_HISTORY row of a reception from its management block.
ReceiveHistoryRecord ReceiveHistoryRow(const QString& receiveId, const QString& receiveDate,
                                       const QString& rawFileName, const FlashManage& manage);

// What the reception writes into the user's row: body data of the page, the reception,
// LAST_PAGE (the end page when the day limit has cut the ring of kind and lang short,
// else the page being recorded) and, unless keepTargets, the targets the recorder's
// family has.
UserReceiveUpdate UserUpdateFromReceive(const QString& receiveId, const FlashManage& manage,
                                        const FlashData& page, bool keepTargets, RecorderKind kind,
                                        RecorderLang lang);
