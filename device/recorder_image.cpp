// Recorder memory images. A day is modelled as a sequence of 720 two-minute slots with
// an activity state (none, tiny movement, level 1..9); every figure of the page (level
// counts, steps, calories, distance, time in range) is summed from those slots, so
// that the figures agree with the profile as they do on a real recorder.
#include "device/recorder_image.h"

#include <QCryptographicHash>
#include <QFile>
#include <QSaveFile>
#include <algorithm>
#include <cmath>
#include <numbers>

#include "device/data_convert.h"
#include "device/memory_layout.h"
#include "frame/config.h"
#include "frame/helpers.h"
#include "frame/shared_values.h"

namespace {

// ---- deterministic randomness: every stream is a pure function of its key ----
quint64 SplitMix(quint64& x) {
  x += 0x9E3779B97F4A7C15ull;
  quint64 z = x;
  z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
  z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
  return z ^ (z >> 31);
}

quint64 TextKey(const QString& text) {
  quint64 h = 1469598103934665603ull;  // FNV-1a
  for (QChar c : text) {
    h ^= c.unicode();
    h *= 1099511628211ull;
  }
  return h;
}

class Rng {
 public:
  Rng(quint64 a, quint64 b, quint64 c) {
    state_ = a;
    quint64 s = SplitMix(state_) ^ b;
    state_ = s;
    s = SplitMix(state_) ^ c;
    state_ = s;
    SplitMix(state_);
  }
  // Uniform in [lo, hi].
  int range(int lo, int hi) {
    if (hi <= lo) return lo;
    return lo + static_cast<int>(SplitMix(state_) % static_cast<quint64>(hi - lo + 1));
  }
  double unit() { return static_cast<double>(SplitMix(state_) >> 11) / 9007199254740992.0; }
  bool chance(double p) { return unit() < p; }

 private:
  quint64 state_;
};

// ---- the person wearing the recorder: fixed per seed and CPU number ----
struct Person {
  int gender = 0;  // 0 male, 1 female
  int age = 40;
  int heightCm = 170;
  double baseWeight = 65.0;
  int stride = 75;
  int targetSteps = 8000;
  int targetActivity = 250;
  int targetTime = 30;
  int targetSelect = 0;
  int groupNo = 0;
  qint32 recorderId = 1;
  int dailyWeightSelect = 0;
  QTime dailyWeightTime = QTime(7, 0);
};

QString EffectiveCpu(const RecorderImageOptions& o) {
  if (!o.cpuNo.isEmpty()) return o.cpuNo.left(6);
  quint64 x = 0xC0FFEEull ^ o.seed;
  return QStringLiteral("%1").arg(SplitMix(x) % 1000000, 6, 10, QLatin1Char('0'));
}

Person MakePerson(const RecorderImageOptions& o) {
  Rng r(o.seed, TextKey(EffectiveCpu(o)), 0x5045524Full);
  Person p;
  p.gender = r.range(0, 1);
  p.age = r.range(24, 72);
  p.heightCm = p.gender == 0 ? r.range(160, 188) : r.range(148, 172);
  const double bmi = 19.5 + r.unit() * 8.0;
  p.baseWeight = bmi * (p.heightCm / 100.0) * (p.heightCm / 100.0);
  p.stride = static_cast<int>(std::lround(p.heightCm * 0.45));
  p.targetSteps = r.range(6, 12) * 1000;
  p.targetActivity = r.range(15, 35) * 10;
  p.targetTime = r.range(2, 6) * 10;
  p.targetSelect = r.range(0, 1);
  p.groupNo = r.range(0, 3);
  p.recorderId = static_cast<qint32>(r.range(1, 2000000000));
  p.dailyWeightSelect = r.range(0, 1);
  p.dailyWeightTime = QTime(r.range(6, 8), r.range(0, 5) * 10);
  return p;
}

// Weight in tenths of kg on a date: a slow drift and a small daily wobble, both
// functions of the date only.
int WeightTenths(const RecorderImageOptions& o, const Person& p, const QDate& date) {
  const qint64 jd = date.toJulianDay();
  Rng r(o.seed, TextKey(EffectiveCpu(o)) ^ 0x57ull, static_cast<quint64>(jd));
  const double slow = 1.5 * std::sin(static_cast<double>(jd) * 2.0 * std::numbers::pi / 61.0);
  const double w = p.baseWeight + slow + (r.unit() - 0.5) * 0.6;
  return static_cast<int>(std::lround(w * 10.0));
}

// ---- one day ----
// Activity state of a slot: 0 none, 1 tiny movement, 2..10 level 1..9 (the nibble).
struct Slot {
  quint8 state = 0;
  quint8 mets = 0;     // tenths of METS
  int mainCount = 0;   // 4-second counts at the slot's level
  int restCount = 0;   // counts at the level below (or tiny / none)
  int steps = 0;
};

struct Day {
  std::array<Slot, kProfileSlots> slots;
  std::vector<QTime> events;
};

const int kCadence[10] = {0, 2, 25, 70, 95, 108, 118, 128, 150, 165};  // steps a minute
const double kMets[10] = {1.0, 1.5, 2.0, 2.8, 3.6, 4.3, 5.2, 6.1, 7.1, 8.3};

int LevelOfState(int state) { return state >= 2 ? state - 1 : 0; }

void Bout(std::array<Slot, kProfileSlots>& s, Rng& r, int from, int minutes, int lo, int hi) {
  const int n = std::max(1, minutes / 2);
  for (int i = from; i < from + n && i < kProfileSlots; ++i)
    if (i >= 0) s[static_cast<size_t>(i)].state = static_cast<quint8>(r.range(lo, hi) + 1);
}

Day MakeDay(const RecorderImageOptions& o, const QDate& date) {
  Rng r(o.seed, TextKey(EffectiveCpu(o)), static_cast<quint64>(date.toJulianDay()));
  Day day;
  auto& s = day.slots;
  const bool weekend = date.dayOfWeek() >= 6;
  const int wake = (6 * 60 + r.range(0, 90) + (weekend ? 60 : 0)) / 2;
  const int sleep = std::min(kProfileSlots, (22 * 60 + 30 + r.range(0, 90)) / 2);

  for (int i = 0; i < kProfileSlots; ++i) {
    Slot& slot = s[static_cast<size_t>(i)];
    if (i < wake || i >= sleep) {
      slot.state = r.chance(0.06) ? 1 : 0;
    } else {
      const double u = r.unit();
      slot.state = u < 0.05 ? 0 : u < 0.45 ? 1 : u < 0.80 ? 2 : 3;
    }
  }
  // Walks: the way to and from work on weekdays, errands on any day.
  if (!weekend) {
    Bout(s, r, wake + r.range(15, 30), r.range(10, 25), 3, 5);
    Bout(s, r, (17 * 60 + r.range(30, 120)) / 2, r.range(10, 25), 3, 5);
  }
  const int errands = r.range(3, 8);
  for (int e = 0; e < errands; ++e) Bout(s, r, r.range(wake, std::max(wake, sleep - 5)), r.range(2, 10), 2, 4);
  // Some days a proper workout.
  if (r.chance(weekend ? 0.55 : 0.3)) {
    const int start = r.range(wake + 30, std::max(wake + 30, sleep - 40));
    Bout(s, r, start, r.range(20, 50), 5, 8);
    if (r.chance(0.3)) Bout(s, r, start + 5, r.range(2, 6), 9, 9);
  }

  for (auto& slot : s) {
    const int level = LevelOfState(slot.state);
    if (slot.state == 0) {
      slot.mainCount = 30;
      slot.mets = 0;
    } else if (slot.state == 1) {
      slot.mainCount = r.range(8, 20);
      slot.restCount = 30 - slot.mainCount;
      slot.mets = static_cast<quint8>(r.range(10, 13));
    } else {
      slot.mainCount = r.range(18, 30);
      slot.restCount = 30 - slot.mainCount;
      slot.mets = static_cast<quint8>(10 + level * 8 + r.range(0, 7));
      const double c1 = kCadence[level] * (0.9 + 0.2 * r.unit());
      const double c0 = kCadence[level - 1];
      slot.steps = static_cast<int>(std::lround(2.0 * (c1 * slot.mainCount + c0 * slot.restCount) / 30.0));
    }
  }
  const int events = r.range(0, 3);
  for (int e = 0; e < events; ++e) {
    const int minute = r.range(wake * 2, std::max(wake * 2, sleep * 2 - 1));
    day.events.push_back(QTime(minute / 60, minute % 60));
  }
  std::sort(day.events.begin(), day.events.end());
  return day;
}

// ---- layout of the ring ----
QString FixedTextOf(const RecorderImageOptions& o) {
  const RecorderNumbers& n = o.numbers;
  switch (o.kind) {
    case RecorderKind::AL: return n.al;
    case RecorderKind::BrioZr: return n.kt200;
    case RecorderKind::BrioKt: return n.kt014;
    default: return o.english ? n.brioEng : n.brioJpn;
  }
}

int VersionByteOf(const RecorderImageOptions& o) {
  if (o.kind == RecorderKind::AL)
    return o.english ? std::clamp(o.numbers.validVersion, 0, 255)
                     : std::clamp(o.numbers.validVersion - 1, 0, 255);
  return 3;
}

RecorderLang LangOf(const RecorderImageOptions& o) {
  if (IsZrOrKtKind(o.kind)) return RecorderLang::Japanese;
  return o.english ? RecorderLang::English : RecorderLang::Japanese;
}

int RingOf(const RecorderImageOptions& o) { return RingSize(o.kind, LangOf(o)); }

int WrapPage(int page, int ring) {
  while (page > ring) page -= ring;
  while (page < 1) page += ring;
  return page;
}

bool MemoryLocked(const RecorderImageOptions& o) {
  return o.memorySetting == 1 && o.memoryDays > 0 && o.days > o.memoryDays;
}

struct RingLayout {
  int start = 1;
  int end = 1;
  int recording = 1;
};

RingLayout LayoutOf(const RecorderImageOptions& o) {
  const int ring = RingOf(o);
  RingLayout l;
  l.start = WrapPage(o.startPage, ring);
  l.recording = WrapPage(o.startPage + o.days - 1, ring);
  l.end = MemoryLocked(o) ? WrapPage(o.startPage + o.memoryDays - 1, ring) : l.recording;
  return l;
}

}  // namespace

RecorderNumbers RecorderNumbers::FromConfig() {
  RecorderNumbers n;
  if (GetConfigPath().isEmpty()) return n;
  const auto take = [](QString& target, const QString& value) {
    if (!value.trimmed().isEmpty()) target = value;
  };
  take(n.al, Ini_GetPmAlNumber());
  take(n.brioJpn, Ini_GetPmBrioJpnNumber());
  take(n.brioEng, Ini_GetPmBrioEngNumber());
  take(n.kt200, Ini_GetPmBrioKt200Number());
  take(n.kt014, Ini_GetPmBrioKt014Number());
  try {
    n.validVersion = Ini_GetValidVersionNumber();
  } catch (const ConfigError&) {
    // keep the default
  }
  return n;
}

QString CheckRecorderImageOptions(const RecorderImageOptions& o) {
  if (!IsKnownPMKind(o.kind)) return QStringLiteral("unknown recorder kind");
  if (o.english && IsZrOrKtKind(o.kind))
    return QStringLiteral("ZR and KT recorders are Japanese recorders only (use --lang ja)");
  const int ring = RingOf(o);
  if (o.days < 1 || o.days > ring)
    return QStringLiteral("days must lie between 1 and %1 for this recorder").arg(ring);
  if (!o.lastDay.isValid() || o.lastDay.year() < 2000 || o.lastDay.year() > 2099)
    return QStringLiteral("the recorder's clock must lie in 2000 to 2099");
  if (!o.clockTime.isValid()) return QStringLiteral("the recorder's time is not a time");
  if (o.startPage < 1 || o.startPage > ring)
    return QStringLiteral("start page must lie between 1 and %1").arg(ring);
  if (o.memorySetting < 0 || o.memorySetting > 255 || o.memoryDays < 0 || o.memoryDays > 255)
    return QStringLiteral("memory setting and days must lie between 0 and 255");
  if (o.unitFlag < 0 || o.unitFlag > 255) return QStringLiteral("unit flag must lie between 0 and 255");
  for (int p : o.erasedPages)
    if (p < 1 || p > ring) return QStringLiteral("erased page %1 lies outside the ring").arg(p);
  const QString cpu = EffectiveCpu(o);
  for (QChar c : cpu)
    if (c.unicode() < 0x20 || c.unicode() > 0x7E) return QStringLiteral("CPU number must be ASCII");
  for (const QString& t : {o.numbers.al, o.numbers.brioJpn, o.numbers.brioEng, o.numbers.kt200,
                           o.numbers.kt014})
    if (t.size() != 5) return QStringLiteral("recorder numbers must have 5 characters");
  return QString();
}

std::vector<ImagePage> RecorderImagePages(const RecorderImageOptions& o) {
  std::vector<ImagePage> pages;
  if (!CheckRecorderImageOptions(o).isEmpty()) return pages;
  const int ring = RingOf(o);
  const bool locked = MemoryLocked(o);
  for (int k = 0; k < o.days; ++k) {
    if (locked && k >= o.memoryDays) break;  // a full memory with the limit on stops writing
    ImagePage p;
    p.page = WrapPage(o.startPage + k, ring);
    p.date = o.lastDay.addDays(k - (o.days - 1));
    p.recording = k == o.days - 1;
    p.erased = o.erasedPages.contains(p.page);
    pages.push_back(p);
  }
  return pages;
}

QByteArray MakeManageBlock(const RecorderImageOptions& o) {
  const Person person = MakePerson(o);
  const RingLayout ring = LayoutOf(o);
  const int weight = WeightTenths(o, person, o.lastDay);
  FlashManage m;
  m.FixedData = FixedTextOf(o);
  m.VersionNo = static_cast<quint8>(VersionByteOf(o));
  m.CpuNo = EffectiveCpu(o);
  m.RecorderId = person.recorderId;
  m.bcDate = o.lastDay;
  m.bcTime = o.clockTime;
  m.Gender = person.gender;
  m.Age = person.age;
  m.HeightCm = person.heightCm;
  m.WeightKg = weight / 10;
  m.TargetActivity = person.targetActivity;
  m.GroupNo = person.groupNo;
  m.MemorySetting = o.memorySetting;
  m.MemoryDays = o.memoryDays;
  m.IntentionalIntensity = 4;
  m.DurationSetting = 10;
  m.IntensityThreshold = 4;
  m.RecordStartPage = ring.start;
  m.RecordEndPage = ring.end;
  m.RecordingPage = ring.recording;
  m.bcNowDate = o.lastDay;
  m.bcNowTime = o.clockTime;
  m.bcMeasureStart = QDateTime(o.lastDay.addDays(-(o.days - 1)), QTime(0, 0), Qt::UTC);
  m.UnitFlag = o.unitFlag;
  m.WeightPound = static_cast<qint32>(std::lround(weight / 10.0 * 2.20462));
  m.WeightFraction = weight % 10;
  // Record check: one byte a page of the ring, 1 where a day is held.
  for (const ImagePage& p : RecorderImagePages(o))
    if (!p.erased && p.page <= kRecordCheckBytes) m.RecordCheck[static_cast<size_t>(p.page - 1)] = 1;
  m.RangeLower = 4;
  m.RangeUpper = 9;
  m.TargetTime = person.targetTime;
  m.Stride = person.stride;
  m.TargetSteps = person.targetSteps;
  m.LogicSelect = InfoOf(o.kind).mets ? 1 : 0;
  m.TargetSelect = person.targetSelect;
  m.DailyWeightSelect = person.dailyWeightSelect;
  m.DailyWeightTime = person.dailyWeightTime;
  // The bytes no field of the kind covers stay erased.
  QByteArray b(kManageBlockBytes, static_cast<char>(0xFF));
  layout::Encode(b, m, o.kind);
  return b;
}

QByteArray MakeDayPage(const RecorderImageOptions& o, const QDate& date, bool recording) {
  const Person person = MakePerson(o);
  const Day day = MakeDay(o, date);
  const bool mets = InfoOf(o.kind).mets;
  const int weight = WeightTenths(o, person, date);
  const int elapsedSlots =
      recording ? std::min(kProfileSlots, (o.clockTime.hour() * 60 + o.clockTime.minute()) / 2 + 1)
                : kProfileSlots;

  // Sums over the slots that have been recorded.
  std::array<int, 10> levels{};
  int small = 0;
  int steps = 0;
  double activityKcal = 0.0;
  for (int i = 0; i < elapsedSlots; ++i) {
    const Slot& s = day.slots[static_cast<size_t>(i)];
    const int level = LevelOfState(s.state);
    if (s.state == 0) {
      levels[0] += s.mainCount;
    } else if (s.state == 1) {
      small += s.mainCount;
      levels[0] += s.restCount;
    } else {
      levels[static_cast<size_t>(level)] += s.mainCount;
      if (level > 1) levels[static_cast<size_t>(level - 1)] += s.restCount;
      else small += s.restCount;
      const double hours = (s.mainCount * 4.0) / 3600.0;
      activityKcal += (kMets[level] - 1.0) * (weight / 10.0) * hours * 1.05;
    }
    steps += s.steps;
  }
  const double w = weight / 10.0;
  const double bmr = person.gender == 0 ? 66.5 + 13.75 * w + 5.0 * person.heightCm - 6.78 * person.age
                                        : 655.1 + 9.56 * w + 1.85 * person.heightCm - 4.68 * person.age;
  const int activity = static_cast<int>(std::lround(activityKcal));
  const int total = static_cast<int>(std::lround(bmr * elapsedSlots / kProfileSlots + activityKcal));
  // Time in the range 4..9 (minutes) and bouts of level 4 or more lasting 10 minutes.
  int rangeCounts = 0;
  for (int l = 4; l <= 9; ++l) rangeCounts += levels[static_cast<size_t>(l)];
  const int rangeMinutes = rangeCounts * 4 / 60;
  int frequency = 0;
  int run = 0;
  for (int i = 0; i <= elapsedSlots; ++i) {
    const bool active = i < elapsedSlots && LevelOfState(day.slots[static_cast<size_t>(i)].state) >= 4;
    if (active) {
      ++run;
    } else {
      if (run * 2 >= 10) ++frequency;
      run = 0;
    }
  }
  // Tenths of a kilometre whatever the unit flag: the receive stores this field as
  // kilometres and derives the miles from it, so a pound-and-mile recorder gives the
  // same figure here.
  const int strideDistance = static_cast<int>(static_cast<qint64>(steps) * person.stride / 10000);

  // Values of the unsigned byte fields, kept within a byte as the recorder keeps them.
  const auto byte = [](int v) { return static_cast<quint8>(std::clamp(v, 0, 255)); };
  FlashData d;
  d.VersionNo = byte(VersionByteOf(o));
  d.RecorderId = person.recorderId;
  d.CpuNo = EffectiveCpu(o);
  d.SentFlag = recording ? 0 : 1;
  d.RecordTime = recording ? elapsedSlots * 2 : 1440;
  d.bcDate = date;
  d.WeekDay = byte(date.dayOfWeek() % 7);
  d.Gender = byte(person.gender);
  d.Age = byte(person.age);
  d.HeightCm = byte(person.heightCm);
  d.WeightKg = byte(weight / 10);
  d.TargetActivity = person.targetActivity;
  d.GroupCode = person.groupNo;
  d.TotalEnergy = total;
  d.Activity = activity;
  d.StepCount = std::min(steps, 999999);
  for (int l = 0; l < 10; ++l) d.level(l) = levels[static_cast<size_t>(l)];
  d.LevelSmall = small;
  d.Intentional = 4;
  d.Duration = 10;
  d.Frequency = byte(frequency);
  d.LowBatteryDays = 0;
  int e = 0;
  for (const QTime& t : day.events) {
    if (recording && t.hour() * 60 + t.minute() >= elapsedSlots * 2) continue;
    d.event(++e) = t;
  }
  for (++e; e <= 10; ++e) d.event(e) = NoTimeMarker();

  // Slots not yet recorded read as erased memory: nibble 15, byte 255.
  LevelProfileArray& profile = KindProfile(d, o.kind);
  for (int i = 0; i < kProfileSlots; ++i) {
    const Slot& s = day.slots[static_cast<size_t>(i)];
    profile[static_cast<size_t>(i)] = i < elapsedSlots ? (mets ? s.mets : s.state) : (mets ? 255 : 15);
  }
  if (IsZrOrKtKind(o.kind)) {
    std::array<std::int32_t, 6> hi{};
    for (int l = 4; l <= 9; ++l) hi[static_cast<size_t>(l - 4)] = levels[static_cast<size_t>(l)];
    d.Exercise = static_cast<qint32>(std::lround(ExerciseFromLevels(hi) * 10.0));
    d.DailyWeightSelect = byte(person.dailyWeightSelect);
    d.DailyWeightTime = person.dailyWeightTime;
  }
  d.WeightFraction = byte(recording && o.unsetWeight ? 255 : weight % 10);
  d.TargetSelect = byte(person.targetSelect);
  d.RangeLower = 4;
  d.RangeUpper = 9;
  d.TargetTime = byte(person.targetTime);
  d.RangeMinutes = rangeMinutes;
  d.Distance = std::min(strideDistance, 9999);
  d.LogicSelect = mets ? 1 : 0;
  d.Stride = byte(person.stride);
  d.TargetSteps = person.targetSteps;
  d.UnitFlag = byte(o.unitFlag);
  d.WeightPound = static_cast<qint32>(std::lround(w * 2.20462));
  // The bytes no field of the kind covers stay erased.
  QByteArray b(PageBytesOfKind(o.kind), static_cast<char>(0xFF));
  layout::Encode(b, d, o.kind);
  return b;
}

QByteArray MakeRecorderImage(const RecorderImageOptions& o, QString* error) {
  const QString problem = CheckRecorderImageOptions(o);
  if (!problem.isEmpty()) {
    if (error != nullptr) *error = problem;
    return QByteArray();
  }
  const int ring = RingOf(o);
  const int blocksPerPage = BlocksPerPageOfKind(o.kind);
  QByteArray image((kFirstPageBlock + ring * blocksPerPage) * kTransferBlockBytes,
                   static_cast<char>(0xFF));
  const QByteArray manage = MakeManageBlock(o);
  std::copy(manage.begin(), manage.end(), image.begin());
  for (const ImagePage& p : RecorderImagePages(o)) {
    if (p.erased) continue;
    const QByteArray page = MakeDayPage(o, p.date, p.recording);
    const qsizetype offset = static_cast<qsizetype>(FirstBlockOfPage(o.kind, p.page)) * kTransferBlockBytes;
    std::copy(page.begin(), page.end(), image.begin() + offset);
  }
  return image;
}

bool WriteRecorderImage(const RecorderImageOptions& o, const QString& path, QString* error) {
  const QByteArray image = MakeRecorderImage(o, error);
  if (image.isEmpty()) return false;
  QSaveFile file(path);
  if (!file.open(QIODevice::WriteOnly) || file.write(image) != image.size() || !file.commit()) {
    if (error != nullptr) *error = QStringLiteral("cannot write %1: %2").arg(path, file.errorString());
    return false;
  }
  return true;
}
