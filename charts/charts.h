// Analysis and charts: daily statistics and aggregates, the chart data files for the
// chart library, and the display ranges of the job screen.
#pragma once

#include "chart_files.h"
#include "day_stats.h"
#include "make_chart.h"
#include "periods.h"
#include "ranges.h"
