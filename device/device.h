// Device link: the recorder's kinds, the byte formats of its memory, the reader and
// the transport that reads it, and recorder memory images for the emulated reader.
#pragma once

#include "data_convert.h"
#include "device_records.h"
#include "readers.h"
#include "recorder_dump.h"
#include "recorder_image.h"
#include "transport.h"
