// Data exchange: CSV reports (export and import) and the progress driver of long work.
#pragma once

#include "exchange/csv_batch.h"
#include "exchange/csv_export.h"
#include "exchange/csv_forms.h"
#include "exchange/csv_import.h"
#include "exchange/progress_driver.h"
