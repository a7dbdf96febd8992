// Decoders of the management block and the data pages. Offsets are the recorder's
// memory layout; every decoder checks first that the bytes cover its layout.
#include "data_convert.h"

namespace {

// The fields of the management block that every kind reads (bytes 0 to 959).
void DecodeManageCommon(const quint8* b, FlashManage& m) {
  m.FixedData = ByteToText(b + 0, 5);
  m.VersionNo = b[5];
  m.ErrorCode = b[6];
  m.CpuNo = ByteToText(b + 7, 6);
  m.RecorderId = ByteToLong(b + 13);
  m.bcDate = Bcd4ToDate(b + 17);
  m.bcTime = Bcd2ToTime(b + 21);
  m.Gender = b[23];
  m.Age = b[24];
  m.HeightCm = b[25];
  m.WeightKg = b[26];
  m.TargetActivity = ByteToWord(b + 27);
  m.GroupNo = ByteToWord(b + 29);
  m.KeyLock = b[31];
  m.FixedDisplayItem = b[32];
  m.MemorySetting = b[33];
  m.MemoryDays = b[34];
  m.StandbySetting = b[35];
  m.IntentionalIntensity = b[36];
  m.DurationSetting = b[37];
  m.IntensityThreshold = b[38];
  m.RecordStartPage = ByteToWord(b + 39);
  m.RecordEndPage = ByteToWord(b + 41);
  m.RecordingPage = ByteToWord(b + 43);
  m.bcNowDate = Bcd3ToDate(b + 45);
  m.bcNowTime = Bcd2ToTime(b + 48);
  m.BatteryLowFlag = b[50];
  m.bcMeasureStart = Bcd5ToDateTime(b + 51);
  m.UnitFlag = b[56];
  m.WeightPound = ByteToWord(b + 57);
  std::copy(b + 60, b + 60 + kRecordCheckBytes, m.RecordCheck.begin());
}

// Bytes 0 to 83 of a page, the same on all kinds.
void DecodePageCommon(const quint8* b, FlashData& d) {
  d.VersionNo = b[0];
  d.RecorderId = ByteToLong(b + 1);
  d.CpuNo = ByteToText(b + 5, 6);
  d.SentFlag = b[11];
  d.SettingChangedFlag = b[12];
  d.BatteryChangedFlag = b[13];
  d.ClearKeyFlag = b[14];
  d.RecordTime = ByteToWord(b + 15);
  d.bcDate = Bcd4ToDate(b + 17);
  d.WeekDay = b[21];
  d.Gender = b[22];
  d.Age = b[23];
  d.HeightCm = b[24];
  d.WeightKg = b[25];
  d.TargetActivity = ByteToWord(b + 26);
  d.GroupCode = ByteToWord(b + 28);
  d.TotalEnergy = ByteToWord(b + 30);
  d.Activity = ByteToWord(b + 32);
  d.StepCount = Bcd3ToLong(b + 34);
  for (int i = 0; i < 10; ++i) d.level(i) = ByteToWord(b + 37 + 2 * i);
  d.LevelSmall = ByteToWord(b + 57);
  d.Intentional = b[59];
  d.Duration = b[60];
  d.Frequency = b[61];
  d.LowBatteryDays = ByteToWord(b + 62);
  for (int i = 0; i < 10; ++i) d.event(i + 1) = Bcd2ToTime(b + 64 + 2 * i);
}

// 360 bytes, two slots each, the high nibble the earlier slot.
void DecodeNibbleProfile(const quint8* b, LevelProfileArray& profile) {
  for (int i = 0; i < kProfileSlots / 2; ++i) {
    profile[2 * i] = static_cast<quint8>(b[i] >> 4);
    profile[2 * i + 1] = static_cast<quint8>(b[i] & 0x0F);
  }
}

}  // namespace

qint32 FlashManage_ConvertByteArray2Struct(ByteSpan block, FlashManage& out) {
  if (block.size() < 960) return kErrSubscriptOutOfRange;
  FlashManage m;
  DecodeManageCommon(block.data(), m);
  m.FixedData = kPmAlFixedText;
  out = std::move(m);
  return kDeviceOk;
}

qint32 FlashManage_ConvertByteArray2Struct_Brio(ByteSpan block, FlashManage& out,
                                                const QString& kind) {
  const bool zrKt = IsZrOrKtKind(kind);
  if (block.size() < (zrKt ? 972u : 969u)) return kErrSubscriptOutOfRange;
  const quint8* b = block.data();
  FlashManage m;
  DecodeManageCommon(b, m);
  m.WeightFraction = b[59];
  m.RangeLower = b[960];
  m.RangeUpper = b[961];
  m.TargetTime = b[962];
  m.Stride = b[963];
  m.TargetSteps = ByteToWord(b + 964);
  m.DisplayItem = b[966];
  m.LogicSelect = b[967];
  m.TargetSelect = b[968];
  if (zrKt) {
    m.DailyWeightSelect = b[969];
    m.DailyWeightTime = Bcd2ToTime(b + 970);
  }
  out = std::move(m);
  return kDeviceOk;
}

qint32 FlashData_ConvertByteArray2Struct(ByteSpan page, FlashData& out) {
  if (page.size() < static_cast<size_t>(kPageBytesNibble)) return kErrSubscriptOutOfRange;
  const quint8* b = page.data();
  FlashData d;
  DecodePageCommon(b, d);
  DecodeNibbleProfile(b + 84, d.LevelProfileAL);
  d.UnitFlag = b[493];
  d.WeightPound = ByteToWord(b + 494);
  out = std::move(d);
  return kDeviceOk;
}

qint32 FlashData_ConvertByteArray2Struct_Brio(ByteSpan page, FlashData& out, const QString& kind) {
  if (page.size() < static_cast<size_t>(kPageBytesNibble)) return kErrSubscriptOutOfRange;
  const quint8* b = page.data();
  FlashData d;
  DecodePageCommon(b, d);
  DecodeNibbleProfile(b + 84, d.LevelProfileBrio);
  if (IsZrOrKtKind(kind)) {
    d.Exercise = ByteToWord(b + 475);
    d.DailyWeightSelect = b[477];
    d.DailyWeightTime = Bcd2ToTime(b + 478);
  }
  d.WeightFraction = b[480];
  d.TargetSelect = b[481];
  d.RangeLower = b[482];
  d.RangeUpper = b[483];
  d.TargetTime = b[484];
  d.RangeMinutes = ByteToWord(b + 485);
  d.Distance = Bcd2ToWord(b + 487);
  d.LogicSelect = b[489];
  d.Stride = b[490];
  d.TargetSteps = ByteToWord(b + 491);
  d.UnitFlag = b[493];
  d.WeightPound = ByteToWord(b + 494);
  out = std::move(d);
  return kDeviceOk;
}

qint32 FlashData_ConvertByteArray2Struct_METS(ByteSpan page, FlashData& out) {
  if (page.size() < static_cast<size_t>(kPageBytesMets)) return kErrSubscriptOutOfRange;
  const quint8* b = page.data();
  FlashData d;
  DecodePageCommon(b, d);
  d.TargetSelect = b[84];
  d.RangeLower = b[85];
  d.RangeUpper = b[86];
  d.TargetTime = b[87];
  d.RangeMinutes = ByteToWord(b + 88);
  d.Distance = Bcd2ToWord(b + 90);
  d.LogicSelect = b[92];
  d.Stride = b[93];
  d.TargetSteps = ByteToWord(b + 94);
  d.UnitFlag = b[96];
  d.WeightPound = ByteToWord(b + 97);
  d.WeightFraction = b[99];
  // Transfer blocks 2, 3 and 4 of the page: 240 slots each, then 8 unread bytes.
  for (int part = 0; part < 3; ++part) {
    const quint8* src = b + kTransferBlockBytes * (part + 1);
    std::copy(src, src + 240, d.LevelProfileMets.begin() + 240 * part);
  }
  out = std::move(d);
  return kDeviceOk;
}

qint32 FlashData_Decode(ByteSpan page, FlashData& out, const QString& kind) {
  if (kind == PMKIND_AL) return FlashData_ConvertByteArray2Struct(page, out);
  if (kind == PMKIND_BRIO_NORMAL || kind == PMKIND_BRIO_ZR || kind == PMKIND_BRIO_KT)
    return FlashData_ConvertByteArray2Struct_Brio(page, out, kind);
  if (kind == PMKIND_BRIO_METS) return FlashData_ConvertByteArray2Struct_METS(page, out);
  return kDeviceUnknownKind;
}
