#include "device/fake_reader.h"

#include <cstring>

QStringList FakeReader::callNames() const {
  QStringList names;
  for (const Call& c : calls) names << c.op;
  return names;
}

int FakeReader::count(const QString& op) const {
  int n = 0;
  for (const Call& c : calls) n += c.op == op ? 1 : 0;
  return n;
}

qint32 FakeReader::Tavo_Open() {
  calls.push_back({QStringLiteral("Tavo_Open"), 0});
  return openResult;
}

qint32 FakeReader::Tavo_CloseAll() {
  calls.push_back({QStringLiteral("Tavo_CloseAll"), 0});
  return 0;
}

qint32 FakeReader::Tavo_Close(qint32 handle) {
  calls.push_back({QStringLiteral("Tavo_Close"), handle});
  return closeResult;
}

qint32 FakeReader::Tavo_Start(qint32 handle) {
  calls.push_back({QStringLiteral("Tavo_Start"), handle});
  ++transferIndex_;
  return refuseStartAt.count(transferIndex_) != 0 ? 0 : 1;
}

qint32 FakeReader::Tavo_BRead(qint32 handle, qint32 zero, qint32 minusOne, qint32 firstBlock,
                              quint8* buffer, qint32 byteCount) {
  calls.push_back({QStringLiteral("Tavo_BRead"), handle, firstBlock, byteCount});
  Q_UNUSED(zero);
  Q_UNUSED(minusOne);
  if (refuseReadAt.count(transferIndex_) != 0) return 0;
  pollsLeft_ = runningPolls;
  finalStatus_ = kTavoStatusDone;
  const qint64 offset = static_cast<qint64>(firstBlock) * kTransferBlockBytes;
  if (!memory.isEmpty()) {
    if (firstBlock < 0 || offset + byteCount > memory.size()) {
      finalStatus_ = outOfRangeStatus;
    } else if (buffer != nullptr) {
      std::memcpy(buffer, memory.constData() + offset, static_cast<size_t>(byteCount));
    }
  }
  // A scripted fault wins over whatever the memory would give.
  const auto fault = faultAt.find(transferIndex_);
  if (fault != faultAt.end()) finalStatus_ = fault->second;
  return 1;
}

qint32 FakeReader::Tavo_GetStatus(qint32 handle, qint32* out1, qint32* out2) {
  calls.push_back({QStringLiteral("Tavo_GetStatus"), handle});
  if (out1 != nullptr) *out1 = 0;
  if (out2 != nullptr) *out2 = 0;
  if (neverFinish) return kTavoStatusRunning;
  if (pollsLeft_ > 0) {
    --pollsLeft_;
    return kTavoStatusRunning;
  }
  return finalStatus_;
}

qint32 FakeReader::Tavo_Finish(qint32 handle) {
  calls.push_back({QStringLiteral("Tavo_Finish"), handle});
  return 1;
}

qint32 FakeReader::Tavo_Stop(qint32 handle) {
  calls.push_back({QStringLiteral("Tavo_Stop"), handle});
  return 1;
}
