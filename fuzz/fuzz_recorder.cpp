// A whole recorder memory as the reader delivers it: kind decision, management block,
// the page-number check of the ring and every page, then both dump forms.
#include <unistd.h>

#include <cstddef>
#include <cstdint>

#include "device/fake_reader.h"
#include "device/recorder_dump.h"
#include "fuzz/fuzz_setup.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  FuzzConfigure();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FakeReader reader(QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)));
  NoWaitClock clock;
  RecorderContents contents;
  QString error;
  if (ReadRecorderContents(reader, clock, contents, &error) == kDeviceOk) {
    (void)RecorderContentsJson(contents);
    (void)RecorderContentsText(contents);
  }
  return 0;
}
