#include <algorithm>
// Kinds, languages, ring sizes, and the acceptance of a recorder by this installation.
#include "device/data_convert.h"
#include "frame/config.h"
#include "frame/trace.h"

// One table of the ten event fields serves both forms: the writable one only picks a member.
QTime FlashData::event(int n) const { return const_cast<FlashData*>(this)->event(n); }

QTime& FlashData::event(int n) {
  switch (n) {
    case 2: return Event2;
    case 3: return Event3;
    case 4: return Event4;
    case 5: return Event5;
    case 6: return Event6;
    case 7: return Event7;
    case 8: return Event8;
    case 9: return Event9;
    case 10: return Event10;
    default: return Event1;
  }
}

qint32 FlashData::level(int n) const { return const_cast<FlashData*>(this)->level(n); }

qint32& FlashData::level(int n) {
  switch (n) {
    case 1: return Level1;
    case 2: return Level2;
    case 3: return Level3;
    case 4: return Level4;
    case 5: return Level5;
    case 6: return Level6;
    case 7: return Level7;
    case 8: return Level8;
    case 9: return Level9;
    default: return Level0;
  }
}

namespace {

// The kinds of recorder. A Japanese METS recorder holds 120 days, an English one 100;
// an English BRIO_NORMAL holds 200; all others 240.
const KindInfo kKinds[] = {
    {RecorderKind::Unknown, "", "", false, false, false, 0, 0},
    {RecorderKind::AL, "PMKIND_AL", "AL", false, false, false, 240, 240},
    {RecorderKind::BrioNormal, "PMKIND_BRIO_NORMAL", "BRIO_NORMAL", true, false, false, 240, 200},
    {RecorderKind::BrioMets, "PMKIND_BRIO_METS", "BRIO_METS", true, false, true, 120, 100},
    {RecorderKind::BrioZr, "PMKIND_BRIO_ZR", "BRIO_ZR", true, true, false, 240, 240},
    {RecorderKind::BrioKt, "PMKIND_BRIO_KT", "BRIO_KT", true, true, false, 240, 240},
};

}  // namespace

const KindInfo& InfoOf(RecorderKind kind) {
  for (const KindInfo& k : kKinds)
    if (k.kind == kind) return k;
  return kKinds[0];
}

QString KindText(RecorderKind kind) { return QString::fromLatin1(InfoOf(kind).text); }

RecorderKind KindFromName(const QString& name) {
  const QString n = name.trimmed().toUpper();
  for (const KindInfo& k : kKinds)
    if (k.kind != RecorderKind::Unknown && n == QLatin1String(k.name)) return k.kind;
  return RecorderKind::Unknown;
}

QString LangText(RecorderLang lang) {
  return lang == RecorderLang::English ? QStringLiteral("PMLANG_ENG") : QStringLiteral("PMLANG_JPN");
}

const LevelProfileArray& KindProfile(const FlashData& page, RecorderKind kind) {
  const KindInfo& info = InfoOf(kind);
  if (info.mets) return page.LevelProfileMets;
  return info.brio ? page.LevelProfileBrio : page.LevelProfileAL;
}

LevelProfileArray& KindProfile(FlashData& page, RecorderKind kind) {
  return const_cast<LevelProfileArray&>(KindProfile(static_cast<const FlashData&>(page), kind));
}

bool IsKnownPMKind(RecorderKind kind) { return kind != RecorderKind::Unknown; }

bool IsNibbleKind(RecorderKind kind) { return IsKnownPMKind(kind) && !InfoOf(kind).mets; }

bool IsZrOrKtKind(RecorderKind kind) { return InfoOf(kind).zrKt; }

int PageBytesOfKind(RecorderKind kind) {
  if (!IsKnownPMKind(kind)) return 0;
  return InfoOf(kind).mets ? kPageBytesMets : kPageBytesNibble;
}

int BlocksPerPageOfKind(RecorderKind kind) { return PageBytesOfKind(kind) / kTransferBlockBytes; }

int FirstBlockOfPage(RecorderKind kind, int page) {
  return kFirstPageBlock + (page - 1) * BlocksPerPageOfKind(kind);
}

qint16 RingSize(RecorderKind kind, RecorderLang lang) {
  const KindInfo& info = InfoOf(kind);
  // An unknown kind counts as the common ring, so that page arithmetic never divides by none.
  if (!IsKnownPMKind(kind)) return 240;
  return static_cast<qint16>(lang == RecorderLang::English ? info.ringEnglish : info.ringJapanese);
}

QString CheckRecorderPageNumbers(const FlashManage& m, RecorderKind kind, RecorderLang lang) {
  const int ring = RingSize(kind, lang);
  const auto outside = [ring](int page) { return page < 1 || page > ring; };
  if (outside(m.RecordStartPage) || outside(m.RecordingPage))
    return QStringLiteral("page numbers outside the ring of %1 pages (start %2, recording %3)")
        .arg(ring)
        .arg(m.RecordStartPage)
        .arg(m.RecordingPage);
  if (m.MemorySetting == 1 && outside(m.RecordEndPage))
    return QStringLiteral("end page %1 outside the ring of %2 pages").arg(m.RecordEndPage).arg(ring);
  return QString();
}

qint64 LargestRecorderMemoryBytes() {
  qint64 largest = 0;
  for (const RecorderKind kind : {RecorderKind::AL, RecorderKind::BrioNormal, RecorderKind::BrioMets,
                                  RecorderKind::BrioZr, RecorderKind::BrioKt})
    for (const RecorderLang lang : {RecorderLang::Japanese, RecorderLang::English})
      largest = std::max<qint64>(largest, static_cast<qint64>(FirstBlockOfPage(kind, RingSize(kind, lang) + 1)) *
                                              kTransferBlockBytes);
  return largest;
}

qint16 WrapPageCount(qint16 difference, RecorderKind kind, RecorderLang lang) {
  if (difference >= 0) return difference;
  return static_cast<qint16>(difference + RingSize(kind, lang));
}

qint32 FlashManage_SetPMKind(ByteSpan block, DeviceState& state) {
  static const QString kProc = QStringLiteral("FlashManage_SetPMKind");
  if (block.size() < 968) return kErrSubscriptOutOfRange;
  const QString fixedText = ByteToText(block.data(), 5);
  const int versionByte = block[5];

  RecorderKind kind = RecorderKind::Unknown;
  RecorderLang lang = RecorderLang::Japanese;
  if (fixedText == Ini_GetPmAlNumber()) {
    kind = RecorderKind::AL;
    lang = versionByte >= Ini_GetValidVersionNumber() ? RecorderLang::English : RecorderLang::Japanese;
  } else if (fixedText == Ini_GetPmBrioEngNumber() || fixedText == Ini_GetPmBrioJpnNumber()) {
    const quint8 logic = block[967];
    if (logic == 0) {
      kind = RecorderKind::BrioNormal;
    } else if (logic == 1) {
      kind = RecorderKind::BrioMets;
    } else {
      WriteTrace(QStringLiteral("2"), kProc, QStringLiteral("PMLogicSelectionFlagVersion ERROR"));
      return kDeviceUnknownKind;
    }
    // JPN first: when both keys hold the same text the Japanese rules win, as the table
    // of languages is read top down.
    lang = fixedText == Ini_GetPmBrioJpnNumber() ? RecorderLang::Japanese : RecorderLang::English;
  } else if (fixedText == Ini_GetPmBrioKt200Number()) {
    kind = RecorderKind::BrioZr;
  } else if (fixedText == Ini_GetPmBrioKt014Number()) {
    kind = RecorderKind::BrioKt;
  } else {
    WriteTrace(QStringLiteral("2"), kProc, QStringLiteral("PMSoftVersion ERROR,Not AL or BRIO"));
    return kDeviceUnknownKind;
  }
  state.pmKind = kind;
  state.pmLang = lang;
  return kDeviceOk;
}

bool IsRecorderMismatch(RecorderKind kind, const FlashManage& manage) {
  const bool japanese = Ini_GetLang() == 0;
  if (kind == RecorderKind::AL) {
    const int valid = Ini_GetValidVersionNumber();
    return japanese ? manage.VersionNo >= valid : manage.VersionNo < valid;
  }
  if (kind == RecorderKind::BrioNormal || kind == RecorderKind::BrioMets) {
    const QString wanted = japanese ? Ini_GetPmBrioJpnNumber() : Ini_GetPmBrioEngNumber();
    return manage.FixedData.trimmed() != wanted;
  }
  if (IsZrOrKtKind(kind)) return !japanese;
  return true;
}
