// The reader: its operations as an interface, the clock the protocol waits on, and the
// transport procedures that drive one read at a time.
#pragma once

#include <QDateTime>
#include <QString>
#include <QtGlobal>
#include <memory>

#include "device/device_records.h"

// Status values of Tavo_GetStatus.
inline constexpr qint32 kTavoStatusDone = 0;
inline constexpr qint32 kTavoStatusRunning = 10;

// The reader's operations. All integers are signed 32-bit. Implementations: the
// emulated reader over memory images, the vendor library, and FakeReader for tests.
class TavoReader {
 public:
  virtual ~TavoReader() = default;
  // Handle, 0 when no recorder is reachable.
  virtual qint32 Tavo_Open() = 0;
  // Drops every handle still open, also those of an earlier run. Result ignored.
  virtual qint32 Tavo_CloseAll() = 0;
  // 0 on success.
  virtual qint32 Tavo_Close(qint32 handle) = 0;
  // Nonzero when a transfer has begun.
  virtual qint32 Tavo_Start(qint32 handle) = 0;
  // Starts reading byteCount bytes from firstBlock into buffer; nonzero when accepted.
  // zero and minusOne are always 0 and -1. The buffer stays valid until the status
  // is no longer kTavoStatusRunning.
  virtual qint32 Tavo_BRead(qint32 handle, qint32 zero, qint32 minusOne, qint32 firstBlock,
                            quint8* buffer, qint32 byteCount) = 0;
  // kTavoStatusRunning, kTavoStatusDone, or a fault code. out1/out2 are not used.
  virtual qint32 Tavo_GetStatus(qint32 handle, qint32* out1, qint32* out2) = 0;
  // Ends a transfer that succeeded. Result ignored.
  virtual qint32 Tavo_Finish(qint32 handle) = 0;
  // Aborts a transfer that failed. Result ignored.
  virtual qint32 Tavo_Stop(qint32 handle) = 0;
};

// The protocol's waits go through this, so tests do not sleep.
class DeviceClock {
 public:
  virtual ~DeviceClock() = default;
  virtual void sleepMs(int ms) = 0;
  virtual QDateTime now() const = 0;
};

// Real time: blocks the calling thread.
class SystemDeviceClock : public DeviceClock {
 public:
  void sleepMs(int ms) override;
  QDateTime now() const override;
};

// Thrown by NoWaitClock when its wait limit is reached; deliberately not a
// std::exception, so the transport's own error trap lets it through to the test.
struct DeviceClockLimitReached {
  qint64 waitedMs = 0;
};

// No waiting: time advances by the requested amount. Keeps the waits for tests. With a
// limit set (>= 0), the wait that would pass it throws DeviceClockLimitReached, the
// only way to leave a read whose status never finishes.
class NoWaitClock : public DeviceClock {
 public:
  explicit NoWaitClock(QDateTime start = QDateTime(QDate(2024, 1, 1), QTime(9, 0)))
      : now_(std::move(start)) {}
  void sleepMs(int ms) override;
  QDateTime now() const override { return now_; }
  void setWaitLimitMs(qint64 limit) { limitMs_ = limit; }
  qint64 totalWaitedMs() const { return waitedMs_; }
  const QList<int>& waits() const { return waits_; }

 private:
  QDateTime now_;
  qint64 waitedMs_ = 0;
  qint64 limitMs_ = -1;
  QList<int> waits_;
};

// ---- transport (log name = the procedure's name, level 2) ----
// Tavo_CloseAll, wait 100 ms, Tavo_Open; keeps the handle in state.hUSB and returns it.
qint32 UsbOpen(TavoReader& reader, DeviceClock& clock, DeviceState& state);
// Tavo_Close(state.hUSB); true when the reader returned nonzero. hUSB keeps its value.
bool UsbClose(TavoReader& reader, DeviceState& state);
// One read of the management block (992 bytes from block 0) into buffer.
qint32 RecvManage(TavoReader& reader, DeviceClock& clock, const DeviceState& state,
                  quint8* buffer);
// One read of page `page` into buffer (at least 992 bytes), size by state.pmKind.
// A page below 1 logs "too less block [page]" and returns 0 without any transfer.
qint32 RecvData(TavoReader& reader, DeviceClock& clock, const DeviceState& state, qint16 page,
                quint8* buffer);

// Reads, saves (SAVE_RAW_DATA and a non-empty path: the 992 bytes at the start of the
// file), sets kind and language, decodes into state.manage and dumps (PM_DUNP).
qint32 PM_RecvManage(TavoReader& reader, DeviceClock& clock, DeviceState& state,
                     const QString& rawPath);
// Reads page `page`, appends its 992-byte buffer to the raw file (SAVE_RAW_DATA and a
// non-empty path), decodes by state.pmKind into state.data and dumps (PM_DUNP).
qint32 PM_RecvData(TavoReader& reader, DeviceClock& clock, DeviceState& state, qint16 page,
                   const QString& rawPath);

// The reader chosen by the READER section: TYPE "LIBRARY" loads LIBRARY_PATH, anything
// else (default "EMULATOR") watches EMULATOR_PATH.
std::unique_ptr<TavoReader> CreateConfiguredReader();
