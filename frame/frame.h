// The application frame: what every other subsystem stands on.
// Settings, the trace log, message texts and dialogs, the shared process values,
// and the small conversions of dates, units and text.
#pragma once

#include "shared_values.h"
#include "profile.h"
#include "config.h"
#include "trace.h"
#include "dialog.h"
#include "catalogue.h"
#include "vbformat.h"
#include "helpers.h"
