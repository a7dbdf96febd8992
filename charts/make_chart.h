// Making the chart files of one chart from the database: MakeChartData and its steps.
// Failures are reported the system's way (catalogue messages through the dialog
// interface, trace lines); nothing throws out of MakeChartData.
#pragma once

#include <QString>
#include <vector>

#include "charts/chart_files.h"
#include "charts/day_stats.h"
#include "store/records.h"

class VtDatabase;

namespace charts {

// The state of one run, handed from step to step (there is no module state).
struct ChartData {
  // In.
  QString userId;
  int chartType = 0;
  QString startDate;  // "yyyymmdd"
  QString endDate;    // "yyyymmdd"
  QString folder;     // where the files go; empty: TEMPDATA_PATH
  // Gathered by MakeDataMain.
  UserRecord user;
  QString moderateFrom;
  QString moderateTo;
  ExclusionSettings exclusion;
  QString firstMeasured;  // "yyyymmdd", "" when none
  QString lastMeasured;
  QString statusText;
  std::vector<ChartDayRecord> days;
  // Out: the files made; empty when not made.
  QString interfaceFile;
  QString headerFile;
  QString simFile;
};

// The entry point of the screens. startDate and endDate are "yyyy/mm/dd"; userId empty
// takes the current user (else the logged-in one). The two names come back holding the
// files made (empty when not made). True when both files were written. folder empty:
// TEMPDATA_PATH. simFileName, when given, receives the .sim file of types 800 to 802.
bool MakeChartData(VtDatabase& db, int chartType, const QString& startDate,
                   const QString& endDate, QString& interfaceFileName, QString& headerFileName,
                   const QString& userId = QString(), const QString& folder = QString(),
                   QString* simFileName = nullptr);

// The day list and the interface file (and the .sim file). noNotice suppresses the
// notice about interleaved receptions. False after a failure that was shown; true also
// for an unknown chart type, which makes no files.
bool MakeDataMain(VtDatabase& db, ChartData& data, bool noNotice);
// Lines 1 to 3 into a fresh temporary file, then the data lines appended; sets
// data.interfaceFile ("" on failure, the partial file removed).
bool MakeInterfaceFilePersonalDataView(const InterfaceContext& ctx, ChartData& data);
// Appends the data lines. False (logged "DATA_WRITE_ERROR[...]") when writing fails.
bool WriteChartDataParsonalDisplay(const QString& path, const InterfaceContext& ctx,
                                   const std::vector<ChartDayRecord>& days);
// The .sim file beside the interface file; "" when it could not be written.
QString WriteSimFile(const QString& interfaceFile, const std::optional<WeightPlan>& plan,
                     const std::vector<ChartDayRecord>& days, const QDate& anchor);
// The header file of the run; sets data.headerFile ("" on failure).
bool MakeHeaderFile(VtDatabase& db, ChartData& data);

}  // namespace charts
