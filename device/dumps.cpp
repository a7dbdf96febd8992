// The dumps of the decoded records into the trace log (PM_DUNP 1 and 2).
#include "device/data_convert.h"
#include "device/memory_layout.h"
#include "frame/trace.h"

namespace {

void WriteLines(const QString& name, const QStringList& lines) {
  const QString level = QStringLiteral("0");
  for (const QString& line : lines) WriteTrace(level, name, line);
}

}  // namespace

QStringList FlashManageDumpLines(const FlashManage& m, RecorderKind kind) {
  // Every kind's record lists the BRIO fields (zero on family A); the ZR and KT lines
  // only for those two.
  QStringList l;
  for (const layout::ManageField& f : layout::ManageLayout()) {
    if (f.only == layout::Only::ZrKt && !IsZrOrKtKind(kind)) continue;
    if (f.codec == layout::Codec::RecordCheck) {
      // 90 lines of 10 entries: "0000:d d d d d-d d d d d", the last digit of each byte.
      l << QString::fromUtf8(f.label);
      for (int row = 0; row < kRecordCheckBytes / 10; ++row) {
        QString line = QStringLiteral("%1:").arg(row * 10, 4, 10, QLatin1Char('0'));
        for (int i = 0; i < 10; ++i) {
          if (i > 0) line += (i == 5) ? QLatin1Char('-') : QLatin1Char(' ');
          line += QChar(u'0' + m.RecordCheck[static_cast<size_t>(row * 10 + i)] % 10);
        }
        l << line;
      }
      continue;
    }
    const bool gender = QLatin1String(f.name) == QLatin1String("Gender");
    l << QString::fromUtf8(f.label) +
             (gender ? (m.Gender == 0 ? QStringLiteral("M") : QStringLiteral("F")) : layout::LogText(f, m)) +
             QLatin1Char(']');
  }
  return l;
}

QStringList FlashDataDumpLines(const FlashData& d, RecorderKind kind) {
  QStringList l;
  for (const layout::PageField& f : layout::PageLayout(kind)) {
    if (!layout::Applies(f.only, kind)) continue;
    if (f.codec == layout::Codec::NibbleProfile || f.codec == layout::Codec::MetsProfile) {
      // One line per slot: "HH:MM:value", the clock from 00:00 in steps of 2 minutes.
      l << QString::fromUtf8(f.label);
      const LevelProfileArray& profile = KindProfile(d, kind);
      const bool mets = f.codec == layout::Codec::MetsProfile;
      for (int i = 0; i < kProfileSlots; ++i) {
        const int minutes = i * 2;
        l << QStringLiteral("%1:%2:%3")
                 .arg(minutes / 60, 2, 10, QLatin1Char('0'))
                 .arg(minutes % 60, 2, 10, QLatin1Char('0'))
                 .arg(ProfileSlotDumpText(profile[static_cast<size_t>(i)], mets));
      }
      continue;
    }
    l << QString::fromUtf8(f.label) + layout::LogText(f, d) + QLatin1Char(']');
  }
  return l;
}

QStringList RawDumpLines(ByteSpan raw) {
  QStringList l;
  l.reserve(static_cast<qsizetype>(raw.size()));
  for (size_t i = 0; i < raw.size(); ++i) l << QStringLiteral("%1(%2)").arg(i).arg(raw[i]);
  return l;
}

void DumpFlashManage(const FlashManage& manage, RecorderKind kind, ByteSpan raw, int level) {
  if (level != 1 && level != 2) return;
  const QString name = QStringLiteral("FLASHMANAGE");
  WriteLines(name, FlashManageDumpLines(manage, kind));
  if (level == 2) WriteLines(name, RawDumpLines(raw));
}

void DumpFlashData(const FlashData& page, RecorderKind kind, ByteSpan raw, int level) {
  if (level != 1 && level != 2) return;
  const QString name = QStringLiteral("FLASHDATA");
  WriteLines(name, FlashDataDumpLines(page, kind));
  if (level == 2) WriteLines(name, RawDumpLines(raw));
}
