// Recorder memory images: what the emulated reader reads. The generator writes
// realistic days for any of the five kinds, deterministically: each day's content is
// derived from seed, CPU number and date alone, so a later clock (--last-day) with the
// same seed and CPU number reproduces the earlier days as they were.
#pragma once

#include <QByteArray>
#include <QDate>
#include <QList>
#include <QString>
#include <QTime>
#include <vector>

#include "device/device_records.h"

// The recorder numbers an installation is configured with (SYSTEM section). The
// generator writes them as the block's fixed text and version byte.
struct RecorderNumbers {
  int validVersion = 20;                      // VALID_VERSION_NUMBER
  QString al = QStringLiteral("12820");       // PMAL_NUMBER
  QString brioJpn = QStringLiteral("13010");  // PMBRIO_JPN_NUMBER
  QString brioEng = QStringLiteral("13020");  // PMBRIO_ENG_NUMBER
  QString kt200 = QStringLiteral("14200");    // PMBRIO_KT200_NUMBER (kind ZR)
  QString kt014 = QStringLiteral("14014");    // PMBRIO_KT014_NUMBER (kind KT)

  // The configured values; a key that is missing or empty keeps the default above.
  // Needs a loaded configuration (GetConfigPath() not empty), else gives the defaults.
  static RecorderNumbers FromConfig();
};

struct RecorderImageOptions {
  RecorderKind kind = RecorderKind::BrioNormal;
  bool english = false;               // --lang en
  int days = 7;                       // days held, the recording day included (1..ring)
  quint32 seed = 1;
  QString cpuNo;                      // up to 6 characters; empty: derived from the seed
  QDate lastDay = QDate(2024, 6, 30); // the recorder's clock: the day being recorded
  QTime clockTime = QTime(18, 30);    // the recorder's clock: time of day
  int memorySetting = 0;              // 1 = day limit on
  int memoryDays = 0;                 // the limit
  int unitFlag = 0;                   // 1 = pounds, feet and inches, miles
  int startPage = 1;                  // page of the oldest day held (ring wraps)
  QList<int> erasedPages;             // pages written as erased memory (0xFF)
  bool unsetWeight = false;           // WeightFraction 255 on the page being recorded
  RecorderNumbers numbers;
};

// Where each held day lies in the ring.
struct ImagePage {
  int page = 0;
  QDate date;
  bool recording = false;  // the page being written now (a partial day)
  bool erased = false;     // listed in erasedPages
};

// Checks the options; empty when usable, else a message.
QString CheckRecorderImageOptions(const RecorderImageOptions& options);
// The held days, oldest first.
std::vector<ImagePage> RecorderImagePages(const RecorderImageOptions& options);
// The whole memory: block 0-3 the management block, blocks 4-8 unused (0xFF), then the
// ring of pages from block 9. Pages holding no day are erased (0xFF). Empty on error.
QByteArray MakeRecorderImage(const RecorderImageOptions& options, QString* error = nullptr);
bool WriteRecorderImage(const RecorderImageOptions& options, const QString& path,
                        QString* error = nullptr);

// Building blocks, for tests that hand-build single blocks and pages.
QByteArray MakeManageBlock(const RecorderImageOptions& options);
// The page of `date` as the recorder writes it (496 or 992 bytes); `recording` cuts the
// day at the clock time.
QByteArray MakeDayPage(const RecorderImageOptions& options, const QDate& date, bool recording);
