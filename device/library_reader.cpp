// The vendor's reader library, resolved at run time. Every entry point uses the C
// calling convention with signed 32-bit integers.
#include "device/readers.h"

#include "frame/trace.h"

LibraryReader::LibraryReader(const QString& libraryPath) : library_(libraryPath) {
  static const QString kName = QStringLiteral("LibraryReader");
  if (libraryPath.isEmpty() || !library_.load()) {
    WriteTrace(QStringLiteral("2"), kName,
               QStringLiteral("reader library not loaded [%1] %2").arg(libraryPath, library_.errorString()));
    return;
  }
  open_ = reinterpret_cast<FnVoid>(library_.resolve("Tavo_Open"));
  closeAll_ = reinterpret_cast<FnVoid>(library_.resolve("Tavo_CloseAll"));
  close_ = reinterpret_cast<FnHandle>(library_.resolve("Tavo_Close"));
  start_ = reinterpret_cast<FnHandle>(library_.resolve("Tavo_Start"));
  bread_ = reinterpret_cast<FnBRead>(library_.resolve("Tavo_BRead"));
  status_ = reinterpret_cast<FnStatus>(library_.resolve("Tavo_GetStatus"));
  finish_ = reinterpret_cast<FnHandle>(library_.resolve("Tavo_Finish"));
  stop_ = reinterpret_cast<FnHandle>(library_.resolve("Tavo_Stop"));
  QStringList missing;
  if (open_ == nullptr) missing << QStringLiteral("Tavo_Open");
  if (closeAll_ == nullptr) missing << QStringLiteral("Tavo_CloseAll");
  if (close_ == nullptr) missing << QStringLiteral("Tavo_Close");
  if (start_ == nullptr) missing << QStringLiteral("Tavo_Start");
  if (bread_ == nullptr) missing << QStringLiteral("Tavo_BRead");
  if (status_ == nullptr) missing << QStringLiteral("Tavo_GetStatus");
  if (finish_ == nullptr) missing << QStringLiteral("Tavo_Finish");
  if (stop_ == nullptr) missing << QStringLiteral("Tavo_Stop");
  if (!missing.isEmpty()) {
    WriteTrace(QStringLiteral("2"), kName,
               QStringLiteral("reader library [%1] lacks %2").arg(libraryPath, missing.join(QLatin1Char(','))));
    library_.unload();
    return;
  }
  loaded_ = true;
}

LibraryReader::~LibraryReader() {
  if (loaded_) library_.unload();
}

// Without the library every operation answers as a reader with no recorder would.
qint32 LibraryReader::Tavo_Open() { return loaded_ ? open_() : 0; }
qint32 LibraryReader::Tavo_CloseAll() { return loaded_ ? closeAll_() : 0; }
qint32 LibraryReader::Tavo_Close(qint32 handle) { return loaded_ ? close_(handle) : 0; }
qint32 LibraryReader::Tavo_Start(qint32 handle) { return loaded_ ? start_(handle) : 0; }
qint32 LibraryReader::Tavo_BRead(qint32 handle, qint32 zero, qint32 minusOne, qint32 firstBlock,
                                 quint8* buffer, qint32 byteCount) {
  return loaded_ ? bread_(handle, zero, minusOne, firstBlock, buffer, byteCount) : 0;
}
qint32 LibraryReader::Tavo_GetStatus(qint32 handle, qint32* out1, qint32* out2) {
  if (!loaded_) return kDeviceNoTransfer;
  return status_(handle, out1, out2);
}
qint32 LibraryReader::Tavo_Finish(qint32 handle) { return loaded_ ? finish_(handle) : 0; }
qint32 LibraryReader::Tavo_Stop(qint32 handle) { return loaded_ ? stop_(handle) : 0; }
