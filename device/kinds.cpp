#include <algorithm>
// Kinds, languages, ring sizes, and the acceptance of a recorder by this installation.
#include "config.h"
#include "data_convert.h"
#include "trace.h"

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

const LevelProfileArray& KindProfile(const FlashData& page, const QString& kind) {
  if (kind == PMKIND_BRIO_METS) return page.LevelProfileMets;
  if (kind == PMKIND_BRIO_NORMAL || kind == PMKIND_BRIO_ZR || kind == PMKIND_BRIO_KT)
    return page.LevelProfileBrio;
  return page.LevelProfileAL;
}

LevelProfileArray& KindProfile(FlashData& page, const QString& kind) {
  return const_cast<LevelProfileArray&>(KindProfile(static_cast<const FlashData&>(page), kind));
}

bool IsKnownPMKind(const QString& kind) {
  return kind == PMKIND_AL || kind == PMKIND_BRIO_NORMAL || kind == PMKIND_BRIO_METS ||
         kind == PMKIND_BRIO_ZR || kind == PMKIND_BRIO_KT;
}

bool IsNibbleKind(const QString& kind) { return IsKnownPMKind(kind) && kind != PMKIND_BRIO_METS; }

bool IsZrOrKtKind(const QString& kind) { return kind == PMKIND_BRIO_ZR || kind == PMKIND_BRIO_KT; }

int PageBytesOfKind(const QString& kind) {
  if (kind == PMKIND_BRIO_METS) return kPageBytesMets;
  return IsKnownPMKind(kind) ? kPageBytesNibble : 0;
}

int BlocksPerPageOfKind(const QString& kind) { return PageBytesOfKind(kind) / kTransferBlockBytes; }

int FirstBlockOfPage(const QString& kind, int page) {
  return kFirstPageBlock + (page - 1) * BlocksPerPageOfKind(kind);
}

qint16 RingSize(const QString& kind, const QString& lang) {
  if (lang == PMLANG_ENG) {
    if (kind == PMKIND_BRIO_NORMAL) return 200;
    if (kind == PMKIND_BRIO_METS) return 100;
    return 240;
  }
  if (kind == PMKIND_BRIO_METS) return 120;
  return 240;
}

QString CheckRecorderPageNumbers(const FlashManage& m, const QString& kind, const QString& lang) {
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
  for (const QString& kind : {PMKIND_AL, PMKIND_BRIO_NORMAL, PMKIND_BRIO_METS, PMKIND_BRIO_ZR, PMKIND_BRIO_KT})
    for (const QString& lang : {PMLANG_JPN, PMLANG_ENG})
      largest = std::max<qint64>(largest, static_cast<qint64>(FirstBlockOfPage(kind, RingSize(kind, lang) + 1)) *
                                              kTransferBlockBytes);
  return largest;
}

qint16 WrapPageCount(qint16 difference, const QString& kind, const QString& lang) {
  if (difference >= 0) return difference;
  return static_cast<qint16>(difference + RingSize(kind, lang));
}

qint32 FlashManage_SetPMKind(ByteSpan block, DeviceState& state) {
  static const QString kProc = QStringLiteral("FlashManage_SetPMKind");
  if (block.size() < 968) return kErrSubscriptOutOfRange;
  const QString fixedText = ByteToText(block.data(), 5);
  const int versionByte = block[5];

  QString kind;
  QString lang;
  if (fixedText == Ini_GetPmAlNumber()) {
    kind = PMKIND_AL;
    lang = versionByte >= Ini_GetValidVersionNumber() ? PMLANG_ENG : PMLANG_JPN;
  } else if (fixedText == Ini_GetPmBrioEngNumber() || fixedText == Ini_GetPmBrioJpnNumber()) {
    const quint8 logic = block[967];
    if (logic == 0) {
      kind = PMKIND_BRIO_NORMAL;
    } else if (logic == 1) {
      kind = PMKIND_BRIO_METS;
    } else {
      WriteTrace(QStringLiteral("2"), kProc, QStringLiteral("PMLogicSelectionFlagVersion ERROR"));
      return kDeviceUnknownKind;
    }
    // JPN first: when both keys hold the same text the Japanese rules win, as the table
    // of languages is read top down.
    lang = fixedText == Ini_GetPmBrioJpnNumber() ? PMLANG_JPN : PMLANG_ENG;
  } else if (fixedText == Ini_GetPmBrioKt200Number()) {
    kind = PMKIND_BRIO_ZR;
    lang = PMLANG_JPN;
  } else if (fixedText == Ini_GetPmBrioKt014Number()) {
    kind = PMKIND_BRIO_KT;
    lang = PMLANG_JPN;
  } else {
    WriteTrace(QStringLiteral("2"), kProc, QStringLiteral("PMSoftVersion ERROR,Not AL or BRIO"));
    return kDeviceUnknownKind;
  }
  state.pmKind = kind;
  state.pmLang = lang;
  return kDeviceOk;
}

bool IsRecorderMismatch(const QString& kind, const FlashManage& manage) {
  const bool japanese = Ini_GetLang() == 0;
  if (kind == PMKIND_AL) {
    const int valid = Ini_GetValidVersionNumber();
    return japanese ? manage.VersionNo >= valid : manage.VersionNo < valid;
  }
  if (kind == PMKIND_BRIO_NORMAL || kind == PMKIND_BRIO_METS) {
    const QString wanted = japanese ? Ini_GetPmBrioJpnNumber() : Ini_GetPmBrioEngNumber();
    return manage.FixedData.trimmed() != wanted;
  }
  if (IsZrOrKtKind(kind)) return !japanese;
  return true;
}
