// Byte conversions of the recorder's memory and the block and page decoders.
// Every decoder is pure: bytes in, record out, and a code (0, or a run-time error
// number such as kErrSubscriptOutOfRange when the bytes are shorter than the layout).
#pragma once

#include <QDate>
#include <QDateTime>
#include <QString>
#include <QTime>

#include "device/device_records.h"

// ---- DataConvert ----
// "NoData" when all n bytes are 0xFF; otherwise the bytes as Shift_JIS text (the
// recorder's code page), NULs kept as they stand.
QString ByteToText(const quint8* bytes, int n);
quint16 ByteToWord(const quint8* bytes);   // little-endian, unsigned
qint32 ByteToLong(const quint8* bytes);    // little-endian, two's complement
// BCD: high nibble times 10 plus low nibble; nibbles above 9 count as their binary value.
qint32 BcdToByte(quint8 b);
qint32 Bcd2ToWord(const quint8* bytes);    // b0 * 100 + b1
qint32 Bcd3ToLong(const quint8* bytes);    // b0 * 10000 + b1 * 100 + b2
// YY YY MM DD, four year digits; an impossible date gives ZeroDate().
QDate Bcd4ToDate(const quint8* bytes);
// YY MM DD; YY >= 70 is 19YY, below 70 is 20YY; an impossible date gives ZeroDate().
QDate Bcd3ToDate(const quint8* bytes);
// YY MM DD hh mm; year 2000 + YY; hours and minutes are added to the date so that they
// carry into later days; an impossible date gives ZeroDate() 00:00.
QDateTime Bcd5ToDateTime(const quint8* bytes);
// hh mm as a time of day with seconds 00; anything that is no time gives 00:00:59.
QTime Bcd2ToTime(const quint8* bytes);
inline QTime NoTimeMarker() { return QTime(0, 0, 59); }

// ---- management block (992 bytes) ----
// Family A. Overwrites FixedData with "12820".
qint32 FlashManage_ConvertByteArray2Struct(ByteSpan block, FlashManage& out);
// The four BRIO kinds; the ZR and KT bytes (969..971) are read only when kind is one
// of those two.
qint32 FlashManage_ConvertByteArray2Struct_Brio(ByteSpan block, FlashManage& out,
                                                RecorderKind kind);

// ---- data pages ----
// Family A (496 bytes).
qint32 FlashData_ConvertByteArray2Struct(ByteSpan page, FlashData& out);
// BRIO_NORMAL, BRIO_ZR, BRIO_KT (496 bytes); Exercise and the daily weight setting are
// read only for ZR and KT.
qint32 FlashData_ConvertByteArray2Struct_Brio(ByteSpan page, FlashData& out,
                                              RecorderKind kind);
// BRIO_METS (992 bytes); the profile lies in the last three transfer blocks, 240
// values and 8 unread bytes each.
qint32 FlashData_ConvertByteArray2Struct_METS(ByteSpan page, FlashData& out);
// Picks the page decoder by kind; kDeviceUnknownKind for any other kind.
qint32 FlashData_Decode(ByteSpan page, FlashData& out, RecorderKind kind);

// ---- profile values as shown and stored ----
// Dump text of a slot: nibble kinds "0", "0.5", "1".."9", "" (no data);
// METS "0", "0.1".."9.0" ("#0.0"), "" (no data).
QString ProfileSlotDumpText(quint8 raw, bool mets);

// ---- dumps to the trace log (name "FLASHMANAGE" / "FLASHDATA", level 0) ----
// level is PM_DUNP: 1 the record, 2 also the raw bytes; anything else writes nothing.
void DumpFlashManage(const FlashManage& manage, RecorderKind kind, ByteSpan raw, int level);
void DumpFlashData(const FlashData& page, RecorderKind kind, ByteSpan raw, int level);
// The dump lines themselves (without writing them), for tests and tools.
QStringList FlashManageDumpLines(const FlashManage& manage, RecorderKind kind);
QStringList FlashDataDumpLines(const FlashData& page, RecorderKind kind);
QStringList RawDumpLines(ByteSpan raw);
