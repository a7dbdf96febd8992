// Data exchange: CSV reports (export and import) and the progress driver of long work.
#pragma once

#include "csv_batch.h"
#include "csv_export.h"
#include "csv_forms.h"
#include "csv_import.h"
#include "progress_driver.h"
