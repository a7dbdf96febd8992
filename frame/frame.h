// The application frame: what every other subsystem stands on.
// Settings, the trace log, message texts and dialogs, the shared process values,
// and the small conversions of dates, units and text.
#pragma once

#include "frame/catalogue.h"
#include "frame/config.h"
#include "frame/dialog.h"
#include "frame/helpers.h"
#include "frame/profile.h"
#include "frame/shared_values.h"
#include "frame/trace.h"
#include "frame/vbformat.h"
