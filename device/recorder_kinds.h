// The five kinds of recorder and the two languages, and what each kind's memory is like.
#pragma once

#include <QString>

enum class RecorderKind { Unknown, AL, BrioNormal, BrioMets, BrioZr, BrioKt };
enum class RecorderLang { Japanese, English };

// What sets a kind apart. The management block comes in three forms (family A, BRIO,
// BRIO with the ZR/KT daily weight setting); a page in three (family A nibbles, BRIO
// nibbles, METS bytes).
struct KindInfo {
  RecorderKind kind;
  const char* text;  // the kind as stored and reported: "PMKIND_AL", ...
  const char* name;  // the kind on the command line: "AL", ...
  bool brio;         // the BRIO management block (all but AL)
  bool zrKt;         // the daily weight setting and the exercise figure
  bool mets;         // profile in tenths of METS, 992-byte pages
  int ringJapanese;  // pages in the ring of a Japanese recorder
  int ringEnglish;   // and of an English one
};

// The kind's row; Unknown has a row of its own with no pages.
const KindInfo& InfoOf(RecorderKind kind);
// "PMKIND_..." text of a kind, empty for Unknown.
QString KindText(RecorderKind kind);
// Command-line names ("AL", "BRIO_NORMAL", "BRIO_METS", "BRIO_ZR", "BRIO_KT", any case) to
// the kind; Unknown when no kind has that name.
RecorderKind KindFromName(const QString& name);
// "PMLANG_JPN" or "PMLANG_ENG".
QString LangText(RecorderLang lang);
