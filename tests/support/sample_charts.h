// Chart files as the screens make them: the charts writer over the sample user's stored
// recorder days, with a weight plan, in a test installation. For the chart library's tests,
// its benchmark and the chart drawer. Header-only: its users link the charts, the store, the
// receive and the device.
#pragma once

#include <QImage>
#include <QProcess>
#include <QSet>
#include <QString>

#include "charts/charts.h"
#include "frame/helpers.h"
#include "testsupport/sample_user.h"

class SampleCharts {
 public:
  struct Files {
    QString iface, header, sim;  // iface empty: not made
  };

  // The edition's installation with `days` recorder days (none: 0) ending on 2024-06-30;
  // the page of 2024-06-26 is erased, so the last week has a day without a row.
  explicit SampleCharts(const QString& lang = QStringLiteral("ja"), int days = 200) : inst(lang) {
    error = inst.isValid() ? OpenDatabaseWithSampleUser(inst, db, kUserId) : QStringLiteral("no installation");
    RecorderImageOptions o{.days = days, .seed = 11};
    for (const ImagePage& p : RecorderImagePages(o))
      if (p.date == QDate(2024, 6, 26)) o.erasedPages << p.page;
    if (error.isEmpty() && days > 0) error = StoreRecorderDays(db, kUserId, o);
    if (error.isEmpty() && !SetWeightPlan(db, {.UserId = kUserId, .StartDate = "20240401", .EndDate = "20240901",
                                               .TargetWeight = "61.0", .StartWeight = "65.0", .PoundFlag = "0"}))
      error = QStringLiteral("the weight plan was not stored");
  }

  // The files of a type over the window its screen shows, ending on `end` (2024-06-30 when
  // not given); a window before the first day holds no data.
  Files make(int type, QDate end = QDate(2024, 6, 30)) {
    const int period = type == 5 ? charts::kPeriodDay
                       : type % 100 == 0 ? charts::kPeriodWeek
                       : type % 100 == 1 ? charts::kPeriodMonth
                                         : charts::kPeriodSixMonths;
    return makeOver(type, charts::GetStarEndRange(period, end, -1), end);
  }
  // The files of a type over any window.
  Files makeOver(int type, const QDate& from, const QDate& to) {
    Files f;
    if (!charts::MakeChartData(db, type, DateToSlash(from), DateToSlash(to), f.iface, f.header, kUserId, QString(),
                               &f.sim))
      f.iface.clear();
    return f;
  }

  static inline const QString kUserId = QStringLiteral("U000000001");
  TestInstallation inst;
  VtDatabase db;
  QString error;  // empty when the sample is stored
};

// Number of distinct colours in a sample of every step-th pixel: a blank picture has one.
inline int DistinctColours(const QImage& img, int step = 5) {
  QSet<QRgb> seen;
  for (int y = 0; y < img.height(); y += step)
    for (int x = 0; x < img.width(); x += step) seen.insert(img.pixel(x, y));
  return static_cast<int>(seen.size());
}

// The text of a PDF file as pdftotext lays it out; empty without pdftotext.
inline QString PdfText(const QString& pdf) {
  QProcess p;
  p.start(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), pdf, QStringLiteral("-")});
  p.waitForFinished(30000);
  return QString::fromUtf8(p.readAllStandardOutput());
}
