// Decoders of the management block and the data pages: each checks first that the
// bytes cover its layout, then reads the layout's fields.
#include "device/data_convert.h"
#include "device/memory_layout.h"

qint32 FlashManage_ConvertByteArray2Struct(ByteSpan block, FlashManage& out) {
  if (block.size() < static_cast<size_t>(layout::ManageBytes(RecorderKind::AL))) return kErrSubscriptOutOfRange;
  FlashManage m;
  layout::Decode(block.data(), m, RecorderKind::AL);
  m.FixedData = kPmAlFixedText;
  out = std::move(m);
  return kDeviceOk;
}

qint32 FlashManage_ConvertByteArray2Struct_Brio(ByteSpan block, FlashManage& out, RecorderKind kind) {
  // Any kind but the ZR and KT recorders reads the common BRIO block.
  const RecorderKind as = IsZrOrKtKind(kind) ? kind : RecorderKind::BrioNormal;
  if (block.size() < static_cast<size_t>(layout::ManageBytes(as))) return kErrSubscriptOutOfRange;
  FlashManage m;
  layout::Decode(block.data(), m, as);
  out = std::move(m);
  return kDeviceOk;
}

namespace {

qint32 DecodePage(ByteSpan page, FlashData& out, RecorderKind kind) {
  if (page.size() < static_cast<size_t>(PageBytesOfKind(kind))) return kErrSubscriptOutOfRange;
  FlashData d;
  layout::Decode(page.data(), d, kind);
  out = std::move(d);
  return kDeviceOk;
}

}  // namespace

qint32 FlashData_ConvertByteArray2Struct(ByteSpan page, FlashData& out) {
  return DecodePage(page, out, RecorderKind::AL);
}

qint32 FlashData_ConvertByteArray2Struct_Brio(ByteSpan page, FlashData& out, RecorderKind kind) {
  return DecodePage(page, out, IsZrOrKtKind(kind) ? kind : RecorderKind::BrioNormal);
}

qint32 FlashData_ConvertByteArray2Struct_METS(ByteSpan page, FlashData& out) {
  return DecodePage(page, out, RecorderKind::BrioMets);
}

qint32 FlashData_Decode(ByteSpan page, FlashData& out, RecorderKind kind) {
  if (!IsKnownPMKind(kind)) return kDeviceUnknownKind;
  return DecodePage(page, out, kind);
}
