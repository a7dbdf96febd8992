// A reader over recorder memory images lying in a folder.
#include "device/readers.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cstring>

#include "device/device_records.h"
#include "frame/trace.h"

EmulatedReader::EmulatedReader(QString folder) : folder_(std::move(folder)) {}

QString EmulatedReader::currentImagePath() const {
  if (folder_.isEmpty()) return QString();
  const QDir dir(folder_);
  const QStringList names =
      dir.entryList({QStringLiteral("*.img")}, QDir::Files | QDir::Readable, QDir::Name);
  return names.isEmpty() ? QString() : dir.filePath(names.first());
}

qint32 EmulatedReader::Tavo_Open() {
  const QString path = currentImagePath();
  if (path.isEmpty()) return 0;
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return 0;
  // The file is untrusted: no more than the largest recorder memory is read (a link to
  // an endless device must not fill the memory). A larger file is no recorder.
  const qint64 limit = LargestRecorderMemoryBytes();
  image_ = file.read(limit + 1);
  if (image_.size() > limit) {
    WriteTrace(QStringLiteral("2"), QStringLiteral("Tavo_Open"),
               QStringLiteral("%1 is larger than any recorder memory (%2 bytes); not read").arg(path).arg(limit));
    image_.clear();
    return 0;
  }
  imagePath_ = path;
  inTransfer_ = false;
  status_ = kTavoStatusDone;
  handle_ = nextHandle_++;
  if (nextHandle_ <= 0) nextHandle_ = 1;
  return handle_;
}

qint32 EmulatedReader::Tavo_CloseAll() {
  handle_ = 0;
  inTransfer_ = false;
  image_.clear();
  imagePath_.clear();
  return 0;
}

qint32 EmulatedReader::Tavo_Close(qint32 handle) {
  if (handle == 0 || handle != handle_) return -1;
  handle_ = 0;
  inTransfer_ = false;
  image_.clear();
  imagePath_.clear();
  return 0;
}

qint32 EmulatedReader::Tavo_Start(qint32 handle) {
  // The recorder has been taken off when its image is gone.
  if (handle == 0 || handle != handle_ || inTransfer_ || !QFileInfo::exists(imagePath_)) return 0;
  inTransfer_ = true;
  status_ = kTavoStatusDone;
  return 1;
}

qint32 EmulatedReader::Tavo_BRead(qint32 handle, qint32 zero, qint32 minusOne, qint32 firstBlock,
                                  quint8* buffer, qint32 byteCount) {
  if (handle == 0 || handle != handle_ || !inTransfer_ || buffer == nullptr || byteCount <= 0 ||
      zero != 0 || minusOne != -1)
    return 0;
  const qint64 offset = static_cast<qint64>(firstBlock) * kTransferBlockBytes;
  if (firstBlock < 0 || offset + byteCount > image_.size()) {
    status_ = kEmulatorFaultAddress;
    return 1;
  }
  std::memcpy(buffer, image_.constData() + offset, static_cast<size_t>(byteCount));
  status_ = kTavoStatusDone;
  return 1;
}

qint32 EmulatedReader::Tavo_GetStatus(qint32 handle, qint32* out1, qint32* out2) {
  if (out1 != nullptr) *out1 = 0;
  if (out2 != nullptr) *out2 = 0;
  if (handle == 0 || handle != handle_) return kEmulatorFaultAddress;
  return status_;
}

qint32 EmulatedReader::Tavo_Finish(qint32 handle) {
  if (handle != handle_) return 0;
  inTransfer_ = false;
  return 1;
}

qint32 EmulatedReader::Tavo_Stop(qint32 handle) {
  if (handle != handle_) return 0;
  inTransfer_ = false;
  status_ = kTavoStatusDone;
  return 1;
}
