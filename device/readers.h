// The two real readers: recorder memory images in a folder, and the vendor library.
#pragma once

#include <QByteArray>
#include <QLibrary>
#include <QString>
#include <memory>

#include "device/transport.h"

// Fault status an emulated read ends with when it lies outside the image.
inline constexpr qint32 kEmulatorFaultAddress = 3;

// A recorder is on the reader while a file *.img lies in the folder (the first in name
// order); its bytes are the recorder's memory as consecutive 248-byte transfer blocks.
// The image is loaded at Tavo_Open. A transfer starts only while the image file still
// lies there; reads outside the image end with kEmulatorFaultAddress.
class EmulatedReader : public TavoReader {
 public:
  explicit EmulatedReader(QString folder);
  qint32 Tavo_Open() override;
  qint32 Tavo_CloseAll() override;
  qint32 Tavo_Close(qint32 handle) override;
  qint32 Tavo_Start(qint32 handle) override;
  qint32 Tavo_BRead(qint32 handle, qint32 zero, qint32 minusOne, qint32 firstBlock,
                    quint8* buffer, qint32 byteCount) override;
  qint32 Tavo_GetStatus(qint32 handle, qint32* out1, qint32* out2) override;
  qint32 Tavo_Finish(qint32 handle) override;
  qint32 Tavo_Stop(qint32 handle) override;

  const QString& folder() const { return folder_; }
  // The image file a recorder would be read from now; empty when there is none.
  QString currentImagePath() const;

 private:
  QString folder_;
  QString imagePath_;
  QByteArray image_;
  qint32 handle_ = 0;
  qint32 nextHandle_ = 1;
  bool inTransfer_ = false;
  qint32 status_ = kTavoStatusDone;
};

// The vendor's reader library, loaded at run time. When it cannot be loaded or lacks a
// symbol, one log line says so and the reader behaves as one with no recorder.
class LibraryReader : public TavoReader {
 public:
  explicit LibraryReader(const QString& libraryPath);
  ~LibraryReader() override;
  bool isLoaded() const { return loaded_; }

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
  using FnVoid = qint32 (*)();
  using FnHandle = qint32 (*)(qint32);
  using FnBRead = qint32 (*)(qint32, qint32, qint32, qint32, void*, qint32);
  using FnStatus = qint32 (*)(qint32, qint32*, qint32*);

  QLibrary library_;
  bool loaded_ = false;
  FnVoid open_ = nullptr;
  FnVoid closeAll_ = nullptr;
  FnHandle close_ = nullptr;
  FnHandle start_ = nullptr;
  FnBRead bread_ = nullptr;
  FnStatus status_ = nullptr;
  FnHandle finish_ = nullptr;
  FnHandle stop_ = nullptr;
};
