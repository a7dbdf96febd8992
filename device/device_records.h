// The decoded recorder records, the kind and language texts and the small context a
// receive carries from the management block to the last page.
#pragma once

#include <QByteArray>
#include <QDate>
#include <QDateTime>
#include <QString>
#include <QTime>
#include <QtGlobal>
#include <array>
#include <span>

#include "device/recorder_kinds.h"
#include "frame/helpers.h"

// The zero date at 00:00 as a date-time. Device date-times are UTC, so no daylight
// saving rule can shift a decoded hour.
inline QDateTime ZeroDateTime() { return QDateTime(ZeroDate(), QTime(0, 0), Qt::UTC); }

// The fixed text every family A record carries, whatever its block says.
inline const QString kPmAlFixedText = QStringLiteral("12820");

// ---- result codes of the device operations ----
inline constexpr qint32 kDeviceOk = 0;
inline constexpr qint32 kDeviceNoTransfer = -30000;   // no handle, start or read refused
inline constexpr qint32 kDeviceUnknownKind = -40001;  // recorder of no known kind
// Run-time error numbers the decoders and the transport can end with.
inline constexpr qint32 kErrSubscriptOutOfRange = 9;  // a block shorter than its layout
inline constexpr qint32 kErrFileIo = 75;              // raw file could not be written
inline constexpr qint32 kErrInternal = 51;            // any other failure inside a call

// ---- sizes ----
inline constexpr int kTransferBlockBytes = 248;
inline constexpr int kManageBlockBytes = 992;
inline constexpr int kPageBytesNibble = 496;  // AL, BRIO_NORMAL, BRIO_ZR, BRIO_KT
inline constexpr int kPageBytesMets = 992;    // BRIO_METS
inline constexpr int kPageBufferBytes = 992;  // a page buffer is always this large
inline constexpr int kFirstPageBlock = 9;
inline constexpr int kProfileSlots = 720;
inline constexpr int kRecordCheckBytes = 900;

using LevelProfileArray = std::array<quint8, kProfileSlots>;
using ByteSpan = std::span<const quint8>;

// A QByteArray's bytes as the decoders take them.
inline ByteSpan AsBytes(const QByteArray& bytes) {
  return ByteSpan(reinterpret_cast<const quint8*>(bytes.constData()), static_cast<size_t>(bytes.size()));
}

// The decoded management block. What a kind does not decode stays zero or empty; dates
// not decoded are the zero date, times 00:00:00.
struct FlashManage {
  QString FixedData;
  quint8 VersionNo = 0;
  quint8 ErrorCode = 0;
  QString CpuNo;
  qint32 RecorderId = 0;
  QDate bcDate = ZeroDate();
  QTime bcTime = QTime(0, 0);
  qint32 Gender = 0;
  qint32 Age = 0;
  qint32 HeightCm = 0;
  qint32 WeightKg = 0;
  qint32 TargetActivity = 0;
  qint32 GroupNo = 0;
  qint32 KeyLock = 0;
  qint32 FixedDisplayItem = 0;
  qint32 MemorySetting = 0;
  qint32 MemoryDays = 0;
  qint32 StandbySetting = 0;
  qint32 IntentionalIntensity = 0;
  qint32 DurationSetting = 0;
  qint32 IntensityThreshold = 0;
  qint32 RecordStartPage = 0;
  qint32 RecordEndPage = 0;
  qint32 RecordingPage = 0;
  QDate bcNowDate = ZeroDate();
  QTime bcNowTime = QTime(0, 0);
  qint32 BatteryLowFlag = 0;
  QDateTime bcMeasureStart = ZeroDateTime();
  qint32 UnitFlag = 0;
  qint32 WeightPound = 0;
  qint32 WeightFraction = 0;
  std::array<quint8, kRecordCheckBytes> RecordCheck{};
  qint32 RangeLower = 0;
  qint32 RangeUpper = 0;
  qint32 TargetTime = 0;
  qint32 Stride = 0;
  qint32 TargetSteps = 0;
  qint32 DisplayItem = 0;
  qint32 LogicSelect = 0;
  qint32 TargetSelect = 0;
  qint32 DailyWeightSelect = 0;
  QTime DailyWeightTime = QTime(0, 0);
};

// One decoded data page (one recorded day). Each kind fills only its own profile array:
// family A LevelProfileAL, the nibble BRIO kinds LevelProfileBrio, METS LevelProfileMets.
// A nibble profile holds one nibble per byte (0..15); METS holds tenths of METS (0..255).
struct FlashData {
  quint8 VersionNo = 0;
  qint32 RecorderId = 0;
  QString CpuNo;
  quint8 SentFlag = 0;
  quint8 SettingChangedFlag = 0;
  quint8 BatteryChangedFlag = 0;
  quint8 ClearKeyFlag = 0;
  qint32 RecordTime = 0;
  QDate bcDate = ZeroDate();
  quint8 WeekDay = 0;
  quint8 Gender = 0;
  quint8 Age = 0;
  quint8 HeightCm = 0;
  quint8 WeightKg = 0;
  qint32 TargetActivity = 0;
  qint32 GroupCode = 0;
  qint32 TotalEnergy = 0;
  qint32 Activity = 0;
  qint32 StepCount = 0;
  qint32 Level0 = 0;
  qint32 Level1 = 0;
  qint32 Level2 = 0;
  qint32 Level3 = 0;
  qint32 Level4 = 0;
  qint32 Level5 = 0;
  qint32 Level6 = 0;
  qint32 Level7 = 0;
  qint32 Level8 = 0;
  qint32 Level9 = 0;
  qint32 LevelSmall = 0;
  quint8 Intentional = 0;
  quint8 Duration = 0;
  quint8 Frequency = 0;
  qint32 LowBatteryDays = 0;
  QTime Event1 = QTime(0, 0);
  QTime Event2 = QTime(0, 0);
  QTime Event3 = QTime(0, 0);
  QTime Event4 = QTime(0, 0);
  QTime Event5 = QTime(0, 0);
  QTime Event6 = QTime(0, 0);
  QTime Event7 = QTime(0, 0);
  QTime Event8 = QTime(0, 0);
  QTime Event9 = QTime(0, 0);
  QTime Event10 = QTime(0, 0);
  LevelProfileArray LevelProfileAL{};
  quint8 UnitFlag = 0;
  qint32 WeightPound = 0;
  LevelProfileArray LevelProfileBrio{};
  LevelProfileArray LevelProfileMets{};
  qint32 Exercise = 0;
  quint8 DailyWeightSelect = 0;
  QTime DailyWeightTime = QTime(0, 0);
  quint8 WeightFraction = 0;
  quint8 TargetSelect = 0;
  quint8 RangeLower = 0;
  quint8 RangeUpper = 0;
  quint8 TargetTime = 0;
  qint32 RangeMinutes = 0;
  qint32 Distance = 0;
  quint8 LogicSelect = 0;
  quint8 Stride = 0;
  qint32 TargetSteps = 0;

  // Event1..Event10 by number (1..10); anything else gives Event1.
  QTime event(int n) const;
  QTime& event(int n);
  // Level0..Level9 by number (0..9).
  qint32 level(int n) const;
  qint32& level(int n);
};

// The profile array that a kind fills (AL, BRIO nibble kinds, METS). Unknown kinds get
// the AL array, which is then all zero.
const LevelProfileArray& KindProfile(const FlashData& page, RecorderKind kind);
LevelProfileArray& KindProfile(FlashData& page, RecorderKind kind);

// The events' "no time recorded" marker: seconds 59 (00:00:59 from 0xFF bytes).
inline bool IsNoEventTime(const QTime& t) { return t.isValid() && t.second() == 59; }

// What a receive carries from its management block to its last page. The receive
// workflow owns one of these and passes it to every device call; nothing in device/
// keeps it anywhere else.
struct DeviceState {
  qint32 hUSB = 0;          // reader handle, 0 = none
  FlashManage manage;       // the decoded management block (tpFlashManage)
  FlashData data;           // the last decoded page (tpFlashData)
  FlashData startPage;      // the record of RecordStartPage, filled by the receive
  RecorderKind pmKind = RecorderKind::Unknown;     // set by FlashManage_SetPMKind
  RecorderLang pmLang = RecorderLang::Japanese;    // likewise
};

// ---- kinds, languages and the ring ----
bool IsKnownPMKind(RecorderKind kind);
bool IsNibbleKind(RecorderKind kind);  // AL, BRIO_NORMAL, BRIO_ZR, BRIO_KT
bool IsZrOrKtKind(RecorderKind kind);
// Bytes per page (496 or 992) and transfer blocks per page (2 or 4); 0 for unknown kinds.
int PageBytesOfKind(RecorderKind kind);
int BlocksPerPageOfKind(RecorderKind kind);
// First transfer block of page p: 9 + (p - 1) * blocks per page.
int FirstBlockOfPage(RecorderKind kind, int page);

// Pages in the ring of the kind in that language.
qint16 RingSize(RecorderKind kind, RecorderLang lang);
// Adds the ring size to a negative difference and leaves any other value alone.
qint16 WrapPageCount(qint16 difference, RecorderKind kind, RecorderLang lang);
inline qint16 WrapPageCount(qint16 difference, const DeviceState& state) {
  return WrapPageCount(difference, state.pmKind, state.pmLang);
}

// The page numbers of a management block checked against the ring of its kind: the
// start page and the page being recorded, and the end page when the day limit is on.
// "" when they lie in 1..ring; else what is wrong, for messages and the log.
QString CheckRecorderPageNumbers(const FlashManage& manage, RecorderKind kind, RecorderLang lang);
// The largest memory any recorder kind has: the management blocks and a full ring.
qint64 LargestRecorderMemoryBytes();

// Decides kind and language from a raw management block (at least 968 bytes) and the
// configured recorder numbers (SYSTEM section). 0, or kDeviceUnknownKind with the
// state's kind and language left as they were.
qint32 FlashManage_SetPMKind(std::span<const quint8> block, DeviceState& state);
// True when this installation (LANG) must refuse the recorder.
bool IsRecorderMismatch(RecorderKind kind, const FlashManage& manage);
