// Makes the sample user's chart files for every type and period and draws them all, in
// both editions, as PNG pictures and PDF reports: the material for looking at the charts.
//   chartmaker_render_all OUTDIR [SOURCE_DIR]
#include <QDir>
#include <QGuiApplication>
#include <QTextStream>

#include "chartmaker/chartmaker.h"
#include "testsupport/sample_charts.h"

int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QGuiApplication app(argc, argv);
  QTextStream out(stdout);
  if (argc < 2) {
    out << "usage: chartmaker_render_all OUTDIR [SOURCE_DIR]\n";
    return 2;
  }
  const QString outDir = QString::fromLocal8Bit(argv[1]);
  const QString src = argc > 2 ? QString::fromLocal8Bit(argv[2]) : QStringLiteral(VANTORA_SOURCE_DIR);
  QDir().mkpath(outDir);
  const int types[] = {100, 101, 102, 200, 201, 202, 300, 301, 302, 400, 401, 402, 500, 501,
                       502, 600, 601, 602, 801, 802, 900, 901, 902, 5};
  int failures = 0;
  for (const char* lang : {"ja", "en"}) {
    SampleCharts sample{QLatin1String(lang)};
    if (!sample.error.isEmpty()) {
      out << lang << ": " << sample.error << "\n";
      return 1;
    }
    ChartMaker maker;
    maker.prepare(src + QStringLiteral("/dist/%1/conf/chart.ini").arg(QLatin1String(lang)));
    const QString dir = outDir + QLatin1Char('/') + QLatin1String(lang);
    QDir().mkpath(dir);
    for (int type : types) {
      const SampleCharts::Files f = sample.make(type);
      ImageSurface surface(QSize(1280, 800));
      int rc = type / 100 == 8 ? CreateGraphBMPPersonal(maker, surface, f.iface, dir + QStringLiteral("/%1.bmp").arg(type))
                               : ChartMakerPersonal(maker, surface, f.iface);
      surface.image().save(dir + QStringLiteral("/%1.png").arg(type));
      out << lang << " " << type << " -> " << rc << "\n";
      failures += rc != 0;
      rc = PrintChartPersonal(maker, f.header, f.iface, QStringLiteral("pdf:") + dir + QStringLiteral("/%1.pdf").arg(type),
                              QLatin1String(lang) == QLatin1String("ja") ? 9 : 1);
      failures += rc != 0;
      // The same chart a year before the first day: without data.
      ImageSurface empty(QSize(960, 600));
      ChartMakerPersonal(maker, empty, sample.make(type, QDate(2023, 6, 30)).iface);
      empty.image().save(dir + QStringLiteral("/%1_nodata.png").arg(type));
    }
    ImageSurface bmi(QSize(520, 160));
    WriteBytes(dir + QStringLiteral("/bmi.txt"), "700\r\n23.4\r\n");
    failures += CreateBMIGraphPersonal(maker, bmi, dir + QStringLiteral("/bmi.txt"), dir + QStringLiteral("/bmi.bmp")) != 0;
    bmi.image().save(dir + QStringLiteral("/700.png"));
    WriteBytes(dir + QStringLiteral("/bmi.txt"), "700\r\n\r\n");
    CreateBMIGraphPersonal(maker, bmi, dir + QStringLiteral("/bmi.txt"), QString());
    bmi.image().save(dir + QStringLiteral("/700_empty.png"));
  }
  out << "failures: " << failures << "\n";
  return failures ? 1 : 0;
}
