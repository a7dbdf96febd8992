// One management block or data page decoded as every kind, with the dump lines of each.
#include <unistd.h>

#include <cstddef>
#include <cstdint>

#include "device/data_convert.h"
#include "device/device.h"
#include "fuzz/fuzz_setup.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  FuzzConfigure();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const ByteSpan bytes(data, size);
  const RecorderKind kinds[] = {RecorderKind::AL, RecorderKind::BrioNormal, RecorderKind::BrioMets,
                                 RecorderKind::BrioZr, RecorderKind::BrioKt};
  DeviceState state;
  if (FlashManage_SetPMKind(bytes, state) == kDeviceOk) (void)FlashManageDumpLines(state.manage, state.pmKind);
  for (const RecorderKind kind : kinds) {
    FlashManage manage;
    if (FlashManage_ConvertByteArray2Struct_Brio(bytes, manage, kind) == kDeviceOk)
      (void)FlashManageDumpLines(manage, kind);
    FlashData page;
    if (FlashData_Decode(bytes, page, kind) == kDeviceOk) (void)FlashDataDumpLines(page, kind);
  }
  FlashManage al;
  (void)FlashManage_ConvertByteArray2Struct(bytes, al);
  (void)RawDumpLines(bytes.first(size < 256 ? size : 256));
  return 0;
}
