#include "chartmaker/pdf_text.h"

#include <QFont>
#include <QRawFont>
#include <QString>
#include <vector>

namespace {

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

using Preferred = QHash<char16_t, char16_t>;

// Replaces the four-digit code that starts at pos (just behind '<') by its preferred one.
bool SwapCode(QByteArray& pdf, qsizetype pos, const Preferred& preferred) {
  if (pos + 4 >= pdf.size() || pdf[pos + 4] != '>') return false;
  int code = 0;
  for (int i = 0; i < 4; ++i) {
    const int v = HexValue(pdf[pos + i]);
    if (v < 0) return false;
    code = code * 16 + v;
  }
  const char16_t ideograph = preferred.value(static_cast<char16_t>(code), 0);
  if (!ideograph) return false;
  static const char kDigits[] = "0123456789ABCDEF";
  for (int i = 0; i < 4; ++i) pdf[pos + i] = kDigits[(ideograph >> (12 - 4 * i)) & 0xF];
  return true;
}

// The codes of one line of a bfchar or bfrange block: the positions just behind each '<',
// and where a '[' opens the list of targets (-1 without one).
struct Line {
  std::vector<qsizetype> codes;
  qsizetype bracket = -1;
};

Line ReadLine(const QByteArray& pdf, qsizetype from, qsizetype to) {
  Line line;
  for (qsizetype i = from; i < to; ++i) {
    if (pdf[i] == '<') line.codes.push_back(i + 1);
    if (pdf[i] == '[' && line.bracket < 0) line.bracket = i;
  }
  return line;
}

int FixBlock(QByteArray& pdf, qsizetype from, qsizetype to, bool ranges, const Preferred& preferred) {
  int changed = 0;
  qsizetype start = from;
  while (start < to) {
    qsizetype end = pdf.indexOf('\n', start);
    if (end < 0 || end > to) end = to;
    const Line line = ReadLine(pdf, start, end);
    if (!ranges) {
      // <glyph> <text>
      if (line.codes.size() == 2) changed += SwapCode(pdf, line.codes[1], preferred);
    } else if (line.bracket >= 0) {
      // <first> <last> [<text> <text> ...]: one target per glyph.
      for (qsizetype pos : line.codes)
        if (pos > line.bracket) changed += SwapCode(pdf, pos, preferred);
    } else if (line.codes.size() == 3 && pdf.mid(line.codes[0], 4) == pdf.mid(line.codes[1], 4)) {
      // <glyph> <glyph> <text>: a range of one.
      changed += SwapCode(pdf, line.codes[2], preferred);
    }
    start = end + 1;
  }
  return changed;
}

}  // namespace

QHash<char16_t, char16_t> SharedGlyphCodes(const QStringList& families) {
  Preferred preferred;
  constexpr char16_t kLowFirst = 0x2000, kHighFirst = 0x3000, kHighLast = 0x9FFF;
  std::vector<QChar> low, high;
  for (char16_t c = kLowFirst; c < kHighFirst; ++c) low.emplace_back(c);
  for (char16_t c = kHighFirst; c <= kHighLast; ++c) high.emplace_back(c);
  for (const QString& family : families) {
    const QRawFont font = QRawFont::fromFont(QFont(family));
    if (!font.isValid()) continue;
    std::vector<quint32> lowGlyphs(low.size()), highGlyphs(high.size());
    int n = static_cast<int>(low.size());
    font.glyphIndexesForChars(low.data(), n, lowGlyphs.data(), &n);
    n = static_cast<int>(high.size());
    font.glyphIndexesForChars(high.data(), n, highGlyphs.data(), &n);
    QHash<quint32, char16_t> firstHigh;
    for (size_t i = 0; i < high.size(); ++i)
      if (highGlyphs[i] != 0 && !firstHigh.contains(highGlyphs[i])) firstHigh.insert(highGlyphs[i], high[i].unicode());
    for (size_t i = 0; i < low.size(); ++i) {
      const auto it = firstHigh.constFind(lowGlyphs[i]);
      if (lowGlyphs[i] != 0 && it != firstHigh.constEnd() && !preferred.contains(low[i].unicode()))
        preferred.insert(low[i].unicode(), *it);
    }
  }
  return preferred;
}

int RestoreTextInPdf(QByteArray& pdf, const QHash<char16_t, char16_t>& preferred) {
  if (preferred.isEmpty()) return 0;
  int changed = 0;
  qsizetype at = 0;
  while ((at = pdf.indexOf("begincmap", at)) >= 0) {
    const qsizetype end = pdf.indexOf("endcmap", at);
    if (end < 0) break;
    for (const bool ranges : {false, true}) {
      const QByteArray open = ranges ? "beginbfrange" : "beginbfchar";
      const QByteArray close = ranges ? "endbfrange" : "endbfchar";
      qsizetype block = at;
      while ((block = pdf.indexOf(open, block)) >= 0 && block < end) {
        const qsizetype blockEnd = pdf.indexOf(close, block);
        if (blockEnd < 0 || blockEnd > end) break;
        changed += FixBlock(pdf, block + open.size(), blockEnd, ranges, preferred);
        block = blockEnd;
      }
    }
    at = end;
  }
  return changed;
}
