// The dumps of the decoded records into the trace log (PM_DUNP 1 and 2).
#include "data_convert.h"
#include "trace.h"

namespace {

QString DateText(const QDate& d) { return d.toString(QStringLiteral("yyyy/MM/dd")); }
QString TimeText(const QTime& t) { return t.toString(QStringLiteral("hh:mm")); }

void Add(QStringList& lines, const char* label, const QString& value) {
  lines << QString::fromUtf8(label) + value + QLatin1Char(']');
}
void Add(QStringList& lines, const char* label, qint64 value) {
  Add(lines, label, QString::number(value));
}

// One line per slot: "HH:MM:value", the clock from 00:00 in steps of 2 minutes.
void AddProfile(QStringList& lines, const LevelProfileArray& profile, bool mets) {
  lines << QStringLiteral("身体活動レベル日内変動");
  for (int i = 0; i < kProfileSlots; ++i) {
    const int minutes = i * 2;
    lines << QStringLiteral("%1:%2:%3")
                 .arg(minutes / 60, 2, 10, QLatin1Char('0'))
                 .arg(minutes % 60, 2, 10, QLatin1Char('0'))
                 .arg(ProfileSlotDumpText(profile[static_cast<size_t>(i)], mets));
  }
}

void WriteLines(const QString& name, const QStringList& lines) {
  const QString level = QStringLiteral("0");
  for (const QString& line : lines) WriteTrace(level, name, line);
}

}  // namespace

QStringList FlashManageDumpLines(const FlashManage& m, const QString& kind) {
  QStringList l;
  Add(l, "固定データ[", m.FixedData);
  Add(l, "バージョン番号[", m.VersionNo);
  Add(l, "エラーコード[", m.ErrorCode);
  Add(l, "CPUNo.[", m.CpuNo);
  Add(l, "ペドミラID[", m.RecorderId);
  Add(l, "日付[", DateText(m.bcDate));
  Add(l, "時刻[", TimeText(m.bcTime));
  Add(l, "性別[", m.Gender == 0 ? QStringLiteral("M") : QStringLiteral("F"));
  Add(l, "年齢[", m.Age);
  Add(l, "身長[", m.HeightCm);
  Add(l, "体重[", m.WeightKg);
  Add(l, "目標運動量[", m.TargetActivity);
  Add(l, "グループ番号[", m.GroupNo);
  Add(l, "キーロック[", m.KeyLock);
  Add(l, "固定表示項目[", m.FixedDisplayItem);
  Add(l, "メモリ設定[", m.MemorySetting);
  Add(l, "メモリ日数[", m.MemoryDays);
  Add(l, "測定待機設定[", m.StandbySetting);
  Add(l, "意識的運動強度設定[", m.IntentionalIntensity);
  Add(l, "継続時間設定[", m.DurationSetting);
  Add(l, "運動強度TH[", m.IntensityThreshold);
  Add(l, "記録開始ページ[", m.RecordStartPage);
  Add(l, "記録終了ページ[", m.RecordEndPage);
  Add(l, "記録中ページ[", m.RecordingPage);
  Add(l, "現在の日付[", DateText(m.bcNowDate));
  Add(l, "現在の時刻[", TimeText(m.bcNowTime));
  Add(l, "電池消耗フラグ[", m.BatteryLowFlag);
  Add(l, "測定開始日時[", m.bcMeasureStart.toString(QStringLiteral("yyyy/MM/dd hh:mm")));
  Add(l, "単位種別識別フラグ[", m.UnitFlag);
  Add(l, "体重（ポンド）[", m.WeightPound);
  Add(l, "体重（少数点以下）[", m.WeightFraction);
  // 90 lines of 10 entries: "0000:d d d d d-d d d d d", the last digit of each byte.
  l << QStringLiteral("データ記録確認");
  for (int row = 0; row < kRecordCheckBytes / 10; ++row) {
    QString line = QStringLiteral("%1:").arg(row * 10, 4, 10, QLatin1Char('0'));
    for (int i = 0; i < 10; ++i) {
      if (i > 0) line += (i == 5) ? QLatin1Char('-') : QLatin1Char(' ');
      line += QChar(u'0' + m.RecordCheck[static_cast<size_t>(row * 10 + i)] % 10);
    }
    l << line;
  }
  Add(l, "強度範囲下限[", m.RangeLower);
  Add(l, "強度範囲上限[", m.RangeUpper);
  Add(l, "目標時間[", m.TargetTime);
  Add(l, "歩幅[", m.Stride);
  Add(l, "目標歩数[", m.TargetSteps);
  Add(l, "表示項目設定[", m.DisplayItem);
  Add(l, "測定論理選択フラグ[", m.LogicSelect);
  Add(l, "目標値選択フラグ[", m.TargetSelect);
  if (IsZrOrKtKind(kind)) {
    Add(l, "日毎体重設定選択フラグ[", m.DailyWeightSelect);
    Add(l, "日毎体重設定表示時刻[", TimeText(m.DailyWeightTime));
  }
  return l;
}

QStringList FlashDataDumpLines(const FlashData& d, const QString& kind) {
  QStringList l;
  Add(l, "バージョンNo.[", d.VersionNo);
  Add(l, "ペドミラID[", d.RecorderId);
  Add(l, "CPU番号[", d.CpuNo);
  Add(l, "送信済フラグ[", d.SentFlag);
  Add(l, "設定変更フラグ[", d.SettingChangedFlag);
  Add(l, "電池交換フラグ[", d.BatteryChangedFlag);
  Add(l, "クリアキーフラグ[", d.ClearKeyFlag);
  Add(l, "データ記録時間[", d.RecordTime);
  Add(l, "日付[", DateText(d.bcDate));
  Add(l, "曜日[", d.WeekDay);
  Add(l, "性別[", d.Gender);
  Add(l, "年齢[", d.Age);
  Add(l, "身長[", d.HeightCm);
  Add(l, "体重[", d.WeightKg);
  Add(l, "目標運動量[", d.TargetActivity);
  Add(l, "グループコード[", d.GroupCode);
  Add(l, "総消費量[", d.TotalEnergy);
  Add(l, "運動量[", d.Activity);
  Add(l, "歩数[", d.StepCount);
  static const char* const kLevelLabels[10] = {"強度0[", "強度1[", "強度2[", "強度3[", "強度4[",
                                               "強度5[", "強度6[", "強度7[", "強度8[", "強度9["};
  for (int i = 0; i < 10; ++i) Add(l, kLevelLabels[i], d.level(i));
  Add(l, "微少運動[", d.LevelSmall);
  Add(l, "意識的運動強度[", d.Intentional);
  Add(l, "継続時間[", d.Duration);
  Add(l, "頻度（回数）[", d.Frequency);
  Add(l, "低電池電圧日数[", d.LowBatteryDays);
  for (int i = 1; i <= 10; ++i)
    l << QStringLiteral("イベント%1[").arg(i) + TimeText(d.event(i)) + QLatin1Char(']');

  const auto addTargets = [&l, &d]() {
    Add(l, "目標値選択フラグ[", d.TargetSelect);
    Add(l, "強度範囲下限[", d.RangeLower);
    Add(l, "強度範囲上限[", d.RangeUpper);
    Add(l, "目標時間[", d.TargetTime);
    Add(l, "設定強度範囲の累積時間[", d.RangeMinutes);
    Add(l, "歩行距離[", d.Distance);
    Add(l, "測定論理選択フラグ[", d.LogicSelect);
    Add(l, "歩幅[", d.Stride);
    Add(l, "目標歩数[", d.TargetSteps);
    Add(l, "単位種別識別フラグ[", d.UnitFlag);
    Add(l, "体重データ(ポンド)[", d.WeightPound);
  };

  if (kind == PMKIND_BRIO_METS) {
    addTargets();
    Add(l, "体重(少数点以下1位)[", d.WeightFraction);
    AddProfile(l, d.LevelProfileMets, true);
  } else if (kind == PMKIND_AL) {
    AddProfile(l, d.LevelProfileAL, false);
    Add(l, "単位種別識別フラグ[", d.UnitFlag);
    Add(l, "体重データ(ポンド)[", d.WeightPound);
  } else {
    AddProfile(l, d.LevelProfileBrio, false);
    if (IsZrOrKtKind(kind)) {
      Add(l, "エクササイズ[", d.Exercise);
      Add(l, "日毎体重設定選択[", d.DailyWeightSelect);
      Add(l, "日毎体重設定表示時刻[", TimeText(d.DailyWeightTime));
    }
    Add(l, "体重(少数点以下1位)[", d.WeightFraction);
    addTargets();
  }
  return l;
}

QStringList RawDumpLines(ByteSpan raw) {
  QStringList l;
  l.reserve(static_cast<qsizetype>(raw.size()));
  for (size_t i = 0; i < raw.size(); ++i) l << QStringLiteral("%1(%2)").arg(i).arg(raw[i]);
  return l;
}

void DumpFlashManage(const FlashManage& manage, const QString& kind, ByteSpan raw, int level) {
  if (level != 1 && level != 2) return;
  const QString name = QStringLiteral("FLASHMANAGE");
  WriteLines(name, FlashManageDumpLines(manage, kind));
  if (level == 2) WriteLines(name, RawDumpLines(raw));
}

void DumpFlashData(const FlashData& page, const QString& kind, ByteSpan raw, int level) {
  if (level != 1 && level != 2) return;
  const QString name = QStringLiteral("FLASHDATA");
  WriteLines(name, FlashDataDumpLines(page, kind));
  if (level == 2) WriteLines(name, RawDumpLines(raw));
}
