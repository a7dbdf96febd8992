// Records of the data store. All members are text unless said otherwise: numbers cross
// the layers as decimal text and are converted where they are used.
//
// Fixed-width records (UserRecord, GroupRecord, GeneralRecord, DayRecord,
// ReceiveHistoryRecord, TimeBlockRecord) hold every column cut or padded with blanks to
// its width as the reading operations deliver them; callers trim. Writing USER and
// GENERAL_DATA pads to the width again; DayRecord, ReceiveHistoryRecord and
// TimeBlockRecord are also what a reception writes, their texts stored as they stand.
//
// Arrays of the old forms ("1 to RecordCount") are std::vector from index 0 here.
#pragma once

#include <QString>
#include <QStringList>
#include <array>
#include <cstdint>
#include <optional>

// A row of GROUP.
struct GroupRecord {
  QString GROUP_ID;    // 10
  QString GROUP_NAME;  // 50
  QString COMMENT;     // 50
  QString ICONINDEX;   // 1
};

// A row of USER, the 32 columns in the order of writing.
struct UserRecord {
  QString USER_ID;          // 10
  QString GROUP_ID;         // 10
  QString LOGIN_ID;         // 10
  QString PASSWORD;         // 10
  QString FIRST_NAME;       // 20
  QString MIDDLE_NAME;      // 20
  QString LAST_NAME;        // 20
  QString NICK_NAME;        // 20
  QString COMMENT;          // 50
  QString ICONINDEX;        // 1
  QString GENDAR;           // 1
  QString AGE;              // 3
  QString HEIGHT_CM;        // 3
  QString HEIGHT_FEET;      // 1
  QString HEIGHT_INCH;      // 2
  QString WEIGHT_KG;        // 5
  QString WEIGHT_PAUND;     // 3
  QString TARGET_CAL;       // 4
  QString LAST_RECEIVE_ID;  // 10
  QString LAST_PAGE;        // 3
  QString TARGET_STEP;      // 5
  QString TARGET_ACTMIN;    // 4
  QString TARGET_INTAKE;    // 4
  QString MODERATE_LOW;     // 1
  QString MODERATE_HIGH;    // 1
  QString GRAPH_TARGET;     // 1
  QString PREF_ID;          // 8, may be null (then blanks)
  QString CPU_NO;           // 6, may be null
  QString CPU_STARTDATE;    // 8, may be null
  QString EXTRA1;           // 4, may be null
  QString EXTRA2;           // 1, may be null
  QString EXTRA3;           // 1, may be null
};

// A row of GENERAL_DATA; every column 50 wide.
struct GeneralRecord {
  QString USER_ID;
  QString YEAR;
  QString MONTH;
  QString DAY;
  QString ITEM;
  QString SUB_ITEM;
  QString VALUE;
};

// A row of RECEIVE_HISTORY.
struct ReceiveHistoryRecord {
  QString RECEIVE_ID;    // 10
  QString VERSION_NO;    // 3
  QString ID_NO;         // 5
  QString CPU_NO;        // 6
  QString RECEIVE_DATE;  // 20
  QString RAWFILENAME;   // 128
  QString START_PAGE;    // 3
  QString END_PAGE;      // 3
  QString CURRENT_PAGE;  // 3
};

// A row of TIME_MEASUREMENT_BLOCK.
struct TimeBlockRecord {
  QString RECEIVE_ID;        // 10
  QString SEQ_NUM;           // 3
  QString ACT_LEVEL_BLOCK;   // 2880
  QString MEASUREMENT_MODE;  // 1
};

// One stored day: DAY_MEASUREMENT without WEIGHT_KG_ORG, WEIGHT_PAUND_ORG and REMARK,
// which are always empty. ACTIVITY_LEVEL[i] is ACTIVITY_LEVEL_i; EVENT[n] is EVENT_(n+1).
struct DayRecord {
  QString RECEIVE_ID;           // 10
  QString SEQ_NUM;              // 3
  QString START_PAGE;           // 3
  QString PAGE;                 // 3
  QString MEASUREMENT_DAY;      // 8
  QString RAW_MEASUREMENT_DAY;  // 8
  QString WEEK_DAY;             // 1
  QString USER_ID;              // 10
  QString GENDAR;               // 1
  QString AGE;                  // 3
  QString HEIGHT_CM;            // 3
  QString HEIGHT_FEET;          // 1
  QString HEIGHT_INCH;          // 2
  QString WEIGHT_KG;            // 5
  QString WEIGHT_PAUND;         // 3
  QString TARGET_CAL;           // 4
  QString ENERGY_EXPENDITURE;   // 5
  QString ACTIVITY;             // 5
  QString STEP_COUNT;           // 5
  std::array<QString, 10> ACTIVITY_LEVEL;  // 5 each
  QString ACTIVITY_LEVEL_SMALL;            // 5
  std::array<QString, 10> EVENT;           // 4 each
  QString LOWER_BOUND;        // 1
  QString UPPER_BOUND;        // 1
  QString TARGET_TIME;        // 5
  QString PACE_CM;            // 5
  QString PACE_FEET;          // 5
  QString PACE_INCH;          // 5
  QString TARGET_STEP;        // 5
  QString DISPLAY_MODE;       // 1
  QString MEASUREMENT_MODE;   // 1
  QString ACCUMULATION_TIME;  // 5
  QString DISTANCE_KM;        // 5
  QString DISTANCE_MILE;      // 5
  QString SELECT_TARGET;      // 1
  QString SELECT_UNIT;        // 1
  QString PEDOMERA;           // 1, after FixPedomeraKind
  QString MEMORY_LOCK;        // 1
  QString EXERCISE;           // 10; null gives 10 blanks
};

// What a reception writes into the user's row: the body data of the last page and the
// bookkeeping for the next reception. A target is written only when it holds a value.
struct UserReceiveUpdate {
  QString GENDAR;
  QString AGE;
  QString HEIGHT_CM;
  QString HEIGHT_FEET;
  QString HEIGHT_INCH;
  QString WEIGHT_KG;
  QString WEIGHT_PAUND;
  QString LAST_RECEIVE_ID;
  QString LAST_PAGE;
  std::optional<QString> TARGET_CAL;
  std::optional<QString> TARGET_STEP;
  std::optional<QString> TARGET_ACTMIN;
};

// One calendar day for the charts; every text trimmed. Filled per stored row by
// VTDB_GetChartData (the members marked "charts" are left for the statistics to fill).
// ACTIVITY_LEVEL[i] is ACTIVITY_LEVEL_i (all ten are filled); EVENT[n] is EVENT_(n+1),
// "9999" read as "".
struct ChartDayRecord {
  QString RECEIVE_ID;
  QString SEQ_NUM;
  QString MEASUREMENT_DAY;
  QString WEEK_DAY;
  QString STEP_COUNT;
  QString TARGET_STEP;
  QString StepTargetSelected;  // "1" when SELECT_TARGET is "1", else "0"
  QString ACTIVITY;
  QString TARGET_CAL;
  QString CalTargetSelected;  // "0" when SELECT_TARGET is "1", else "1"
  QString ACCUMULATION_TIME;
  QString TARGET_TIME;
  QString TimeTargetSelected;  // same as CalTargetSelected
  QString ENERGY_EXPENDITURE;
  QString SELECT_UNIT;
  QString WeightShown;  // WEIGHT_KG for SELECT_UNIT "0", else WEIGHT_PAUND
  QString HeightShown;  // HEIGHT_CM, or HEIGHT_FEET + " \" " + HEIGHT_INCH + "'"
  QString WEIGHT_KG;
  QString WEIGHT_PAUND;
  QString HEIGHT_CM;
  QString HEIGHT_FEET;
  QString HEIGHT_INCH;
  QString MEASUREMENT_MODE;
  QString PEDOMERA;  // after FixPedomeraKind
  QString GENDAR;
  QString AGE;
  QString DistanceShown;  // DISTANCE_KM for SELECT_UNIT "0", else DISTANCE_MILE
  QString DISTANCE_KM;
  QString DISTANCE_MILE;
  QString LOWER_BOUND;
  QString UPPER_BOUND;
  QString MODERATE;  // VTDB_GetModerate
  QString VIGOROUS;  // VTDB_GetModerate
  float ModerateMinutes = 0.0f;  // charts
  float VigorousMinutes = 0.0f;  // charts
  std::array<QString, 10> ACTIVITY_LEVEL;
  std::array<QString, 10> EVENT;
  QString ACT_LEVEL_BLOCK;  // charts, chart type 5 only
  bool NewestOfDay = false;
  QString ExcludeFlag;  // "0" counts, "1" excluded
  QString EXERCISE;
};

// One calendar day of a CSV report (export and import). ACTIVITY_LEVEL[i] is
// ACTIVITY_LEVEL_i; EVENT[n] is EVENT_(n+1).
struct CsvRow {
  QString RECEIVE_ID;
  QString SEQ_NUM;
  QString MEASUREMENT_DAY;
  QString RAW_MEASUREMENT_DAY;
  QString WEEK_DAY;
  QString USER_ID;
  QString GENDAR;
  QString AGE;
  QString HEIGHT_CM;
  QString HEIGHT_FEET;
  QString HEIGHT_INCH;
  QString WEIGHT_KG;
  QString WEIGHT_PAUND;
  QString TARGET_CAL;
  QString STEP_COUNT;
  QString ENERGY_EXPENDITURE;
  QString ACTIVITY;
  QString Reserved1;
  QString Reserved2;
  QString TARGET_STEP;
  QString PACE_CM;
  QString DISTANCE_KM;
  QString TARGET_TIME;
  QString ACCUMULATION_TIME;
  QString LOWER_BOUND;
  QString UPPER_BOUND;
  QString PEDOMERA;
  QString MEMORY_LOCK;
  QString MEASUREMENT_MODE;
  std::array<QString, 10> ACTIVITY_LEVEL;
  QString ACTIVITY_LEVEL_SMALL;
  std::array<QString, 10> EVENT;
  QString ACT_LEVEL_BLOCK;  // the profile text
  std::array<QString, 5> Reserved;
  bool NewestOfDay = false;
  QString NoDataMark;  // "1" for a calendar day without a stored row
  QStringList ProfileValues;  // the profile split at ","
  QString EXERCISE;
};

// The user record of the screens: variable-length texts, every one trimmed.
struct UserInfo {
  QString GROUP_ID;
  QString LOGIN_ID;
  QString PASSWORD;
  QString USER_ID;
  QString FIRST_NAME;
  QString MIDDLE_NAME;
  QString LAST_NAME;
  QString NICK_NAME;
  QString COMMENT;
  std::int16_t ICONINDEX = 0;
  QString DisplayName;  // filled only by GetUserList
  QString TARGET_CAL;
  QString TARGET_STEP;
  QString TARGET_ACTMIN;
  QString TARGET_INTAKE;
  QString MODERATE_LOW;
  QString MODERATE_HIGH;
  QString GRAPH_TARGET;
  QString PREF_ID;
  QString CPU_NO;
  QString CPU_STARTDATE;
  QString EXTRA1;
  QString EXTRA2;
  QString EXTRA3;
  QString GENDAR;
  QString AGE;
  QString HEIGHT_CM;
  QString WEIGHT_KG;
};

// The group record of the screens.
struct GroupInfo {
  QString GROUP_ID;
  QString GROUP_NAME;
  QString COMMENT;
  std::int16_t ICONINDEX = 0;
};

// A general item of the screens: the seven columns, trimmed.
struct GeneralInfo {
  QString USER_ID;
  QString YEAR;
  QString MONTH;
  QString DAY;
  QString ITEM;
  QString SUB_ITEM;
  QString VALUE;
};

// The saved weight plan: the fourteen "IT007" items of a user (item code in brackets).
struct WeightPlanRecord {
  QString UserId;
  QString PeriodIndex;      // IT007001 position in the period list
  QString StartDate;        // IT007002 "yyyyMMdd"
  QString EndDate;          // IT007003 "yyyyMMdd"
  QString TargetWeight;     // IT007004, written again as IT007010
  QString Loss;             // IT007013 weight to lose
  QString DietOption;       // IT007005 "True" or "False"
  QString FoodIndex;        // IT007006
  QString PortionIndex;     // IT007007
  QString ReductionIndex;   // IT007008
  QString StartWeight;      // IT007009
  QString StartHeight;      // IT007011
  QString StartHeightInch;  // IT007012
  QString PoundFlag;        // IT007014 "1" pounds, "0" kg
};
