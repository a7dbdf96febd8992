#include "device/memory_layout.h"

#include <algorithm>
#include <vector>

#include "device/data_convert.h"

namespace layout {

namespace {

using C = Codec;
using O = Only;
using M = FlashManage;
using D = FlashData;

const ManageField kManage[] = {
    {"FixedData", "固定データ[", 0, C::Text, &M::FixedData, O::All, 5},
    {"VersionNo", "バージョン番号[", 5, C::Byte, &M::VersionNo},
    {"ErrorCode", "エラーコード[", 6, C::Byte, &M::ErrorCode},
    {"CpuNo", "CPUNo.[", 7, C::Text, &M::CpuNo, O::All, 6},
    {"RecorderId", "ペドミラID[", 13, C::Long, &M::RecorderId},
    {"bcDate", "日付[", 17, C::Bcd4Date, &M::bcDate},
    {"bcTime", "時刻[", 21, C::Bcd2Time, &M::bcTime},
    {"Gender", "性別[", 23, C::Byte, &M::Gender},
    {"Age", "年齢[", 24, C::Byte, &M::Age},
    {"HeightCm", "身長[", 25, C::Byte, &M::HeightCm},
    {"WeightKg", "体重[", 26, C::Byte, &M::WeightKg},
    {"TargetActivity", "目標運動量[", 27, C::Word, &M::TargetActivity},
    {"GroupNo", "グループ番号[", 29, C::Word, &M::GroupNo},
    {"KeyLock", "キーロック[", 31, C::Byte, &M::KeyLock},
    {"FixedDisplayItem", "固定表示項目[", 32, C::Byte, &M::FixedDisplayItem},
    {"MemorySetting", "メモリ設定[", 33, C::Byte, &M::MemorySetting},
    {"MemoryDays", "メモリ日数[", 34, C::Byte, &M::MemoryDays},
    {"StandbySetting", "測定待機設定[", 35, C::Byte, &M::StandbySetting},
    {"IntentionalIntensity", "意識的運動強度設定[", 36, C::Byte, &M::IntentionalIntensity},
    {"DurationSetting", "継続時間設定[", 37, C::Byte, &M::DurationSetting},
    {"IntensityThreshold", "運動強度TH[", 38, C::Byte, &M::IntensityThreshold},
    {"RecordStartPage", "記録開始ページ[", 39, C::Word, &M::RecordStartPage},
    {"RecordEndPage", "記録終了ページ[", 41, C::Word, &M::RecordEndPage},
    {"RecordingPage", "記録中ページ[", 43, C::Word, &M::RecordingPage},
    {"bcNowDate", "現在の日付[", 45, C::Bcd3Date, &M::bcNowDate},
    {"bcNowTime", "現在の時刻[", 48, C::Bcd2Time, &M::bcNowTime},
    {"BatteryLowFlag", "電池消耗フラグ[", 50, C::Byte, &M::BatteryLowFlag},
    {"bcMeasureStart", "測定開始日時[", 51, C::Bcd5DateTime, &M::bcMeasureStart},
    {"UnitFlag", "単位種別識別フラグ[", 56, C::Byte, &M::UnitFlag},
    {"WeightPound", "体重（ポンド）[", 57, C::Word, &M::WeightPound},
    {"WeightFraction", "体重（少数点以下）[", 59, C::Byte, &M::WeightFraction, O::Brio},
    {"RecordCheck", "データ記録確認", 60, C::RecordCheck, &M::RecordCheck},
    {"RangeLower", "強度範囲下限[", 960, C::Byte, &M::RangeLower, O::Brio},
    {"RangeUpper", "強度範囲上限[", 961, C::Byte, &M::RangeUpper, O::Brio},
    {"TargetTime", "目標時間[", 962, C::Byte, &M::TargetTime, O::Brio},
    {"Stride", "歩幅[", 963, C::Byte, &M::Stride, O::Brio},
    {"TargetSteps", "目標歩数[", 964, C::Word, &M::TargetSteps, O::Brio},
    {"DisplayItem", "表示項目設定[", 966, C::Byte, &M::DisplayItem, O::Brio},
    {"LogicSelect", "測定論理選択フラグ[", 967, C::Byte, &M::LogicSelect, O::Brio},
    {"TargetSelect", "目標値選択フラグ[", 968, C::Byte, &M::TargetSelect, O::Brio},
    {"DailyWeightSelect", "日毎体重設定選択フラグ[", 969, C::Byte, &M::DailyWeightSelect, O::ZrKt},
    {"DailyWeightTime", "日毎体重設定表示時刻[", 970, C::Bcd2Time, &M::DailyWeightTime, O::ZrKt},
};

// Bytes 0 to 83 of a page, the same on all kinds.
const PageField kPageCommon[] = {
    {"VersionNo", "バージョンNo.[", 0, C::Byte, &D::VersionNo},
    {"RecorderId", "ペドミラID[", 1, C::Long, &D::RecorderId},
    {"CpuNo", "CPU番号[", 5, C::Text, &D::CpuNo, O::All, 6},
    {"SentFlag", "送信済フラグ[", 11, C::Byte, &D::SentFlag},
    {"SettingChangedFlag", "設定変更フラグ[", 12, C::Byte, &D::SettingChangedFlag},
    {"BatteryChangedFlag", "電池交換フラグ[", 13, C::Byte, &D::BatteryChangedFlag},
    {"ClearKeyFlag", "クリアキーフラグ[", 14, C::Byte, &D::ClearKeyFlag},
    {"RecordTime", "データ記録時間[", 15, C::Word, &D::RecordTime},
    {"bcDate", "日付[", 17, C::Bcd4Date, &D::bcDate},
    {"WeekDay", "曜日[", 21, C::Byte, &D::WeekDay},
    {"Gender", "性別[", 22, C::Byte, &D::Gender},
    {"Age", "年齢[", 23, C::Byte, &D::Age},
    {"HeightCm", "身長[", 24, C::Byte, &D::HeightCm},
    {"WeightKg", "体重[", 25, C::Byte, &D::WeightKg},
    {"TargetActivity", "目標運動量[", 26, C::Word, &D::TargetActivity},
    {"GroupCode", "グループコード[", 28, C::Word, &D::GroupCode},
    {"TotalEnergy", "総消費量[", 30, C::Word, &D::TotalEnergy},
    {"Activity", "運動量[", 32, C::Word, &D::Activity},
    {"StepCount", "歩数[", 34, C::Bcd3Long, &D::StepCount},
    {"Level0", "強度0[", 37, C::Word, &D::Level0},
    {"Level1", "強度1[", 39, C::Word, &D::Level1},
    {"Level2", "強度2[", 41, C::Word, &D::Level2},
    {"Level3", "強度3[", 43, C::Word, &D::Level3},
    {"Level4", "強度4[", 45, C::Word, &D::Level4},
    {"Level5", "強度5[", 47, C::Word, &D::Level5},
    {"Level6", "強度6[", 49, C::Word, &D::Level6},
    {"Level7", "強度7[", 51, C::Word, &D::Level7},
    {"Level8", "強度8[", 53, C::Word, &D::Level8},
    {"Level9", "強度9[", 55, C::Word, &D::Level9},
    {"LevelSmall", "微少運動[", 57, C::Word, &D::LevelSmall},
    {"Intentional", "意識的運動強度[", 59, C::Byte, &D::Intentional},
    {"Duration", "継続時間[", 60, C::Byte, &D::Duration},
    {"Frequency", "頻度（回数）[", 61, C::Byte, &D::Frequency},
    {"LowBatteryDays", "低電池電圧日数[", 62, C::Word, &D::LowBatteryDays},
    {"Event1", "イベント1[", 64, C::Bcd2Time, &D::Event1},
    {"Event2", "イベント2[", 66, C::Bcd2Time, &D::Event2},
    {"Event3", "イベント3[", 68, C::Bcd2Time, &D::Event3},
    {"Event4", "イベント4[", 70, C::Bcd2Time, &D::Event4},
    {"Event5", "イベント5[", 72, C::Bcd2Time, &D::Event5},
    {"Event6", "イベント6[", 74, C::Bcd2Time, &D::Event6},
    {"Event7", "イベント7[", 76, C::Bcd2Time, &D::Event7},
    {"Event8", "イベント8[", 78, C::Bcd2Time, &D::Event8},
    {"Event9", "イベント9[", 80, C::Bcd2Time, &D::Event9},
    {"Event10", "イベント10[", 82, C::Bcd2Time, &D::Event10},
};

const char kProfileLabel[] = "身体活動レベル日内変動";

const PageField kPageAlTail[] = {
    {"LevelProfile", kProfileLabel, 84, C::NibbleProfile, &D::LevelProfileAL},
    {"UnitFlag", "単位種別識別フラグ[", 493, C::Byte, &D::UnitFlag},
    {"WeightPound", "体重データ(ポンド)[", 494, C::Word, &D::WeightPound},
};

const PageField kPageBrioTail[] = {
    {"LevelProfile", kProfileLabel, 84, C::NibbleProfile, &D::LevelProfileBrio},
    {"Exercise", "エクササイズ[", 475, C::Word, &D::Exercise, O::ZrKt},
    {"DailyWeightSelect", "日毎体重設定選択[", 477, C::Byte, &D::DailyWeightSelect, O::ZrKt},
    {"DailyWeightTime", "日毎体重設定表示時刻[", 478, C::Bcd2Time, &D::DailyWeightTime, O::ZrKt},
    {"WeightFraction", "体重(少数点以下1位)[", 480, C::Byte, &D::WeightFraction},
    {"TargetSelect", "目標値選択フラグ[", 481, C::Byte, &D::TargetSelect},
    {"RangeLower", "強度範囲下限[", 482, C::Byte, &D::RangeLower},
    {"RangeUpper", "強度範囲上限[", 483, C::Byte, &D::RangeUpper},
    {"TargetTime", "目標時間[", 484, C::Byte, &D::TargetTime},
    {"RangeMinutes", "設定強度範囲の累積時間[", 485, C::Word, &D::RangeMinutes},
    {"Distance", "歩行距離[", 487, C::Bcd2Word, &D::Distance},
    {"LogicSelect", "測定論理選択フラグ[", 489, C::Byte, &D::LogicSelect},
    {"Stride", "歩幅[", 490, C::Byte, &D::Stride},
    {"TargetSteps", "目標歩数[", 491, C::Word, &D::TargetSteps},
    {"UnitFlag", "単位種別識別フラグ[", 493, C::Byte, &D::UnitFlag},
    {"WeightPound", "体重データ(ポンド)[", 494, C::Word, &D::WeightPound},
};

// The same fields packed ahead of the profile, which fills the last three transfer blocks.
const PageField kPageMetsTail[] = {
    {"TargetSelect", "目標値選択フラグ[", 84, C::Byte, &D::TargetSelect},
    {"RangeLower", "強度範囲下限[", 85, C::Byte, &D::RangeLower},
    {"RangeUpper", "強度範囲上限[", 86, C::Byte, &D::RangeUpper},
    {"TargetTime", "目標時間[", 87, C::Byte, &D::TargetTime},
    {"RangeMinutes", "設定強度範囲の累積時間[", 88, C::Word, &D::RangeMinutes},
    {"Distance", "歩行距離[", 90, C::Bcd2Word, &D::Distance},
    {"LogicSelect", "測定論理選択フラグ[", 92, C::Byte, &D::LogicSelect},
    {"Stride", "歩幅[", 93, C::Byte, &D::Stride},
    {"TargetSteps", "目標歩数[", 94, C::Word, &D::TargetSteps},
    {"UnitFlag", "単位種別識別フラグ[", 96, C::Byte, &D::UnitFlag},
    {"WeightPound", "体重データ(ポンド)[", 97, C::Word, &D::WeightPound},
    {"WeightFraction", "体重(少数点以下1位)[", 99, C::Byte, &D::WeightFraction},
    {"LevelProfile", kProfileLabel, kTransferBlockBytes, C::MetsProfile, &D::LevelProfileMets},
};

std::vector<PageField> Joined(std::span<const PageField> tail) {
  std::vector<PageField> rows(std::begin(kPageCommon), std::end(kPageCommon));
  rows.insert(rows.end(), tail.begin(), tail.end());
  return rows;
}

// ---- members by type ----
template <class R>
qint64 IntOf(const R& r, const Member<R>& m) {
  if (const auto p = std::get_if<quint8 R::*>(&m)) return r.**p;
  return r.*std::get<qint32 R::*>(m);
}

template <class R>
void SetInt(R& r, const Member<R>& m, qint64 v) {
  if (const auto p = std::get_if<quint8 R::*>(&m))
    r.**p = static_cast<quint8>(v);
  else
    r.*std::get<qint32 R::*>(m) = static_cast<qint32>(v);
}

template <class T, class R>
T& Get(R& r, const Member<R>& m) {
  return r.*std::get<T R::*>(m);
}
template <class T, class R>
const T& Get(const R& r, const Member<R>& m) {
  return r.*std::get<T R::*>(m);
}

// ---- encoding ----
quint8 ToBcd(int v) {
  v = std::clamp(v, 0, 99);
  return static_cast<quint8>(((v / 10) << 4) | (v % 10));
}

void PutBcdDigits(quint8* b, int bytes, qint64 value) {
  for (int i = bytes - 1; i >= 0; --i) {
    b[i] = ToBcd(static_cast<int>(value % 100));
    value /= 100;
  }
}

template <class R>
void DecodeRow(const Field<R>& f, const quint8* bytes, R& r) {
  const quint8* b = bytes + f.offset;
  switch (f.codec) {
    case C::Byte: SetInt(r, f.member, b[0]); break;
    case C::Word: SetInt(r, f.member, ByteToWord(b)); break;
    case C::Long: SetInt(r, f.member, ByteToLong(b)); break;
    case C::Bcd2Word: SetInt(r, f.member, Bcd2ToWord(b)); break;
    case C::Bcd3Long: SetInt(r, f.member, Bcd3ToLong(b)); break;
    case C::Text: Get<QString>(r, f.member) = ByteToText(b, f.size); break;
    case C::Bcd4Date: Get<QDate>(r, f.member) = Bcd4ToDate(b); break;
    case C::Bcd3Date: Get<QDate>(r, f.member) = Bcd3ToDate(b); break;
    case C::Bcd5DateTime: Get<QDateTime>(r, f.member) = Bcd5ToDateTime(b); break;
    case C::Bcd2Time: Get<QTime>(r, f.member) = Bcd2ToTime(b); break;
    case C::RecordCheck: {
      auto& check = Get<std::array<quint8, kRecordCheckBytes>>(r, f.member);
      std::copy(b, b + kRecordCheckBytes, check.begin());
      break;
    }
    case C::NibbleProfile: {
      auto& profile = Get<LevelProfileArray>(r, f.member);
      for (int i = 0; i < kProfileSlots / 2; ++i) {
        profile[static_cast<size_t>(2 * i)] = static_cast<quint8>(b[i] >> 4);
        profile[static_cast<size_t>(2 * i + 1)] = static_cast<quint8>(b[i] & 0x0F);
      }
      break;
    }
    case C::MetsProfile: {
      // 240 slots in each of three transfer blocks, then 8 unread bytes.
      auto& profile = Get<LevelProfileArray>(r, f.member);
      for (int part = 0; part < 3; ++part) {
        const quint8* src = b + kTransferBlockBytes * part;
        std::copy(src, src + 240, profile.begin() + 240 * part);
      }
      break;
    }
  }
}

template <class R>
void EncodeRow(const Field<R>& f, quint8* bytes, const R& r) {
  quint8* b = bytes + f.offset;
  switch (f.codec) {
    case C::Byte: b[0] = static_cast<quint8>(std::clamp<qint64>(IntOf(r, f.member), 0, 255)); break;
    case C::Word: {
      const auto v = static_cast<quint32>(std::clamp<qint64>(IntOf(r, f.member), 0, 65535));
      b[0] = static_cast<quint8>(v & 0xFF);
      b[1] = static_cast<quint8>(v >> 8);
      break;
    }
    case C::Long: {
      const auto u = static_cast<quint32>(IntOf(r, f.member));
      for (int i = 0; i < 4; ++i) b[i] = static_cast<quint8>((u >> (8 * i)) & 0xFF);
      break;
    }
    case C::Bcd2Word: PutBcdDigits(b, 2, IntOf(r, f.member)); break;
    case C::Bcd3Long: PutBcdDigits(b, 3, IntOf(r, f.member)); break;
    case C::Text: {
      const QByteArray latin = Get<QString>(r, f.member).toLatin1();
      for (int i = 0; i < f.size; ++i) b[i] = i < latin.size() ? static_cast<quint8>(latin[i]) : ' ';
      break;
    }
    case C::Bcd4Date: {
      const QDate& d = Get<QDate>(r, f.member);
      b[0] = ToBcd(d.year() / 100);
      b[1] = ToBcd(d.year() % 100);
      b[2] = ToBcd(d.month());
      b[3] = ToBcd(d.day());
      break;
    }
    case C::Bcd3Date: {
      const QDate& d = Get<QDate>(r, f.member);
      b[0] = ToBcd(d.year() % 100);
      b[1] = ToBcd(d.month());
      b[2] = ToBcd(d.day());
      break;
    }
    case C::Bcd5DateTime: {
      const QDateTime& dt = Get<QDateTime>(r, f.member);
      b[0] = ToBcd(dt.date().year() % 100);
      b[1] = ToBcd(dt.date().month());
      b[2] = ToBcd(dt.date().day());
      b[3] = ToBcd(dt.time().hour());
      b[4] = ToBcd(dt.time().minute());
      break;
    }
    case C::Bcd2Time: {
      const QTime& t = Get<QTime>(r, f.member);
      if (IsNoEventTime(t)) {
        b[0] = b[1] = 0xFF;
      } else {
        b[0] = ToBcd(t.hour());
        b[1] = ToBcd(t.minute());
      }
      break;
    }
    case C::RecordCheck: {
      const auto& check = Get<std::array<quint8, kRecordCheckBytes>>(r, f.member);
      std::copy(check.begin(), check.end(), b);
      break;
    }
    case C::NibbleProfile: {
      const auto& profile = Get<LevelProfileArray>(r, f.member);
      for (int i = 0; i < kProfileSlots / 2; ++i)
        b[i] = static_cast<quint8>(((profile[static_cast<size_t>(2 * i)] & 0x0F) << 4) |
                                   (profile[static_cast<size_t>(2 * i + 1)] & 0x0F));
      break;
    }
    case C::MetsProfile: {
      const auto& profile = Get<LevelProfileArray>(r, f.member);
      for (int i = 0; i < kProfileSlots; ++i) b[kTransferBlockBytes * (i / 240) + i % 240] = profile[static_cast<size_t>(i)];
      break;
    }
  }
}

// Bytes a field takes in memory.
int BytesOf(Codec c, int textSize) {
  switch (c) {
    case C::Byte: return 1;
    case C::Word:
    case C::Bcd2Word:
    case C::Bcd2Time: return 2;
    case C::Bcd3Long:
    case C::Bcd3Date: return 3;
    case C::Long:
    case C::Bcd4Date: return 4;
    case C::Bcd5DateTime: return 5;
    case C::Text: return textSize;
    case C::RecordCheck: return kRecordCheckBytes;
    case C::NibbleProfile: return kProfileSlots / 2;
    case C::MetsProfile: return 2 * kTransferBlockBytes + 240;
  }
  return 0;
}

QString DateValue(const QDate& d) { return IsNoDate(d) ? QString() : d.toString(QStringLiteral("yyyy-MM-dd")); }

}  // namespace

std::span<const ManageField> ManageLayout() { return kManage; }

std::span<const PageField> PageLayout(RecorderKind kind) {
  static const std::vector<PageField> al = Joined(kPageAlTail);
  static const std::vector<PageField> brio = Joined(kPageBrioTail);
  static const std::vector<PageField> mets = Joined(kPageMetsTail);
  const KindInfo& info = InfoOf(kind);
  if (info.mets) return mets;
  return info.brio ? std::span<const PageField>(brio) : std::span<const PageField>(al);
}

bool Applies(Only only, RecorderKind kind) {
  const KindInfo& info = InfoOf(kind);
  switch (only) {
    case Only::All: return true;
    case Only::Brio: return info.brio;
    case Only::ZrKt: return info.zrKt;
  }
  return false;
}

int ManageBytes(RecorderKind kind) {
  int end = 0;
  for (const ManageField& f : ManageLayout()) {
    if (!Applies(f.only, kind)) continue;
    const int size = BytesOf(f.codec, f.size);
    end = std::max(end, f.offset + size);
  }
  return end;
}

void Decode(const quint8* bytes, FlashManage& out, RecorderKind kind) {
  for (const ManageField& f : ManageLayout())
    if (Applies(f.only, kind)) DecodeRow(f, bytes, out);
}

void Decode(const quint8* bytes, FlashData& out, RecorderKind kind) {
  for (const PageField& f : PageLayout(kind))
    if (Applies(f.only, kind)) DecodeRow(f, bytes, out);
}

void Encode(QByteArray& bytes, const FlashManage& in, RecorderKind kind) {
  auto* b = reinterpret_cast<quint8*>(bytes.data());
  for (const ManageField& f : ManageLayout())
    if (Applies(f.only, kind)) EncodeRow(f, b, in);
}

void Encode(QByteArray& bytes, const FlashData& in, RecorderKind kind) {
  auto* b = reinterpret_cast<quint8*>(bytes.data());
  for (const PageField& f : PageLayout(kind))
    if (Applies(f.only, kind)) EncodeRow(f, b, in);
}

template <class R>
QString LogText(const Field<R>& f, const R& r) {
  switch (f.codec) {
    case C::Text: return Get<QString>(r, f.member);
    case C::Bcd4Date:
    case C::Bcd3Date: return Get<QDate>(r, f.member).toString(QStringLiteral("yyyy/MM/dd"));
    case C::Bcd5DateTime: return Get<QDateTime>(r, f.member).toString(QStringLiteral("yyyy/MM/dd hh:mm"));
    case C::Bcd2Time: return Get<QTime>(r, f.member).toString(QStringLiteral("hh:mm"));
    case C::RecordCheck:
    case C::NibbleProfile:
    case C::MetsProfile: return QString();
    default: return QString::number(IntOf(r, f.member));
  }
}

QString JsonString(const QString& s) {
  QString r;
  r.reserve(s.size() + 2);
  r += QLatin1Char('"');
  for (QChar c : s) {
    const char16_t u = c.unicode();
    if (u == '"') r += QStringLiteral("\\\"");
    else if (u == '\\') r += QStringLiteral("\\\\");
    else if (u < 0x20) r += QStringLiteral("\\u%1").arg(static_cast<int>(u), 4, 16, QLatin1Char('0'));
    else r += c;
  }
  r += QLatin1Char('"');
  return r;
}

template <class R>
QString JsonValue(const Field<R>& f, const R& r) {
  switch (f.codec) {
    case C::Text: return JsonString(Get<QString>(r, f.member));
    case C::Bcd4Date:
    case C::Bcd3Date: return JsonString(DateValue(Get<QDate>(r, f.member)));
    case C::Bcd5DateTime: {
      const QDateTime& dt = Get<QDateTime>(r, f.member);
      return JsonString(IsNoDate(dt.date()) ? QString() : dt.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")));
    }
    case C::Bcd2Time: return JsonString(Get<QTime>(r, f.member).toString(QStringLiteral("HH:mm:ss")));
    case C::RecordCheck: {
      const auto& check = Get<std::array<quint8, kRecordCheckBytes>>(r, f.member);
      const QByteArray bytes(reinterpret_cast<const char*>(check.data()), kRecordCheckBytes);
      return JsonString(QString::fromLatin1(bytes.toHex()));
    }
    case C::NibbleProfile:
    case C::MetsProfile: {
      const auto& profile = Get<LevelProfileArray>(r, f.member);
      QString out;
      out.reserve(kProfileSlots * 4 + 2);
      out += QLatin1Char('[');
      for (int i = 0; i < kProfileSlots; ++i) {
        if (i > 0) out += QLatin1Char(',');
        out += QString::number(profile[static_cast<size_t>(i)]);
      }
      out += QLatin1Char(']');
      return out;
    }
    default: return QString::number(IntOf(r, f.member));
  }
}

template QString LogText(const ManageField&, const FlashManage&);
template QString LogText(const PageField&, const FlashData&);
template QString JsonValue(const ManageField&, const FlashManage&);
template QString JsonValue(const PageField&, const FlashData&);

}  // namespace layout
