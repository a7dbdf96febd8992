// Analysis and charts: daily statistics and aggregates, the chart data files for the
// chart library, and the display ranges of the job screen.
#pragma once

#include "charts/chart_files.h"
#include "charts/day_stats.h"
#include "charts/make_chart.h"
#include "charts/periods.h"
#include "charts/ranges.h"
