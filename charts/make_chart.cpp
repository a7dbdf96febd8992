#include "charts/make_chart.h"

#include <QFile>
#include <exception>

#include "frame/catalogue.h"
#include "frame/config.h"
#include "frame/helpers.h"
#include "frame/shared_values.h"
#include "frame/trace.h"
#include "store/store.h"

namespace charts {

namespace {

void Trace2(const QString& name, const QString& message) {
  WriteTrace(QStringLiteral("2"), name, message);
}

QString OrDefault(const QString& own, const QString& fallback) {
  const QString t = own.trimmed();
  return t.isEmpty() ? fallback : t;
}

QString FolderOf(const ChartData& data) {
  if (!data.folder.isEmpty()) {
    QString f = data.folder;
    EnsureFolder(f);
    return f;
  }
  return Ini_GetTempDataPath();
}

}  // namespace

bool WriteChartDataParsonalDisplay(const QString& path, const InterfaceContext& ctx,
                                   const std::vector<ChartDayRecord>& days) {
  QString error;
  if (!WriteTextLines(path, InterfaceDataLines(ctx, days), true, error)) {
    Trace2(QStringLiteral("WriteChartDataParsonalDisplay"),
           QStringLiteral("DATA_WRITE_ERROR[") + path + QStringLiteral("]: ") + error);
    return false;
  }
  return true;
}

bool MakeInterfaceFilePersonalDataView(const InterfaceContext& ctx, ChartData& data) {
  const QString name = QStringLiteral("MakeInterfaceFilePersonalDataView");
  data.interfaceFile.clear();
  const QString path =
      MakeTempFileName(FolderOf(data), QString::number(ctx.chartType) + QStringLiteral("_INT"));
  QString error;
  if (path.isEmpty()) {
    Trace2(name, QStringLiteral("INTERFACE_MAKE_ERROR[]: no temporary file"));
    return false;
  }
  if (!WriteTextLines(path, InterfaceHeadLines(ctx, data.days), false, error)) {
    Trace2(name, QStringLiteral("INTERFACE_MAKE_ERROR[") + path + QStringLiteral("]: ") + error);
    QFile::remove(path);
    return false;
  }
  if (!data.days.empty() && !WriteChartDataParsonalDisplay(path, ctx, data.days)) {
    Trace2(name, QStringLiteral("WriteChartDataPersonalDataDisplay Error"));
    // A half-written file must not be drawn from; nobody holds its name.
    QFile::remove(path);
    return false;
  }
  data.interfaceFile = path;
  return true;
}

QString WriteSimFile(const QString& interfaceFile, const std::optional<WeightPlan>& plan,
                     const std::vector<ChartDayRecord>& days, const QDate& anchor) {
  const QString path = interfaceFile + QStringLiteral(".sim");
  QString error;
  if (!WriteTextLines(path, SimLines(plan, days, anchor), false, error)) {
    Trace2(QStringLiteral("WriteSimFile"),
           QStringLiteral("SIM_MAKE_ERROR[") + path + QStringLiteral("]: ") + error);
    QFile::remove(path);
    return QString();
  }
  return path;
}

bool MakeDataMain(VtDatabase& db, ChartData& data, bool noNotice) {
  const QString name = QStringLiteral("MakeDataMain");
  data.interfaceFile.clear();
  data.simFile.clear();

  if (data.userId.isEmpty()) data.userId = GetCurrentUserId();
  if (data.userId.isEmpty()) data.userId = GetLoginUserId();
  if (!VTDB_GetUserInfoFromUserId(db, data.userId, data.user)) {
    MessageDialog(QStringLiteral("CALC-C-0001"));
    return false;
  }

  Ini_GetModerate(data.moderateFrom, data.moderateTo);
  ApplyModerateDefaults(data.moderateFrom, data.moderateTo);
  data.exclusion = ReadExclusionSettings();

  data.statusText = QStringLiteral("3");
  if (VTDB_ExistData(db, data.userId, data.startDate, data.endDate))
    data.statusText = QStringLiteral("2");
  data.firstMeasured.clear();
  data.lastMeasured.clear();
  VTDB_GetDayMeasurementRange(db, data.userId, data.firstMeasured, data.lastMeasured, false);
  if (data.firstMeasured.isEmpty() || data.lastMeasured.isEmpty())
    data.statusText = QStringLiteral("4");

  if (!IsKnownChartType(data.chartType)) {
    Trace2(name, QStringLiteral("MakeDataMain ChartType Err"));
    MessageDialog(QStringLiteral("CALC-C-0002"));
    return true;
  }

  const bool useExclusion = UsesExclusion(data.chartType);
  const int found = CalcStepActMin(db, data.userId, data.startDate, data.endDate, data.days,
                                   useExclusion, data.chartType == 5, false);
  if (found < 0) {
    MessageDialog(QStringLiteral("CALC-C-0002"));
    return false;
  }
  std::optional<int> displayUnit;
  if (IsEnglishEdition() && found > 0) {
    if (!SetGraphDataUnit(db, data.userId, data.days)) {
      MessageDialog(QStringLiteral("CALC-C-0002"));
      return false;
    }
    displayUnit = GetUnitFlag(db, data.userId);
  }

  QString defStep, defActMin, defIntake, defActCal;
  Ini_GetUserTargets(defStep, defActMin, defIntake, defActCal);
  WeightPlanRecord planRecord;
  std::optional<WeightPlan> plan;
  if (GetWeightPlan(db, planRecord, data.userId)) plan = PlanFromRecord(planRecord);

  InterfaceContext ctx;
  ctx.chartType = data.chartType;
  ctx.startDate = data.startDate;
  ctx.endDate = data.endDate;
  ctx.moderateFrom = data.moderateFrom;
  ctx.moderateTo = data.moderateTo;
  ctx.fixedMax = Ini_GetFixedMaxValues();
  ctx.exerciseTarget = OrDefault(data.user.EXTRA1, Ini_GetTargetExercise());
  ctx.useExclusion = useExclusion;
  ctx.statusText = data.statusText;
  ctx.targetStep = OrDefault(data.user.TARGET_STEP, defStep);
  ctx.targetCal = OrDefault(data.user.TARGET_CAL, defActCal);
  ctx.extra3 = data.user.EXTRA3.trimmed();
  ctx.plan = plan;
  ctx.displayUnit = displayUnit;
  ctx.anchor = YmdToDate(data.lastMeasured);
  const QString userId = data.userId;
  ctx.existData = [&db, userId](const QString& from, const QString& to) {
    return VTDB_ExistData(db, userId, from, to);
  };

  if (!MakeInterfaceFilePersonalDataView(ctx, data)) return false;

  if (!CheckDataChronology(data.days) && !noNotice) MessageDialog(QStringLiteral("CALC-I-0001"));

  if (data.chartType >= 800 && data.chartType <= 802)
    data.simFile = WriteSimFile(data.interfaceFile, plan, data.days, ctx.anchor);
  return true;
}

bool MakeHeaderFile(VtDatabase& db, ChartData& data) {
  const QString name = QStringLiteral("MakeHeaderFile");
  data.headerFile.clear();

  HeaderContext ctx;
  ctx.reservedUser = data.userId == kInstructorUserId;
  if (!VTDB_GetUserInfoFromUserId(db, data.userId, ctx.user)) {
    Trace2(name, QStringLiteral("VTDB_GetUserInfoFromUserId Error"));
    return false;
  }
  if (!ctx.reservedUser) {
    GroupRecord group;
    if (VTDB_GetGroupInfoFromId(db, ctx.user.GROUP_ID.trimmed(), group))
      ctx.groupName = group.GROUP_NAME.trimmed();
    else
      Trace2(name, QStringLiteral("GetGroupInfoFromId error"));
  }

  for (auto it = data.days.rbegin(); it != data.days.rend(); ++it) {
    if (!it->NewestOfDay) continue;
    DayRecord row;
    if (VTDB_GetDayMeasurement(db, it->RECEIVE_ID, it->SEQ_NUM, row)) ctx.newestRow = row;
    break;
  }
  ctx.captionMale = GetIniCaption(QStringLiteral("REPORT_HEADER"), QStringLiteral("CAPTION_MALE"));
  ctx.captionFemale =
      GetIniCaption(QStringLiteral("REPORT_HEADER"), QStringLiteral("CAPTION_FEMALE"));
  ctx.startDate = data.startDate;
  ctx.endDate = data.endDate;
  for (const ChartDayRecord& d : data.days)
    if (d.ExcludeFlag == QLatin1String("0")) ++ctx.countedDays;
  if (ctx.reservedUser) {
    QString actCal;
    Ini_GetUserTargets(ctx.targetStep, ctx.targetActMin, ctx.targetIntake, actCal);
  } else {
    ctx.targetStep = ctx.user.TARGET_STEP.trimmed();
    ctx.targetIntake = ctx.user.TARGET_INTAKE.trimmed();
    ctx.targetActMin = ctx.user.TARGET_ACTMIN.trimmed();
  }
  ctx.moderateFrom = data.moderateFrom;
  ctx.moderateTo = data.moderateTo;
  ctx.excludeFirst = data.exclusion.startingDay;
  ctx.excludeLast = data.exclusion.endingDay;
  ctx.threshold = data.exclusion.lowStepCount;
  ctx.institution = Ini_GetInstitution();

  const QString path = MakeTempFileName(FolderOf(data), QStringLiteral("HED"));
  QString error;
  if (path.isEmpty()) {
    Trace2(name, QStringLiteral("HEADER_MAKE_ERROR[]: no temporary file"));
    return false;
  }
  if (!WriteTextLines(path, HeaderLines(ctx), false, error)) {
    Trace2(name, QStringLiteral("HEADER_MAKE_ERROR[") + path + QStringLiteral("]: ") + error);
    QFile::remove(path);
    return false;
  }
  data.headerFile = path;
  return true;
}

bool MakeChartData(VtDatabase& db, int chartType, const QString& startDate,
                   const QString& endDate, QString& interfaceFileName, QString& headerFileName,
                   const QString& userId, const QString& folder, QString* simFileName) {
  interfaceFileName.clear();
  headerFileName.clear();
  if (simFileName) simFileName->clear();
  try {
    ChartData data;
    data.userId = userId;
    data.chartType = chartType;
    data.startDate = SlashToYmd(startDate);
    data.endDate = SlashToYmd(endDate);
    data.folder = folder;
    bool ok = MakeDataMain(db, data, false);
    if (ok) ok = MakeHeaderFile(db, data);
    interfaceFileName = data.interfaceFile;
    headerFileName = data.headerFile;
    if (simFileName) *simFileName = data.simFile;
    return ok && !interfaceFileName.isEmpty() && !headerFileName.isEmpty();
  } catch (const ConfigError& e) {
    Trace2(QStringLiteral("MakeChartData"), QStringLiteral("MAKE_CHART_ERROR: ") + e.text());
  } catch (const std::exception& e) {
    Trace2(QStringLiteral("MakeChartData"),
           QStringLiteral("MAKE_CHART_ERROR: ") + QString::fromLocal8Bit(e.what()));
  }
  return false;
}

}  // namespace charts
