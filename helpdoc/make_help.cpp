// Lays out a manual page (HTML) as the PDF of the installation's help folder.
//   vantora-make-help SOURCE.html OUT.pdf --edition ja|en [--version V]
// The Japanese manual goes on A4, the English one on Letter. "__VERSION__" in the page
// becomes the version. The file is replaced only by a finished PDF.
#include <QBuffer>
#include <QFile>
#include <QGuiApplication>
#include <QPdfWriter>
#include <QSaveFile>
#include <QTextDocument>
#include <QTextStream>

#include "chartmaker/pdf_text.h"

int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QGuiApplication app(argc, argv);
  QTextStream err(stderr);
  QStringList args = app.arguments().mid(1);
  QString edition, version;
  for (qsizetype i = 0; i + 1 < args.size();) {
    if (args[i] == QLatin1String("--edition")) {
      edition = args[i + 1];
      args.remove(i, 2);
    } else if (args[i] == QLatin1String("--version")) {
      version = args[i + 1];
      args.remove(i, 2);
    } else {
      ++i;
    }
  }
  if (args.size() != 2 || (edition != QLatin1String("ja") && edition != QLatin1String("en"))) {
    err << "usage: vantora-make-help SOURCE.html OUT.pdf --edition ja|en [--version V]\n";
    return 2;
  }
  QFile source(args[0]);
  if (!source.open(QIODevice::ReadOnly)) {
    err << "vantora-make-help: cannot read " << args[0] << "\n";
    return 1;
  }
  QString html = QString::fromUtf8(source.readAll());
  html.replace(QLatin1String("__VERSION__"), version);

  // The fonts of the reports; no shaping where the script needs none, so that figures
  // beside Latin text keep their text in the PDF.
  const QString family = QStringLiteral("Noto Sans CJK JP");
  QFont font(family, 10);
  font.setFamilies({family, QStringLiteral("DejaVu Sans")});
  font.setStyleStrategy(QFont::StyleStrategy(QFont::PreferAntialias | QFont::PreferNoShaping));
  QTextDocument doc;
  doc.setDefaultFont(font);
  doc.setDefaultStyleSheet(QStringLiteral(
      "h1 { color: #1f5f8b; font-size: 18pt; } h2 { color: #1f5f8b; font-size: 13pt; margin-top: 14px; }"
      "th { background-color: #e8eef3; } td, th { padding: 4px; }"));
  doc.setHtml(html);

  QByteArray bytes;
  {
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter writer(&buffer);
    writer.setPageSize(QPageSize(edition == QLatin1String("ja") ? QPageSize::A4 : QPageSize::Letter));
    writer.setPageMargins(QMarginsF(20, 20, 20, 20), QPageLayout::Millimeter);
    writer.setTitle(doc.metaInformation(QTextDocument::DocumentTitle));
    writer.setCreator(QStringLiteral("Vantora"));
    doc.print(&writer);
  }
  RestoreTextInPdf(bytes, SharedGlyphCodes({family}));
  QSaveFile out(args[1]);
  if (!out.open(QIODevice::WriteOnly) || out.write(bytes) != bytes.size() || !out.commit()) {
    err << "vantora-make-help: cannot write " << args[1] << "\n";
    return 1;
  }
  return 0;
}
