// An in-process reader for tests: serves a memory image (or nothing) and follows a
// script of statuses and refusals, recording every call it receives.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <map>
#include <set>
#include <vector>

#include "device/transport.h"

class FakeReader : public TavoReader {
 public:
  struct Call {
    QString op;             // "Tavo_Open", "Tavo_Start", ...
    qint32 handle = 0;
    qint32 firstBlock = -1;  // Tavo_BRead only
    qint32 byteCount = 0;    // Tavo_BRead only
  };

  FakeReader() = default;
  explicit FakeReader(QByteArray memoryImage) : memory(std::move(memoryImage)) {}

  // ---- script ----
  qint32 openResult = 1;      // what Tavo_Open returns (0 = no recorder)
  qint32 closeResult = 0;     // what Tavo_Close returns
  // Transfers are numbered from 0 in the order of Tavo_Start calls.
  std::set<int> refuseStartAt;          // Tavo_Start returns 0 for these
  std::set<int> refuseReadAt;           // Tavo_BRead returns 0 for these
  std::map<int, qint32> faultAt;        // final status instead of 0 for these
  int runningPolls = 0;                 // statuses 10 before the final one, each read
  bool neverFinish = false;             // every status is 10
  // Bytes a read copies (at block * 248); a read past the end ends with outOfRangeStatus.
  QByteArray memory;
  qint32 outOfRangeStatus = 3;

  // ---- record ----
  std::vector<Call> calls;
  QStringList callNames() const;
  int count(const QString& op) const;
  int transfers() const { return transferIndex_ + 1; }

  qint32 Tavo_Open() override;
  qint32 Tavo_CloseAll() override;
  qint32 Tavo_Close(qint32 handle) override;
  qint32 Tavo_Start(qint32 handle) override;
  qint32 Tavo_BRead(qint32 handle, qint32 zero, qint32 minusOne, qint32 firstBlock,
                    quint8* buffer, qint32 byteCount) override;
  qint32 Tavo_GetStatus(qint32 handle, qint32* out1, qint32* out2) override;
  qint32 Tavo_Finish(qint32 handle) override;
  qint32 Tavo_Stop(qint32 handle) override;

 private:
  int transferIndex_ = -1;
  int pollsLeft_ = 0;
  qint32 finalStatus_ = kTavoStatusDone;
};
