// Device link: the recorder's kinds, the byte formats of its memory, the reader and
// the transport that reads it, and recorder memory images for the emulated reader.
#pragma once

#include "device/data_convert.h"
#include "device/device_records.h"
#include "device/readers.h"
#include "device/recorder_dump.h"
#include "device/recorder_image.h"
#include "device/transport.h"
