// Renders the installation's pictures (dist/common/images/*.png and receiving.gif)
// from the SVG drawings in dist/common/images/svg. Run through scripts/render-images
// whenever a drawing changes; the PNG files are kept in the repository so that a
// build needs no SVG support.
#include <QByteArray>
#include <QColor>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QSvgRenderer>
#include <QPageLayout>
#include <QPageSize>
#include <QPdfWriter>
#include <QTextDocument>
#include <QTextStream>

#include <cstdio>
#include <vector>

namespace {

const QColor kAccent(0x2b, 0x7a, 0x78);
const QColor kAccentLight(0x4f, 0xb2, 0x86);

QString gIn;
QString gOut;

QByteArray svgText(const QString& name, const QString& glyph, const QString& detail) {
  QFile f(gIn + "/" + name + ".svg");
  if (!f.open(QIODevice::ReadOnly)) {
    std::fprintf(stderr, "cannot read %s.svg\n", qPrintable(name));
    std::exit(1);
  }
  QString s = QString::fromUtf8(f.readAll());
  s.replace("#ffffff", detail);
  s.replace("GLYPH", glyph);
  return s.toUtf8();
}

void renderSvg(QPainter& p, const QByteArray& svg, const QRectF& where) {
  QSvgRenderer r(svg);
  if (!r.isValid()) {
    std::fprintf(stderr, "invalid drawing\n");
    std::exit(1);
  }
  r.render(&p, where);
}

void save(const QImage& img, const QString& file) {
  if (!img.save(gOut + "/" + file, "PNG", 9)) {
    std::fprintf(stderr, "cannot write %s\n", qPrintable(file));
    std::exit(1);
  }
}

// A picture button: a rounded face with the glyph; "down" is the pressed face.
void button(const QString& name, bool down) {
  const int size = 64;
  QImage img(size, size, QImage::Format_ARGB32_Premultiplied);
  img.fill(Qt::transparent);
  QPainter p(&img);
  p.setRenderHint(QPainter::Antialiasing);
  QRectF face(1.5, 1.5, size - 3, size - 3);
  QLinearGradient g(0, 0, 0, size);
  if (down) {
    g.setColorAt(0, kAccentLight);
    g.setColorAt(1, kAccent);
  } else {
    g.setColorAt(0, QColor(0xff, 0xff, 0xff));
    g.setColorAt(1, QColor(0xe6, 0xee, 0xf2));
  }
  p.setPen(QPen(down ? kAccent.darker(120) : QColor(0xb8, 0xc8, 0xd2), 1.5));
  p.setBrush(g);
  p.drawRoundedRect(face, 12, 12);
  const QString glyph = down ? "#ffffff" : kAccent.name();
  const QString detail = down ? kAccent.name() : "#ffffff";
  // The glyph's own white details become the face colour when pressed.
  QByteArray svg = svgText(name, down ? "@@G@@" : glyph, detail);
  svg.replace("@@G@@", glyph.toUtf8());
  renderSvg(p, svg, QRectF(12, 12, size - 24, size - 24));
  p.end();
  save(img, QString("btn_%1_%2.png").arg(name, down ? "down" : "up"));
}

void picture(const QString& name, int w, int h, const QString& file) {
  QImage img(w, h, QImage::Format_ARGB32_Premultiplied);
  img.fill(Qt::transparent);
  QPainter p(&img);
  p.setRenderHint(QPainter::Antialiasing);
  renderSvg(p, svgText(name, kAccent.name(), "#ffffff"), QRectF(0, 0, w, h));
  p.end();
  save(img, file);
}

// Pane backgrounds per window size class.
void panes(const QString& cls, int w, int h) {
  auto grad = [](int pw, int ph, QColor top, QColor bottom, bool line) {
    QImage img(pw, ph, QImage::Format_RGB32);
    QPainter p(&img);
    QLinearGradient g(0, 0, 0, ph);
    g.setColorAt(0, top);
    g.setColorAt(1, bottom);
    p.fillRect(img.rect(), g);
    if (line) {
      p.setPen(QColor(0xc9, 0xd6, 0xdf));
      p.drawLine(0, ph - 1, pw, ph - 1);
    }
    p.end();
    return img;
  };
  save(grad(w, h, QColor(0xf6, 0xf8, 0xfb), QColor(0xe9, 0xf1, 0xf5), false),
       QString("pane_bg_%1.png").arg(cls));
  save(grad(w, 36, kAccentLight, kAccent, false), QString("pane_footer_%1.png").arg(cls));
  save(grad(w, 56, QColor(0xee, 0xf4, 0xfb), QColor(0xdc, 0xe8, 0xf5), true),
       QString("pane_periodarea_%1.png").arg(cls));
  save(grad(w / 2, 56, QColor(0xee, 0xf4, 0xfb), QColor(0xdc, 0xe8, 0xf5), true),
       QString("pane_datebtnarea_%1.png").arg(cls));
  save(grad(w / 6, h - 150, QColor(0xf1, 0xf7, 0xef), QColor(0xdf, 0xec, 0xdc), false),
       QString("pane_graphbtn_%1.png").arg(cls));
}

// ---- A small GIF writer for the animation of a receive -------------------------
// LZW with a clear code often enough that the code width stays at 8 bits: simple and
// readable by every decoder, at the cost of no compression, which is fine at this size.
class BitWriter {
 public:
  void put(int code, int bits) {
    acc_ |= static_cast<unsigned>(code) << n_;
    n_ += bits;
    while (n_ >= 8) {
      bytes.push_back(static_cast<char>(acc_ & 0xff));
      acc_ >>= 8;
      n_ -= 8;
    }
  }
  void flush() {
    if (n_ > 0) bytes.push_back(static_cast<char>(acc_ & 0xff));
    acc_ = 0;
    n_ = 0;
  }
  QByteArray bytes;

 private:
  unsigned acc_ = 0;
  int n_ = 0;
};

void writeGif(const std::vector<QImage>& frames, const std::vector<QColor>& palette,
              int delayCs, const QString& file) {
  const int w = frames.front().width();
  const int h = frames.front().height();
  QByteArray out("GIF89a");
  auto u16 = [&out](int v) {
    out.append(static_cast<char>(v & 0xff));
    out.append(static_cast<char>((v >> 8) & 0xff));
  };
  u16(w);
  u16(h);
  out.append(static_cast<char>(0xF6));  // global table of 128 colours
  out.append('\0');
  out.append('\0');
  for (int i = 0; i < 128; ++i) {
    QColor c = i < static_cast<int>(palette.size()) ? palette[i] : QColor(0, 0, 0);
    out.append(static_cast<char>(c.red()));
    out.append(static_cast<char>(c.green()));
    out.append(static_cast<char>(c.blue()));
  }
  out.append(QByteArray::fromHex("21FF0B4E45545343415045322E300301000000"));  // loop forever
  for (const QImage& f : frames) {
    out.append(QByteArray::fromHex("21F904"));
    out.append('\x04');
    u16(delayCs);
    out.append('\0');
    out.append('\0');
    out.append(',');
    u16(0);
    u16(0);
    u16(w);
    u16(h);
    out.append('\0');
    out.append('\x07');  // minimum code size
    BitWriter bw;
    const int clear = 128;
    const int eoi = 129;
    int run = 0;
    bw.put(clear, 8);
    for (int y = 0; y < h; ++y) {
      for (int x = 0; x < w; ++x) {
        const QRgb px = f.pixel(x, y);
        int best = 0;
        int bestD = 1 << 30;
        for (int i = 0; i < static_cast<int>(palette.size()); ++i) {
          const int dr = qRed(px) - palette[i].red();
          const int dg = qGreen(px) - palette[i].green();
          const int db = qBlue(px) - palette[i].blue();
          const int d = dr * dr + dg * dg + db * db;
          if (d < bestD) {
            bestD = d;
            best = i;
          }
        }
        if (run == 120) {
          bw.put(clear, 8);
          run = 0;
        }
        bw.put(best, 8);
        ++run;
      }
    }
    bw.put(eoi, 8);
    bw.flush();
    for (int i = 0; i < bw.bytes.size(); i += 255) {
      const QByteArray chunk = bw.bytes.mid(i, 255);
      out.append(static_cast<char>(chunk.size()));
      out.append(chunk);
    }
    out.append('\0');
  }
  out.append(';');
  QFile fo(gOut + "/" + file);
  if (!fo.open(QIODevice::WriteOnly) || fo.write(out) != out.size()) {
    std::fprintf(stderr, "cannot write %s\n", qPrintable(file));
    std::exit(1);
  }
}

// Footprints walking from the recorder towards the computer.
void receivingAnimation() {
  const int w = 200;
  const int h = 48;
  const QColor bg(0xf6, 0xf8, 0xfb);
  const QColor faint(0xcf, 0xe3, 0xdf);
  std::vector<QColor> palette{bg, kAccent, faint, QColor(0x9c, 0xb8, 0xc4), QColor(0xff, 0xff, 0xff)};
  std::vector<QImage> frames;
  const int steps = 8;
  for (int k = 0; k < steps; ++k) {
    QImage img(w, h, QImage::Format_RGB32);
    img.fill(bg);
    QPainter p(&img);
    // recorder on the left, screen on the right
    p.setPen(Qt::NoPen);
    p.setBrush(palette[3]);
    p.drawRect(6, 14, 14, 22);
    p.setBrush(palette[4]);
    p.drawRect(9, 18, 8, 6);
    p.setBrush(palette[3]);
    p.drawRect(172, 12, 22, 18);
    p.drawRect(180, 30, 6, 6);
    p.drawRect(175, 36, 16, 3);
    for (int i = 0; i < steps; ++i) {
      const int x = 30 + i * 17;
      const int y = (i % 2 == 0) ? 14 : 26;
      p.setBrush(i <= k ? kAccent : faint);
      p.drawEllipse(QRect(x, y, 8, 11));
      p.drawEllipse(QRect(x + 1, y + 12, 6, 4));
    }
    p.end();
    frames.push_back(img);
  }
  writeGif(frames, palette, 15, "receiving.gif");
}

// The database error page as PDF, laid out from its HTML page in each edition's help folder.
void helpPdf(const QString& html, const QString& pdf, const QString& font) {
  QFile f(html);
  if (!f.open(QIODevice::ReadOnly)) {
    std::fprintf(stderr, "cannot read %s\n", qPrintable(html));
    std::exit(1);
  }
  QTextDocument doc;
  doc.setDefaultFont(QFont(font, 11));
  doc.setDefaultStyleSheet(QStringLiteral(
      "h1 { color: #2b7a78; font-size: 20pt; } h2 { color: #2b7a78; font-size: 14pt; }"
      "code { font-family: monospace; }"));
  doc.setHtml(QString::fromUtf8(f.readAll()));
  QPdfWriter writer(pdf);
  writer.setPageSize(QPageSize(QPageSize::A4));
  writer.setPageMargins(QMarginsF(20, 20, 20, 20), QPageLayout::Millimeter);
  writer.setTitle(doc.metaInformation(QTextDocument::DocumentTitle));
  writer.setCreator(QStringLiteral("Vantora"));
  doc.print(&writer);
}

}  // namespace

int main(int argc, char** argv) {
  QGuiApplication app(argc, argv);
  if (argc != 3 && argc != 4) {
    std::fprintf(stderr, "usage: render_images SVG_DIR OUT_DIR [DIST_DIR]\n");
    return 2;
  }
  gIn = QString::fromLocal8Bit(argv[1]);
  gOut = QString::fromLocal8Bit(argv[2]);
  QDir().mkpath(gOut);

  const char* buttons[] = {"back", "usernew", "useredit", "receive", "print", "day", "week",
                           "month", "sixmonths", "dateback", "datenext", "datelatest",
                           "dateupdate", "graph1", "graph2", "graph3", "graph4", "graph5",
                           "graph6", "graph7", "simulation", "calc", "save", "graph",
                           "cancel", "change_plan", "one"};
  for (const char* b : buttons) {
    button(b, false);
    button(b, true);
  }
  for (int i = 1; i <= 6; ++i) {
    picture(QString("usericon_%1").arg(i), 96, 96, QString("usericon_%1.png").arg(i));
  }
  picture("form_icon", 64, 64, "form_icon.png");
  picture("wait", 64, 64, "wait.png");
  picture("splash", 480, 300, "splash.png");
  picture("version", 400, 220, "version.png");
  panes("svga", 800, 600);
  panes("xga", 1024, 768);
  panes("sxga", 1280, 1024);
  receivingAnimation();
  if (argc == 4) {
    const QString dist = QString::fromLocal8Bit(argv[3]);
    for (const char* ed : {"ja", "en"}) {
      const QString help = dist + "/" + ed + "/help/";
      const QString font = QString::fromLatin1(ed) == "ja" ? "Noto Sans CJK JP" : "DejaVu Sans";
      helpPdf(help + "ERROR_DB.html", help + "ERROR_DB.pdf", font);
    }
  }
  QTextStream(stdout) << "pictures written to " << gOut << "\n";
  return 0;
}
