// Recorder memory images. A day is modelled as a sequence of 720 two-minute slots with
// an activity state (none, tiny movement, level 1..9); every figure of the page (level
// counts, steps, calories, distance, time in range) is summed from those slots, so
// that the figures agree with the profile as they do on a real recorder.
#include "recorder_image.h"

#include <QCryptographicHash>
#include <QFile>
#include <QSaveFile>
#include <algorithm>
#include <cmath>
#include <numbers>

#include "config.h"
#include "helpers.h"
#include "shared_values.h"

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

quint8 ToBcd(int v) {
  v = std::clamp(v, 0, 99);
  return static_cast<quint8>(((v / 10) << 4) | (v % 10));
}

void PutWord(QByteArray& b, int offset, int v) {
  v = std::clamp(v, 0, 65535);
  b[offset] = static_cast<char>(v & 0xFF);
  b[offset + 1] = static_cast<char>((v >> 8) & 0xFF);
}

void PutLong(QByteArray& b, int offset, qint32 v) {
  const quint32 u = static_cast<quint32>(v);
  for (int i = 0; i < 4; ++i) b[offset + i] = static_cast<char>((u >> (8 * i)) & 0xFF);
}

void PutByte(QByteArray& b, int offset, int v) { b[offset] = static_cast<char>(std::clamp(v, 0, 255)); }

void PutText(QByteArray& b, int offset, int n, const QString& text) {
  const QByteArray latin = text.toLatin1();
  for (int i = 0; i < n; ++i) b[offset + i] = i < latin.size() ? latin[i] : ' ';
}

void PutBcd4Date(QByteArray& b, int offset, const QDate& d) {
  b[offset] = static_cast<char>(ToBcd(d.year() / 100));
  b[offset + 1] = static_cast<char>(ToBcd(d.year() % 100));
  b[offset + 2] = static_cast<char>(ToBcd(d.month()));
  b[offset + 3] = static_cast<char>(ToBcd(d.day()));
}

void PutBcdTime(QByteArray& b, int offset, const QTime& t) {
  b[offset] = static_cast<char>(ToBcd(t.hour()));
  b[offset + 1] = static_cast<char>(ToBcd(t.minute()));
}

void PutNoTime(QByteArray& b, int offset) {
  b[offset] = static_cast<char>(0xFF);
  b[offset + 1] = static_cast<char>(0xFF);
}

void PutBcd(QByteArray& b, int offset, int digits, int value) {
  // digits = 4 or 6, big-endian pairs.
  const int bytes = digits / 2;
  for (int i = bytes - 1; i >= 0; --i) {
    b[offset + i] = static_cast<char>(ToBcd(value % 100));
    value /= 100;
  }
}

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
  if (o.kind == PMKIND_AL) return n.al;
  if (o.kind == PMKIND_BRIO_ZR) return n.kt200;
  if (o.kind == PMKIND_BRIO_KT) return n.kt014;
  return o.english ? n.brioEng : n.brioJpn;
}

int VersionByteOf(const RecorderImageOptions& o) {
  if (o.kind == PMKIND_AL)
    return o.english ? std::clamp(o.numbers.validVersion, 0, 255)
                     : std::clamp(o.numbers.validVersion - 1, 0, 255);
  return 3;
}

QString LangOf(const RecorderImageOptions& o) {
  if (o.kind == PMKIND_BRIO_ZR || o.kind == PMKIND_BRIO_KT) return PMLANG_JPN;
  return o.english ? PMLANG_ENG : PMLANG_JPN;
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

QString PmKindFromName(const QString& name) {
  const QString n = name.trimmed().toUpper();
  if (n == QLatin1String("AL")) return PMKIND_AL;
  if (n == QLatin1String("BRIO_NORMAL")) return PMKIND_BRIO_NORMAL;
  if (n == QLatin1String("BRIO_METS")) return PMKIND_BRIO_METS;
  if (n == QLatin1String("BRIO_ZR")) return PMKIND_BRIO_ZR;
  if (n == QLatin1String("BRIO_KT")) return PMKIND_BRIO_KT;
  return QString();
}

QString CheckRecorderImageOptions(const RecorderImageOptions& o) {
  if (!IsKnownPMKind(o.kind)) return QStringLiteral("unknown recorder kind '%1'").arg(o.kind);
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
  QByteArray b(kManageBlockBytes, static_cast<char>(0xFF));
  const Person person = MakePerson(o);
  const RingLayout ring = LayoutOf(o);
  const bool brio = o.kind != PMKIND_AL;
  const int weight = WeightTenths(o, person, o.lastDay);
  PutText(b, 0, 5, FixedTextOf(o));
  PutByte(b, 5, VersionByteOf(o));
  PutByte(b, 6, 0);
  PutText(b, 7, 6, EffectiveCpu(o));
  PutLong(b, 13, person.recorderId);
  PutBcd4Date(b, 17, o.lastDay);
  PutBcdTime(b, 21, o.clockTime);
  PutByte(b, 23, person.gender);
  PutByte(b, 24, person.age);
  PutByte(b, 25, person.heightCm);
  PutByte(b, 26, weight / 10);
  PutWord(b, 27, person.targetActivity);
  PutWord(b, 29, person.groupNo);
  PutByte(b, 31, 0);
  PutByte(b, 32, 0);
  PutByte(b, 33, o.memorySetting);
  PutByte(b, 34, o.memoryDays);
  PutByte(b, 35, 0);
  PutByte(b, 36, 4);
  PutByte(b, 37, 10);
  PutByte(b, 38, 4);
  PutWord(b, 39, ring.start);
  PutWord(b, 41, ring.end);
  PutWord(b, 43, ring.recording);
  b[45] = static_cast<char>(ToBcd(o.lastDay.year() % 100));
  b[46] = static_cast<char>(ToBcd(o.lastDay.month()));
  b[47] = static_cast<char>(ToBcd(o.lastDay.day()));
  PutBcdTime(b, 48, o.clockTime);
  PutByte(b, 50, 0);
  const QDate first = o.lastDay.addDays(-(o.days - 1));
  b[51] = static_cast<char>(ToBcd(first.year() % 100));
  b[52] = static_cast<char>(ToBcd(first.month()));
  b[53] = static_cast<char>(ToBcd(first.day()));
  b[54] = static_cast<char>(ToBcd(0));
  b[55] = static_cast<char>(ToBcd(0));
  PutByte(b, 56, o.unitFlag);
  PutWord(b, 57, static_cast<int>(std::lround(weight / 10.0 * 2.20462)));
  if (brio) PutByte(b, 59, weight % 10);
  // Record check: one byte a page of the ring, 1 where a day is held.
  for (int i = 0; i < kRecordCheckBytes; ++i) b[60 + i] = 0;
  for (const ImagePage& p : RecorderImagePages(o))
    if (!p.erased && p.page <= kRecordCheckBytes) b[60 + p.page - 1] = 1;
  if (brio) {
    PutByte(b, 960, 4);
    PutByte(b, 961, 9);
    PutByte(b, 962, person.targetTime);
    PutByte(b, 963, person.stride);
    PutWord(b, 964, person.targetSteps);
    PutByte(b, 966, 0);
    PutByte(b, 967, o.kind == PMKIND_BRIO_METS ? 1 : 0);
    PutByte(b, 968, person.targetSelect);
    if (IsZrOrKtKind(o.kind)) {
      PutByte(b, 969, person.dailyWeightSelect);
      PutBcdTime(b, 970, person.dailyWeightTime);
    }
  }
  return b;
}

QByteArray MakeDayPage(const RecorderImageOptions& o, const QDate& date, bool recording) {
  const int size = PageBytesOfKind(o.kind);
  QByteArray b(size, static_cast<char>(0xFF));
  const Person person = MakePerson(o);
  const Day day = MakeDay(o, date);
  const bool mets = o.kind == PMKIND_BRIO_METS;
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

  // Bytes 0..83.
  PutByte(b, 0, VersionByteOf(o));
  PutLong(b, 1, person.recorderId);
  PutText(b, 5, 6, EffectiveCpu(o));
  PutByte(b, 11, recording ? 0 : 1);
  PutByte(b, 12, 0);
  PutByte(b, 13, 0);
  PutByte(b, 14, 0);
  PutWord(b, 15, recording ? elapsedSlots * 2 : 1440);
  PutBcd4Date(b, 17, date);
  PutByte(b, 21, date.dayOfWeek() % 7);
  PutByte(b, 22, person.gender);
  PutByte(b, 23, person.age);
  PutByte(b, 24, person.heightCm);
  PutByte(b, 25, weight / 10);
  PutWord(b, 26, person.targetActivity);
  PutWord(b, 28, person.groupNo);
  PutWord(b, 30, total);
  PutWord(b, 32, activity);
  PutBcd(b, 34, 6, std::min(steps, 999999));
  for (int l = 0; l < 10; ++l) PutWord(b, 37 + 2 * l, levels[static_cast<size_t>(l)]);
  PutWord(b, 57, small);
  PutByte(b, 59, 4);
  PutByte(b, 60, 10);
  PutByte(b, 61, frequency);
  PutWord(b, 62, 0);
  int e = 0;
  for (const QTime& t : day.events) {
    if (recording && t.hour() * 60 + t.minute() >= elapsedSlots * 2) continue;
    PutBcdTime(b, 64 + 2 * e, t);
    ++e;
  }
  for (; e < 10; ++e) PutNoTime(b, 64 + 2 * e);

  const int weightFraction = recording && o.unsetWeight ? 255 : weight % 10;
  const int weightPound = static_cast<int>(std::lround(w * 2.20462));
  const int distance = std::min(strideDistance, 9999);
  if (!mets) {
    // 720 nibbles, the earlier slot in the high nibble; unrecorded slots are erased (15).
    for (int i = 0; i < kProfileSlots / 2; ++i) {
      const int a = 2 * i < elapsedSlots ? day.slots[static_cast<size_t>(2 * i)].state : 15;
      const int c = 2 * i + 1 < elapsedSlots ? day.slots[static_cast<size_t>(2 * i + 1)].state : 15;
      b[84 + i] = static_cast<char>((a << 4) | c);
    }
    if (o.kind != PMKIND_AL) {
      if (IsZrOrKtKind(o.kind)) {
        std::array<std::int32_t, 6> hi{};
        for (int l = 4; l <= 9; ++l) hi[static_cast<size_t>(l - 4)] = levels[static_cast<size_t>(l)];
        PutWord(b, 475, static_cast<int>(std::lround(ExerciseFromLevels(hi) * 10.0)));
        PutByte(b, 477, person.dailyWeightSelect);
        PutBcdTime(b, 478, person.dailyWeightTime);
      }
      PutByte(b, 480, weightFraction);
      PutByte(b, 481, person.targetSelect);
      PutByte(b, 482, 4);
      PutByte(b, 483, 9);
      PutByte(b, 484, person.targetTime);
      PutWord(b, 485, rangeMinutes);
      PutBcd(b, 487, 4, distance);
      PutByte(b, 489, 0);
      PutByte(b, 490, person.stride);
      PutWord(b, 491, person.targetSteps);
    }
    PutByte(b, 493, o.unitFlag);
    PutWord(b, 494, weightPound);
  } else {
    PutByte(b, 84, person.targetSelect);
    PutByte(b, 85, 4);
    PutByte(b, 86, 9);
    PutByte(b, 87, person.targetTime);
    PutWord(b, 88, rangeMinutes);
    PutBcd(b, 90, 4, distance);
    PutByte(b, 92, 1);
    PutByte(b, 93, person.stride);
    PutWord(b, 94, person.targetSteps);
    PutByte(b, 96, o.unitFlag);
    PutWord(b, 97, weightPound);
    PutByte(b, 99, weightFraction);
    for (int i = 0; i < kProfileSlots; ++i) {
      const int offset = kTransferBlockBytes * (1 + i / 240) + i % 240;
      b[offset] = static_cast<char>(i < elapsedSlots ? day.slots[static_cast<size_t>(i)].mets : 255);
    }
  }
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
