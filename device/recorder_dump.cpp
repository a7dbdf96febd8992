#include "recorder_dump.h"

#include <QStringList>

#include "data_convert.h"

qint32 ReadRecorderContents(TavoReader& reader, DeviceClock& clock, RecorderContents& out,
                            QString* error) {
  const auto fail = [error](qint32 code, const QString& message) {
    if (error != nullptr) *error = message;
    return code;
  };
  DeviceState state;
  if (UsbOpen(reader, clock, state) == 0)
    return fail(kDeviceNoTransfer, QStringLiteral("no recorder on the reader"));
  qint32 code = PM_RecvManage(reader, clock, state, QString());
  if (code == kDeviceUnknownKind) {
    UsbClose(reader, state);
    return fail(code, QStringLiteral("not a recorder of a known kind (code %1)").arg(code));
  }
  if (code != kDeviceOk) {
    UsbClose(reader, state);
    return fail(code, QStringLiteral("the management block cannot be read (code %1)").arg(code));
  }
  const FlashManage& m = state.manage;
  const int ring = RingSize(state.pmKind, state.pmLang);
  const QString pageProblem = CheckRecorderPageNumbers(m, state.pmKind, state.pmLang);
  if (!pageProblem.isEmpty()) {
    UsbClose(reader, state);
    return fail(kDeviceNoTransfer, pageProblem);
  }
  out.kind = state.pmKind;
  out.language = state.pmLang;
  out.manage = m;
  out.pages.clear();
  // Every page from the start page up to the recording page, round the ring. A full
  // ring has its recording page just below the start page: that is all the pages, not
  // none, even though a receive's page count reads it as none.
  const int count = WrapPageCount(static_cast<qint16>(m.RecordingPage - m.RecordStartPage), state) + 1;
  for (int i = 1; i <= count; ++i) {
    int page = m.RecordStartPage + i - 1;
    if (page > ring) page -= ring;
    code = PM_RecvData(reader, clock, state, static_cast<qint16>(page), QString());
    if (code != kDeviceOk) {
      UsbClose(reader, state);
      return fail(code, QStringLiteral("page %1 cannot be read (code %2)").arg(page).arg(code));
    }
    out.pages.emplace_back(page, state.data);
  }
  UsbClose(reader, state);
  return kDeviceOk;
}

namespace {

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

QString DateValue(const QDate& d) {
  return IsNoDate(d) ? QString() : d.toString(QStringLiteral("yyyy-MM-dd"));
}
QString DateTimeValue(const QDateTime& dt) {
  return IsNoDate(dt.date()) ? QString() : dt.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}
QString TimeValue(const QTime& t) { return t.toString(QStringLiteral("HH:mm:ss")); }

// Field name and its value already in JSON form.
using Fields = QList<std::pair<QString, QString>>;

void Num(Fields& f, const char* name, qint64 v) { f.append({QLatin1String(name), QString::number(v)}); }
void Text(Fields& f, const char* name, const QString& v) { f.append({QLatin1String(name), JsonString(v)}); }

Fields ManageFields(const FlashManage& m) {
  Fields f;
  Text(f, "FixedData", m.FixedData);
  Num(f, "VersionNo", m.VersionNo);
  Num(f, "ErrorCode", m.ErrorCode);
  Text(f, "CpuNo", m.CpuNo);
  Num(f, "RecorderId", m.RecorderId);
  Text(f, "bcDate", DateValue(m.bcDate));
  Text(f, "bcTime", TimeValue(m.bcTime));
  Num(f, "Gender", m.Gender);
  Num(f, "Age", m.Age);
  Num(f, "HeightCm", m.HeightCm);
  Num(f, "WeightKg", m.WeightKg);
  Num(f, "TargetActivity", m.TargetActivity);
  Num(f, "GroupNo", m.GroupNo);
  Num(f, "KeyLock", m.KeyLock);
  Num(f, "FixedDisplayItem", m.FixedDisplayItem);
  Num(f, "MemorySetting", m.MemorySetting);
  Num(f, "MemoryDays", m.MemoryDays);
  Num(f, "StandbySetting", m.StandbySetting);
  Num(f, "IntentionalIntensity", m.IntentionalIntensity);
  Num(f, "DurationSetting", m.DurationSetting);
  Num(f, "IntensityThreshold", m.IntensityThreshold);
  Num(f, "RecordStartPage", m.RecordStartPage);
  Num(f, "RecordEndPage", m.RecordEndPage);
  Num(f, "RecordingPage", m.RecordingPage);
  Text(f, "bcNowDate", DateValue(m.bcNowDate));
  Text(f, "bcNowTime", TimeValue(m.bcNowTime));
  Num(f, "BatteryLowFlag", m.BatteryLowFlag);
  Text(f, "bcMeasureStart", DateTimeValue(m.bcMeasureStart));
  Num(f, "UnitFlag", m.UnitFlag);
  Num(f, "WeightPound", m.WeightPound);
  Num(f, "WeightFraction", m.WeightFraction);
  const QByteArray check(reinterpret_cast<const char*>(m.RecordCheck.data()), kRecordCheckBytes);
  Text(f, "RecordCheck", QString::fromLatin1(check.toHex()));
  Num(f, "RangeLower", m.RangeLower);
  Num(f, "RangeUpper", m.RangeUpper);
  Num(f, "TargetTime", m.TargetTime);
  Num(f, "Stride", m.Stride);
  Num(f, "TargetSteps", m.TargetSteps);
  Num(f, "DisplayItem", m.DisplayItem);
  Num(f, "LogicSelect", m.LogicSelect);
  Num(f, "TargetSelect", m.TargetSelect);
  Num(f, "DailyWeightSelect", m.DailyWeightSelect);
  Text(f, "DailyWeightTime", TimeValue(m.DailyWeightTime));
  return f;
}

Fields PageFields(int page, const FlashData& d, const QString& kind) {
  Fields f;
  Num(f, "page", page);
  Num(f, "VersionNo", d.VersionNo);
  Num(f, "RecorderId", d.RecorderId);
  Text(f, "CpuNo", d.CpuNo);
  Num(f, "SentFlag", d.SentFlag);
  Num(f, "SettingChangedFlag", d.SettingChangedFlag);
  Num(f, "BatteryChangedFlag", d.BatteryChangedFlag);
  Num(f, "ClearKeyFlag", d.ClearKeyFlag);
  Num(f, "RecordTime", d.RecordTime);
  Text(f, "bcDate", DateValue(d.bcDate));
  Num(f, "WeekDay", d.WeekDay);
  Num(f, "Gender", d.Gender);
  Num(f, "Age", d.Age);
  Num(f, "HeightCm", d.HeightCm);
  Num(f, "WeightKg", d.WeightKg);
  Num(f, "TargetActivity", d.TargetActivity);
  Num(f, "GroupCode", d.GroupCode);
  Num(f, "TotalEnergy", d.TotalEnergy);
  Num(f, "Activity", d.Activity);
  Num(f, "StepCount", d.StepCount);
  for (int i = 0; i < 10; ++i) f.append({QStringLiteral("Level%1").arg(i), QString::number(d.level(i))});
  Num(f, "LevelSmall", d.LevelSmall);
  Num(f, "Intentional", d.Intentional);
  Num(f, "Duration", d.Duration);
  Num(f, "Frequency", d.Frequency);
  Num(f, "LowBatteryDays", d.LowBatteryDays);
  for (int i = 1; i <= 10; ++i) f.append({QStringLiteral("Event%1").arg(i), JsonString(TimeValue(d.event(i)))});
  QString profile;
  profile.reserve(kProfileSlots * 4 + 2);
  profile += QLatin1Char('[');
  const LevelProfileArray& values = KindProfile(d, kind);
  for (int i = 0; i < kProfileSlots; ++i) {
    if (i > 0) profile += QLatin1Char(',');
    profile += QString::number(values[static_cast<size_t>(i)]);
  }
  profile += QLatin1Char(']');
  f.append({QStringLiteral("LevelProfile"), profile});
  Num(f, "UnitFlag", d.UnitFlag);
  Num(f, "WeightPound", d.WeightPound);
  Num(f, "Exercise", d.Exercise);
  Num(f, "DailyWeightSelect", d.DailyWeightSelect);
  Text(f, "DailyWeightTime", TimeValue(d.DailyWeightTime));
  Num(f, "WeightFraction", d.WeightFraction);
  Num(f, "TargetSelect", d.TargetSelect);
  Num(f, "RangeLower", d.RangeLower);
  Num(f, "RangeUpper", d.RangeUpper);
  Num(f, "TargetTime", d.TargetTime);
  Num(f, "RangeMinutes", d.RangeMinutes);
  Num(f, "Distance", d.Distance);
  Num(f, "LogicSelect", d.LogicSelect);
  Num(f, "Stride", d.Stride);
  Num(f, "TargetSteps", d.TargetSteps);
  return f;
}

QString JsonObject(const Fields& f, const QString& indent) {
  QString r = QStringLiteral("{\n");
  for (qsizetype i = 0; i < f.size(); ++i) {
    r += indent + QStringLiteral("  ") + JsonString(f[i].first) + QStringLiteral(": ") + f[i].second;
    r += i + 1 < f.size() ? QStringLiteral(",\n") : QStringLiteral("\n");
  }
  r += indent + QLatin1Char('}');
  return r;
}

}  // namespace

QByteArray RecorderContentsJson(const RecorderContents& c) {
  QString r = QStringLiteral("{\n  \"kind\": ") + JsonString(c.kind) + QStringLiteral(",\n  \"language\": ") +
              JsonString(c.language) + QStringLiteral(",\n  \"manage\": ") +
              JsonObject(ManageFields(c.manage), QStringLiteral("  ")) + QStringLiteral(",\n  \"pages\": [");
  for (size_t i = 0; i < c.pages.size(); ++i) {
    r += i == 0 ? QStringLiteral("\n    ") : QStringLiteral(",\n    ");
    r += JsonObject(PageFields(c.pages[i].first, c.pages[i].second, c.kind), QStringLiteral("    "));
  }
  r += c.pages.empty() ? QStringLiteral("]\n}\n") : QStringLiteral("\n  ]\n}\n");
  return r.toUtf8();
}

QString RecorderContentsText(const RecorderContents& c) {
  QString r;
  r += QStringLiteral("kind: %1\nlanguage: %2\n\n[management block]\n").arg(c.kind, c.language);
  for (const auto& [name, value] : ManageFields(c.manage)) r += name + QStringLiteral(": ") + value + QLatin1Char('\n');
  const bool mets = c.kind == PMKIND_BRIO_METS;
  for (const auto& [page, data] : c.pages) {
    r += QStringLiteral("\n[page %1]\n").arg(page);
    for (const auto& [name, value] : PageFields(page, data, c.kind)) {
      if (name == QLatin1String("page")) continue;
      if (name == QLatin1String("LevelProfile")) {
        // One line an hour: 30 slots as shown in the log dump, "." for no data.
        r += QStringLiteral("LevelProfile:\n");
        const LevelProfileArray& values = KindProfile(data, c.kind);
        for (int h = 0; h < 24; ++h) {
          QStringList cells;
          for (int s = 0; s < 30; ++s) {
            const QString t = ProfileSlotDumpText(values[static_cast<size_t>(h * 30 + s)], mets);
            cells << (t.isEmpty() ? QStringLiteral(".") : t);
          }
          r += QStringLiteral("  %1:00 ").arg(h, 2, 10, QLatin1Char('0')) + cells.join(QLatin1Char(' ')) + QLatin1Char('\n');
        }
        continue;
      }
      r += name + QStringLiteral(": ") + value + QLatin1Char('\n');
    }
  }
  return r;
}
