#include "chartmaker/chartsettings.h"

#include <utility>

#include "frame/config.h"
#include "frame/profile.h"

namespace {

// Okabe-Ito based palette: distinguishable with the common colour-vision
// deficiencies and still apart when printed in grey.
const std::pair<const char*, const char*> kColours[] = {
    {"BACKGROUND", "#FFFFFF"},  {"PANEL", "#F5F7FA"},      {"GRID", "#E3E7EC"},
    {"AXIS", "#6B7280"},        {"TEXT", "#1F2937"},       {"SUBTEXT", "#6B7280"},
    {"STEPS", "#0072B2"},       {"ACTIVITY_CAL", "#E69F00"}, {"TOTAL_CAL", "#56B4E9"},
    {"ACTIVITY_TIME", "#1F2937"}, {"DISTANCE", "#009E73"},  {"EXERCISE", "#CC79A7"},
    {"LIGHT", "#A9BCD0"},       {"MODERATE", "#009E73"},   {"VIGOROUS", "#D55E00"},
    {"TARGET", "#1F2937"},      {"MEAN", "#CC79A7"},       {"NO_DATA", "#9CA3AF"},
    {"EXCLUDED", "#9CA3AF"},    {"WEIGHT", "#0072B2"},     {"PLAN", "#E69F00"},
    {"EVENT", "#CC79A7"},       {"GAP", "#D9DDE3"},        {"BMI_UNDER", "#56B4E9"},
    {"BMI_NORMAL", "#009E73"},  {"BMI_OVER", "#F0E442"},   {"BMI_OBESE", "#D55E00"},
    {"ACCENT", "#0072B2"},
};

// Built-in captions (English); the installed settings file carries the edition's own.
const std::pair<const char*, const char*> kTitles[] = {
    {"CHART_100", "Evaluation"},       {"CHART_200", "Steps"},
    {"CHART_300", "Activity calories"}, {"CHART_400", "Activity time"},
    {"CHART_500", "Total calories"},   {"CHART_600", "Distance"},
    {"CHART_800", "Weight plan"},      {"CHART_900", "Exercise"},
    {"CHART_5", "Day profile"},        {"CHART_700", "Body mass index"},
    {"PERIOD_0", "daily"},             {"PERIOD_1", "weekly average"},
    {"PERIOD_2", "four-week average"}, {"REPORT", "Activity report"},
};

const std::pair<const char*, const char*> kCaptions[] = {
    {"STEPS", "Steps"},
    {"ACTIVITY_CAL", "Activity calories"},
    {"TOTAL_CAL", "Total calories"},
    {"OTHER_CAL", "Other calories"},
    {"ACTIVITY_TIME", "Activity time"},
    {"DISTANCE", "Distance"},
    {"EXERCISE", "Exercise"},
    {"WEIGHT", "Weight"},
    {"PLAN", "Plan"},
    {"BMI", "BMI"},
    {"TARGET", "Target"},
    {"TARGET_IN_USE", "target in use"},
    {"MEAN", "Mean"},
    {"EXCLUDED", "Excluded"},
    {"NO_DATA", "No data"},
    {"NO_DATA_PERIOD", "No data in this period"},
    {"VALID_DAYS", "Valid days"},
    {"DAYS_AT_TARGET", "Days at target"},
    {"LIGHT", "Light"},
    {"MODERATE", "Moderate"},
    {"VIGOROUS", "Vigorous"},
    {"LEVEL", "Level"},
    {"LEVELS", "levels"},
    {"METS", "METs"},
    {"INTENSITY", "Intensity"},
    {"EVENT", "Event"},
    {"TIME_OF_DAY", "Time of day"},
    {"SUMMARY", "Summary"},
    {"DAY_FIGURES", "The day's figures"},
    {"WEEK_TOTAL", "Weekly total"},
    {"MEAN_WEEK_TOTAL", "Mean weekly total"},
    {"DAILY_SHARE", "Target / 7"},
    {"UNIT_STEPS", "steps"},
    {"UNIT_KCAL", "kcal"},
    {"UNIT_MIN", "min"},
    {"UNIT_KM", "km"},
    {"UNIT_MILE", "mi"},
    {"UNIT_EX", "Ex"},
    {"UNIT_KG", "kg"},
    {"UNIT_LBS", "lbs"},
    {"UNDERWEIGHT", "Underweight"},
    {"NORMAL_WEIGHT", "Healthy"},
    {"OVERWEIGHT", "Overweight"},
    {"OBESE", "Obese"},
    {"HEALTHY_RANGE", "Healthy range"},
    {"NO_BMI", "BMI not available"},
    {"YOUR_BMI", "Your BMI"},
    {"PLAN_START", "Plan start"},
    {"PLAN_END", "Plan end"},
    {"NAME", "Name"},
    {"HONORIFIC", ""},
    {"NICKNAME", "Nickname"},
    {"GROUP", "Group"},
    {"AGE", "Age"},
    {"GENDER", "Gender"},
    {"HEIGHT", "Height"},
    {"PERIOD", "Period"},
    {"RECORDER", "Recorder"},
    {"TARGETS", "Targets"},
    {"TARGET_STEP", "Steps"},
    {"TARGET_INTAKE", "Food intake"},
    {"TARGET_ACTMIN", "Activity time"},
    {"MODERATE_RANGE", "Moderate band"},
    {"EXCLUSION", "Left out"},
    {"EXCLUDE_FIRST_DAY", "first day"},
    {"EXCLUDE_LAST_DAY", "last day"},
    {"EXCLUDE_LOW_STEPS", "days under %1 steps"},
    {"EXCLUDE_SEPARATOR", ", "},
    {"EXCLUDE_NONE", "none"},
    {"INSTITUTION", "Institution"},
    {"COMMENT", "Comment"},
    {"DATE", "Date"},
    {"STATE", "Note"},
    {"PRINTED", "Printed"},
    {"FROM_TO", "-"},
    {"MODE", "Recording"},
    {"MODE_AVERAGED", "2-minute average"},
    {"RECORDER_0", "Pedomira AL"},
    {"RECORDER_1", "Pedomira BRIO"},
    {"RECORDER_2", "Pedomira BRIO ZR"},
    {"RECORDER_3", "Pedomira BRIO KT"},
};

void putDefaults(ChartSettings& s) {
  s.fontFamily = QStringLiteral("Noto Sans CJK JP");
  s.dateYmd = QStringLiteral("%Y/%m/%d");
  s.dateMda = QStringLiteral("%m/%d(%a)");
  s.weekdays = QStringList{QStringLiteral("Mon"), QStringLiteral("Tue"), QStringLiteral("Wed"),
                           QStringLiteral("Thu"), QStringLiteral("Fri"), QStringLiteral("Sat"),
                           QStringLiteral("Sun")};
  for (const auto& [k, v] : kColours) s.colours.insert(QLatin1String(k), QColor(QLatin1String(v)));
  for (const auto& [k, v] : kTitles) s.texts.insert(QLatin1String(k), QString::fromUtf8(v));
  for (const auto& [k, v] : kCaptions) s.texts.insert(QLatin1String(k), QString::fromUtf8(v));
}

}  // namespace

ChartSettings::ChartSettings() { putDefaults(*this); }

bool ChartSettings::load(const QString& path) {
  putDefaults(*this);
  if (!FileExists(path)) return false;
  auto read = [&](const char* section, const QString& key) {
    return ReadIniString(path, QLatin1String(section), key).trimmed();
  };
  const QString family = read("FONT", QStringLiteral("FAMILY"));
  if (!family.isEmpty()) fontFamily = family;
  QString v = read("FORMAT", QStringLiteral("DATE_YMD"));
  if (!v.isEmpty()) dateYmd = v;
  v = read("FORMAT", QStringLiteral("DATE_MDA"));
  if (!v.isEmpty()) dateMda = v;
  const QStringList days = read("FORMAT", QStringLiteral("WEEKDAYS")).split(QLatin1Char(','));
  if (days.size() == 7) {
    weekdays.clear();
    for (const auto& d : days) weekdays.append(d.trimmed());
  }
  for (const auto& [k, def] : kColours) {
    const QString key = QLatin1String(k);
    const QColor c = QColor::fromString(read("COLOR", key));
    if (c.isValid()) colours.insert(key, c);
  }
  for (const auto& [k, def] : kTitles) {
    const QString key = QLatin1String(k);
    const QString t = ReadIniString(path, QStringLiteral("TITLE"), key);
    if (!t.isEmpty()) texts.insert(key, t);
  }
  for (const auto& [k, def] : kCaptions) {
    const QString key = QLatin1String(k);
    const QString t = ReadIniString(path, QStringLiteral("CAPTION"), key);
    if (!t.isEmpty()) texts.insert(key, t);
  }
  // The system keeps the chart date formats in its configuration; when it has them,
  // they win over the settings file's own.
  const QString ymdConf = Ini_GetDateGraphYmd().trimmed();
  const QString mdaConf = Ini_GetDateGraphMda().trimmed();
  if (!ymdConf.isEmpty()) dateYmd = ymdConf;
  if (!mdaConf.isEmpty()) dateMda = mdaConf;
  return true;
}

QColor ChartSettings::colour(const QString& key) const {
  return colours.value(key, QColor(Qt::black));
}

QString ChartSettings::text(const QString& key) const { return texts.value(key); }

QString ChartSettings::formatDate(const QDate& date, const QString& format) const {
  if (!date.isValid()) return QString();
  QString out;
  out.reserve(format.size() + 8);
  for (qsizetype i = 0; i < format.size(); ++i) {
    const QChar c = format[i];
    if (c != QLatin1Char('%') || i + 1 >= format.size()) {
      out.append(c);
      continue;
    }
    const QChar k = format[++i];
    switch (k.unicode()) {
      case 'Y': out += QString::number(date.year()); break;
      case 'y': out += QStringLiteral("%1").arg(date.year() % 100, 2, 10, QLatin1Char('0')); break;
      case 'm': out += QStringLiteral("%1").arg(date.month(), 2, 10, QLatin1Char('0')); break;
      case 'd': out += QStringLiteral("%1").arg(date.day(), 2, 10, QLatin1Char('0')); break;
      case 'a':
      case 'A': out += weekdays.value(date.dayOfWeek() - 1); break;
      case '%': out += QLatin1Char('%'); break;
      default:
        out += QLatin1Char('%');
        out += k;
    }
  }
  return out;
}
