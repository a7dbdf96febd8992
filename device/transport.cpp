// One read from the recorder: start, read, poll, settle, finish or stop. Each read is a
// transfer of its own, and nothing here ever writes to the recorder.
#include "device/transport.h"

#include <QFile>
#include <QThread>
#include <array>
#include <exception>

#include "device/data_convert.h"
#include "device/readers.h"
#include "frame/config.h"
#include "frame/trace.h"

void SystemDeviceClock::sleepMs(int ms) {
  if (ms > 0) QThread::msleep(static_cast<unsigned long>(ms));
}

QDateTime SystemDeviceClock::now() const { return QDateTime::currentDateTime(); }

void NoWaitClock::sleepMs(int ms) {
  if (limitMs_ >= 0 && waitedMs_ + ms > limitMs_) throw DeviceClockLimitReached{waitedMs_};
  waits_.append(ms);
  waitedMs_ += ms;
  now_ = now_.addMSecs(ms);
}

namespace {

const QString kLevelError = QStringLiteral("2");

// A fault in our own code during a read (the reader throwing, memory) ends the read
// with a run-time error number instead of leaving the procedure by an exception.
template <typename F>
qint32 Trapped(F&& body) {
  try {
    return body();
  } catch (const std::bad_alloc&) {
    return 7;  // out of memory
  } catch (const std::exception&) {
    return kErrInternal;
  }
}

// A read after the handle check: start, ask for the blocks, wait on the status, finish
// (or stop on an error); `byteCount` of 0 asks the caller's kind check to run after
// Tavo_Start (RecvData).
qint32 Transfer(TavoReader& reader, DeviceClock& clock, qint32 handle, const QString& name,
                qint32 firstBlock, qint32 byteCount, quint8* buffer) {
  if (reader.Tavo_Start(handle) == 0) {
    WriteTrace(kLevelError, name, QStringLiteral("Tavo_Start Error"));
    return kDeviceNoTransfer;
  }
  if (byteCount <= 0) {
    // The kind was none of the five: the transfer stays open, as the reader expects a
    // Finish or Stop only after a read.
    WriteTrace(kLevelError, QStringLiteral("FlashManage_SetPMKind"),
               QStringLiteral("PMSoftVersion ERROR,Not AL or BRIO"));
    return kDeviceUnknownKind;
  }
  if (reader.Tavo_BRead(handle, 0, -1, firstBlock, buffer, byteCount) == 0) {
    WriteTrace(kLevelError, name, QStringLiteral("Tavo_BRead Error"));
    return kDeviceNoTransfer;
  }
  qint32 out1 = 0;
  qint32 out2 = 0;
  qint32 status = reader.Tavo_GetStatus(handle, &out1, &out2);
  while (status == kTavoStatusRunning) {
    clock.sleepMs(100);
    status = reader.Tavo_GetStatus(handle, &out1, &out2);
  }
  clock.sleepMs(500);
  if (status == kTavoStatusDone) {
    reader.Tavo_Finish(handle);
    return kDeviceOk;
  }
  WriteTrace(kLevelError, name, QStringLiteral("Tavo_GetStatus=%1").arg(status));
  reader.Tavo_Stop(handle);
  return status;
}

bool SaveRawWanted(const QString& rawPath) {
  if (rawPath.isEmpty()) return false;
  try {
    return Ini_GetSaveRawData();
  } catch (...) {
    return false;
  }
}

int DumpLevel() {
  try {
    return Ini_GetPmDump();
  } catch (...) {
    return 0;
  }
}

QString CodeText(const char* what, qint32 code) {
  return QString::fromLatin1(what) + QStringLiteral("(%1)").arg(code);
}

}  // namespace

qint32 UsbOpen(TavoReader& reader, DeviceClock& clock, DeviceState& state) {
  reader.Tavo_CloseAll();
  clock.sleepMs(100);
  state.hUSB = reader.Tavo_Open();
  return state.hUSB;
}

bool UsbClose(TavoReader& reader, DeviceState& state) { return reader.Tavo_Close(state.hUSB) != 0; }

qint32 RecvManage(TavoReader& reader, DeviceClock& clock, const DeviceState& state,
                  quint8* buffer) {
  static const QString kName = QStringLiteral("RecvManage");
  return Trapped([&]() -> qint32 {
    if (state.hUSB == 0) {
      WriteTrace(kLevelError, kName, QStringLiteral("hUSB=0"));
      return kDeviceNoTransfer;
    }
    return Transfer(reader, clock, state.hUSB, kName, 0, kManageBlockBytes, buffer);
  });
}

qint32 RecvData(TavoReader& reader, DeviceClock& clock, const DeviceState& state, qint16 page,
                quint8* buffer) {
  static const QString kName = QStringLiteral("RecvData");
  return Trapped([&]() -> qint32 {
    if (page < 1) {
      // No transfer; the caller decodes the zeroed buffer it holds.
      WriteTrace(kLevelError, kName, QStringLiteral("too less block [%1]").arg(page));
      return kDeviceOk;
    }
    if (state.hUSB == 0) {
      WriteTrace(kLevelError, kName, QStringLiteral("hUSB=0"));
      return kDeviceNoTransfer;
    }
    const int bytes = PageBytesOfKind(state.pmKind);
    const int firstBlock = bytes > 0 ? FirstBlockOfPage(state.pmKind, page) : 0;
    return Transfer(reader, clock, state.hUSB, kName, firstBlock, bytes, buffer);
  });
}

qint32 PM_RecvManage(TavoReader& reader, DeviceClock& clock, DeviceState& state,
                     const QString& rawPath) {
  static const QString kName = QStringLiteral("PM_RecvManage");
  std::array<quint8, kManageBlockBytes> buffer{};
  qint32 code = RecvManage(reader, clock, state, buffer.data());
  if (code != kDeviceOk) {
    WriteTrace(kLevelError, kName, CodeText("RecvManage ERROR", code));
    return code;
  }
  if (SaveRawWanted(rawPath)) {
    QFile file(rawPath);
    if (!file.open(QIODevice::ReadWrite) || !file.seek(0) ||
        file.write(reinterpret_cast<const char*>(buffer.data()), kManageBlockBytes) !=
            kManageBlockBytes) {
      WriteTrace(kLevelError, kName, CodeText("RawData ERROR", kErrFileIo));
      return kErrFileIo;
    }
  }
  const ByteSpan block(buffer.data(), buffer.size());
  code = FlashManage_SetPMKind(block, state);
  if (code != kDeviceOk) {
    WriteTrace(kLevelError, kName, CodeText("FlashManage_SetPMKind ERROR", code));
    return code;
  }
  FlashManage manage;
  if (state.pmKind == RecorderKind::AL) {
    code = FlashManage_ConvertByteArray2Struct(block, manage);
    if (code != kDeviceOk) {
      WriteTrace(kLevelError, kName, CodeText("FlashManage_ConvertByteArray2Struct ERROR", code));
      return code;
    }
  } else if (IsKnownPMKind(state.pmKind)) {
    code = FlashManage_ConvertByteArray2Struct_Brio(block, manage, state.pmKind);
    if (code != kDeviceOk) {
      WriteTrace(kLevelError, kName,
                 CodeText("FlashManage_ConvertByteArray2Struct_Brio ERROR", code));
      return code;
    }
  } else {
    WriteTrace(kLevelError, kName, QStringLiteral("PMSoftVersion ERROR,Not AL or BRIO"));
    return kDeviceUnknownKind;
  }
  state.manage = std::move(manage);
  DumpFlashManage(state.manage, state.pmKind, block, DumpLevel());
  return kDeviceOk;
}

qint32 PM_RecvData(TavoReader& reader, DeviceClock& clock, DeviceState& state, qint16 page,
                   const QString& rawPath) {
  static const QString kName = QStringLiteral("PM_RecvData");
  std::array<quint8, kPageBufferBytes> buffer{};
  qint32 code = RecvData(reader, clock, state, page, buffer.data());
  if (code != kDeviceOk) {
    WriteTrace(kLevelError, kName, CodeText("RecvData ERROR", code));
    return code;
  }
  if (SaveRawWanted(rawPath)) {
    QFile file(rawPath);
    if (!file.open(QIODevice::ReadWrite) || !file.seek(file.size()) ||
        file.write(reinterpret_cast<const char*>(buffer.data()), kPageBufferBytes) !=
            kPageBufferBytes) {
      WriteTrace(kLevelError, kName, CodeText("RawData ERROR", kErrFileIo));
      return kErrFileIo;
    }
  }
  const ByteSpan bytes(buffer.data(), buffer.size());
  FlashData data;
  if (state.pmKind == RecorderKind::AL) {
    code = FlashData_ConvertByteArray2Struct(bytes, data);
    if (code != kDeviceOk) {
      WriteTrace(kLevelError, kName, CodeText("FlashData_ConvertByteArray2Struct ERROR", code));
      return code;
    }
  } else if (state.pmKind == RecorderKind::BrioNormal || IsZrOrKtKind(state.pmKind)) {
    code = FlashData_ConvertByteArray2Struct_Brio(bytes, data, state.pmKind);
    if (code != kDeviceOk) {
      WriteTrace(kLevelError, kName,
                 CodeText("FlashData_ConvertByteArray2Struct_Brio ERROR", code));
      return code;
    }
  } else if (state.pmKind == RecorderKind::BrioMets) {
    code = FlashData_ConvertByteArray2Struct_METS(bytes, data);
    if (code != kDeviceOk) {
      WriteTrace(kLevelError, kName,
                 CodeText("FlashData_ConvertByteArray2Struct_METS ERROR", code));
      return code;
    }
  } else {
    WriteTrace(kLevelError, kName, QStringLiteral("PMSoftVersion ERROR,Not AL or BRIO"));
    return kDeviceUnknownKind;
  }
  state.data = std::move(data);
  DumpFlashData(state.data, state.pmKind, bytes, DumpLevel());
  return kDeviceOk;
}

std::unique_ptr<TavoReader> CreateConfiguredReader() {
  if (Ini_GetReaderType().trimmed().compare(QStringLiteral("LIBRARY"), Qt::CaseInsensitive) == 0)
    return std::make_unique<LibraryReader>(Ini_GetLibraryPath());
  return std::make_unique<EmulatedReader>(Ini_GetEmulatorPath());
}
