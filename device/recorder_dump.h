// Reading a whole recorder through a reader, and its JSON form (vantora-cli dump).
#pragma once

#include <QByteArray>
#include <QString>
#include <utility>
#include <vector>

#include "device/transport.h"

struct RecorderContents {
  RecorderKind kind = RecorderKind::Unknown;
  RecorderLang language = RecorderLang::Japanese;
  FlashManage manage;
  std::vector<std::pair<int, FlashData>> pages;  // page number, decoded page; ring order
};

// Opens the reader, reads the management block and every page from RecordStartPage to
// RecordingPage around the ring, and closes. 0 on success; otherwise the failing code
// with a message in *error (no recorder, unreadable block, unknown kind, page numbers
// outside the ring, unreadable page).
qint32 ReadRecorderContents(TavoReader& reader, DeviceClock& clock, RecorderContents& out,
                            QString* error);

// {"kind":..., "language":..., "manage":{...}, "pages":[{"page":n, ...}]}: keys are the
// fields the kind's layout has, in the order of memory; dates "YYYY-MM-DD", date-times "YYYY-MM-DD HH:MM:SS" (the zero date as
// ""), times "HH:MM:SS", RecordCheck as hex, LevelProfile the kind's 720 values.
QByteArray RecorderContentsJson(const RecorderContents& contents);
// A readable listing of the same.
QString RecorderContentsText(const RecorderContents& contents);
