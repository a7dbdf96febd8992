// render: draws a chart file to a PNG picture or prints its report to a PDF file,
// through the chart library, and prints the library's result code.
#include <QFileInfo>
#include <QTextStream>

#include "chartmaker/chartfiles.h"
#include "chartmaker/chartmaker.h"
#include "cli/commands.h"
#include "frame/frame.h"

namespace {

int Usage(const QString& why) {
  QTextStream(stderr) << "render: " << why << "\n"
                      << "usage: render --interface FILE [--header FILE] --out FILE.png|FILE.pdf [--size WxH]\n"
                         "              [--settings chart.ini] [--paper N]\n";
  return 2;
}

// A code after which a picture or report exists: success, or a data fault that the
// library drew around.
bool SomethingWasDrawn(int code) {
  return code == chartcode::kOk || (code >= 300 && code < 1000);
}

}  // namespace

int cmd_render(const QStringList& args) {
  QString interfaceFile, headerFile, outFile, settingsFile;
  QSize size(1280, 800);
  int paper = -1;
  for (qsizetype i = 0; i < args.size(); ++i) {
    const QString& a = args[i];
    auto value = [&](QString& target) {
      if (i + 1 >= args.size()) return false;
      target = args[++i];
      return true;
    };
    QString v;
    if (a == QLatin1String("--interface")) {
      if (!value(interfaceFile)) return Usage("--interface needs a file");
    } else if (a == QLatin1String("--header")) {
      if (!value(headerFile)) return Usage("--header needs a file");
    } else if (a == QLatin1String("--out")) {
      if (!value(outFile)) return Usage("--out needs a file");
    } else if (a == QLatin1String("--settings")) {
      if (!value(settingsFile)) return Usage("--settings needs a file");
    } else if (a == QLatin1String("--size")) {
      if (!value(v)) return Usage("--size needs WxH");
      const QStringList wh = v.toLower().split(QLatin1Char('x'));
      bool okW = false, okH = false;
      if (wh.size() == 2) size = QSize(wh[0].toInt(&okW), wh[1].toInt(&okH));
      if (!okW || !okH || size.width() < 50 || size.height() < 50 || size.width() > 10000 || size.height() > 10000)
        return Usage("--size must be WxH, each 50 to 10000");
    } else if (a == QLatin1String("--paper")) {
      if (!value(v)) return Usage("--paper needs a number");
      bool ok = false;
      paper = v.toInt(&ok);
      if (!ok) return Usage("--paper needs a number");
    } else {
      return Usage(QStringLiteral("unknown argument ") + a);
    }
  }
  if (interfaceFile.isEmpty()) return Usage("--interface is required");
  if (outFile.isEmpty()) return Usage("--out is required");
  const QString suffix = QFileInfo(outFile).suffix().toLower();
  if (suffix != QLatin1String("png") && suffix != QLatin1String("pdf")) return Usage("--out must end in .png or .pdf");
  if (suffix == QLatin1String("pdf") && headerFile.isEmpty()) return Usage("a PDF report needs --header");

  // Without --settings, an installation's configuration names the settings file.
  const bool installed = Ini_LoadConfig();
  if (settingsFile.isEmpty() && installed) settingsFile = Ini_GetChartIniPath();
  if (paper < 0) {
    bool ok = false;
    paper = installed ? Ini_GetPrintPaper().trimmed().toInt(&ok) : 0;
    if (!ok) paper = installed && Ini_GetLang() == 1 ? 1 : 9;
  }

  ChartMaker maker;
  if (!settingsFile.isEmpty() && ChartPreparePersonal(maker, settingsFile) != chartcode::kOk)
    QTextStream(stderr) << "render: settings file not found, built-in look used: " << settingsFile << "\n";

  int code = chartcode::kOk;
  if (suffix == QLatin1String("pdf")) {
    code = PrintChartPersonal(maker, headerFile, interfaceFile, QStringLiteral("pdf:") + outFile, paper);
  } else {
    ImageSurface surface(size);
    const auto lines = ReadTextLines(interfaceFile);
    const QString first = lines && !lines->isEmpty() ? lines->first().trimmed() : QString();
    if (first == QLatin1String("700"))
      code = CreateBMIGraphPersonal(maker, surface, interfaceFile, QString());
    else if (first.startsWith(QLatin1Char('8')) && first.size() == 3)
      code = CreateGraphBMPPersonal(maker, surface, interfaceFile, QString());
    else
      code = ChartMakerPersonal(maker, surface, interfaceFile);
    if (SomethingWasDrawn(code) && !surface.image().save(outFile)) {
      QTextStream(stderr) << "render: cannot write " << outFile << "\n";
      QTextStream(stdout) << code << "\n";
      return 1;
    }
  }
  QTextStream(stdout) << code << "\n";
  if (!SomethingWasDrawn(code)) {
    QTextStream(stderr) << "render: the chart library answered " << code << "\n";
    return 1;
  }
  return 0;
}
