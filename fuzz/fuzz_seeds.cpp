// Writes the seed corpora of the fuzz targets: generated recorder images of every kind
// and language (with wrapped rings, erased pages and the day limit), their management
// blocks and pages cut out, and the installation's profile files.
#include <QDir>
#include <QFile>
#include <QTextStream>

#include "device/device.h"
#include "device/recorder_image.h"

namespace {

bool Put(const QString& dir, const QString& name, const QByteArray& bytes) {
  QFile f(QDir(dir).filePath(name));
  return f.open(QIODevice::WriteOnly | QIODevice::Truncate) && f.write(bytes) == bytes.size();
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 4) {
    QTextStream(stderr) << "usage: fuzz_seeds RECORDER_DIR PAGE_DIR PROFILE_DIR [PROFILE_FILE...]\n";
    return 2;
  }
  const QString recorders = QString::fromLocal8Bit(argv[1]);
  const QString pages = QString::fromLocal8Bit(argv[2]);
  const QString profiles = QString::fromLocal8Bit(argv[3]);
  for (const QString& d : {recorders, pages, profiles}) QDir().mkpath(d);

  const RecorderKind kinds[] = {RecorderKind::AL, RecorderKind::BrioNormal, RecorderKind::BrioMets,
                                 RecorderKind::BrioZr, RecorderKind::BrioKt};
  int n = 0;
  for (const RecorderKind kind : kinds) {
    for (bool english : {false, true}) {
      for (int variant = 0; variant < 3; ++variant) {
        RecorderImageOptions o;
        o.kind = kind;
        o.english = english;
        o.seed = static_cast<quint32>(17 + variant);
        o.days = variant == 0 ? 3 : 30;
        if (variant == 1) o.startPage = RingSize(kind, english ? RecorderLang::English : RecorderLang::Japanese) - 5;
        if (variant == 2) {
          o.memorySetting = 1;
          o.memoryDays = 10;
          o.erasedPages = {2, 5};
        }
        if (!CheckRecorderImageOptions(o).isEmpty()) continue;
        const QByteArray image = MakeRecorderImage(o);
        if (image.isEmpty()) continue;
        const QString tag = QStringLiteral("%1-%2-%3").arg(KindText(kind), english ? QStringLiteral("en") : QStringLiteral("ja")).arg(variant);
        Put(recorders, tag + QStringLiteral(".img"), image);
        Put(pages, tag + QStringLiteral(".manage"), image.left(kManageBlockBytes));
        const int pageBytes = PageBytesOfKind(kind);
        const qsizetype at = static_cast<qsizetype>(FirstBlockOfPage(kind, o.startPage)) * kTransferBlockBytes;
        Put(pages, tag + QStringLiteral(".page"), image.mid(at, pageBytes));
        ++n;
      }
    }
  }
  for (int i = 4; i < argc; ++i) {
    QFile in(QString::fromLocal8Bit(argv[i]));
    if (in.open(QIODevice::ReadOnly)) Put(profiles, QStringLiteral("p%1.ini").arg(i), in.readAll());
  }
  QTextStream(stdout) << "fuzz_seeds: " << n << " recorder images\n";
  return 0;
}
