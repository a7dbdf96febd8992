#include <QFontMetricsF>
#include <algorithm>
#include <array>

#include "chartmaker/draw/charts.h"
#include "chartmaker/draw/layout.h"

namespace chartdraw {

namespace {

QString StateText(const ChartSettings& s, const ChartLine& l) {
  switch (l.state) {
    case LineState::Counted: return QString();
    case LineState::Excluded:
    case LineState::AllExcluded: return s.text(QStringLiteral("EXCLUDED"));
    case LineState::NoData: return s.text(QStringLiteral("NO_DATA"));
  }
  return QString();
}

// The header names the recorder by its model number ("0" AL, "1" BRIO, "2" BRIO_ZR,
// "3" BRIO_KT); the settings file gives each its printed name.
QString RecorderName(const ChartSettings& s, const QString& kind) {
  const QString name = kind.isEmpty() ? QString() : s.text(QStringLiteral("RECORDER_") + kind);
  return name.isEmpty() ? kind : name;
}

}  // namespace

void DrawValueTable(Ctx& x, const QRectF& area, const ChartDocument& doc) {
  const ChartSettings& s = x.s;
  const InterfaceFile& d = doc.data;
  QStringList head = {s.text(QStringLiteral("DATE")),
                      s.text(QStringLiteral("STEPS")),
                      s.text(QStringLiteral("ACTIVITY_CAL")) + QStringLiteral(" (") + s.text(QStringLiteral("UNIT_KCAL")) + QLatin1Char(')'),
                      s.text(QStringLiteral("TOTAL_CAL")) + QStringLiteral(" (") + s.text(QStringLiteral("UNIT_KCAL")) + QLatin1Char(')'),
                      s.text(QStringLiteral("ACTIVITY_TIME")) + QStringLiteral(" (") + s.text(QStringLiteral("UNIT_MIN")) + QLatin1Char(')'),
                      s.text(QStringLiteral("DISTANCE")) + QStringLiteral(" (") + DistanceUnit(s, doc.imperial) + QLatin1Char(')'),
                      // the exercise is its own unit in some editions: no "Exercise (Exercise)"
                      s.text(QStringLiteral("EXERCISE")) == s.text(QStringLiteral("UNIT_EX"))
                          ? s.text(QStringLiteral("EXERCISE"))
                          : s.text(QStringLiteral("EXERCISE")) + QStringLiteral(" (") + s.text(QStringLiteral("UNIT_EX")) + QLatin1Char(')'),
                      s.text(QStringLiteral("STATE"))};
  std::vector<QStringList> rows;
  for (const auto& l : d.lines) {
    QString date = ChartFamily(d.type) == 0 ? s.mda(l.first) : s.mda(l.first) + QStringLiteral(" - ") + s.mda(l.last);
    if (l.hasFigures())
      rows.push_back({date, Num(l.value(6)), Num(l.value(12)), Num(l.value(13)), Num(l.value(9), 1), Num(l.value(14), 1),
                      l.exercise ? Num(*l.exercise, 1) : QString(), StateText(s, l)});
    else
      rows.push_back({date, QString(), QString(), QString(), QString(), QString(),
                      l.exercise ? Num(*l.exercise, 1) : QString(), StateText(s, l)});
  }
  if (rows.empty()) return;
  const int cols = static_cast<int>(head.size());
  const TableFit fit = FitTable(area.height(), static_cast<int>(rows.size()), x.b);
  const double scale = fit.scale;
  const double rowH = fit.rowH;
  const int shown = fit.shown;
  const QFont hf = x.font(0.72 * std::max(scale, 0.75), true), cf = x.font(0.8 * std::max(scale, 0.7));
  const std::array<double, 8> widths = {1.8, 1, 1, 1, 1, 1, 1, 1.1};
  double total = 0;
  for (double w : widths) total += w;
  double y = area.top();
  auto drawRow = [&](const QStringList& cells, const QFont& f, const QColor& fg, const QColor& bg) {
    x.p.setPen(Qt::NoPen);
    x.p.setBrush(bg);
    x.p.drawRect(QRectF(area.left(), y, area.width(), rowH));
    double cx = area.left();
    for (int c = 0; c < cols; ++c) {
      const double w = area.width() * widths[static_cast<size_t>(c)] / total;
      const int align = (c == 0 || c == cols - 1 ? Qt::AlignLeft : Qt::AlignRight) | Qt::AlignVCenter;
      // One line per cell: a caption too long for its column gets a smaller type, then an ellipsis.
      const double room = w - x.b * 0.8;
      QFont cf2 = f;
      const QString cell = cells.value(c);
      const double need = TextWidth(f, cell);
      const int pixelSize = FittedPixelSize(f.pixelSize(), need, room);
      if (pixelSize != f.pixelSize()) cf2.setPixelSize(pixelSize);
      const QString shownText = QFontMetricsF(cf2).elidedText(cell, Qt::ElideRight, room);
      DrawText(x.p, QRectF(cx + x.b * 0.4, y, room, rowH), align, shownText, cf2, fg);
      cx += w;
    }
    y += rowH;
  };
  drawRow(head, hf, x.c("TEXT"), x.c("PANEL").darker(104));
  for (int i = 0; i < shown; ++i) {
    const auto& r = rows[static_cast<size_t>(i)];
    const bool counted = d.lines[static_cast<size_t>(i)].state == LineState::Counted;
    drawRow(r, cf, counted ? x.c("TEXT") : x.c("SUBTEXT"), i % 2 ? x.c("PANEL") : x.c("BACKGROUND"));
  }
  x.p.setPen(QPen(x.c("GRID"), 1));
  x.p.drawLine(QPointF(area.left(), y), QPointF(area.right(), y));
}

}  // namespace chartdraw

using namespace chartdraw;

QString ExclusionCaption(const ChartSettings& s, const QString& exclusionText) {
  const std::optional<ExclusionRule> rule = ParseExclusionText(exclusionText);
  if (!rule) return exclusionText;
  QStringList parts;
  if (rule->firstDay) parts << s.text(QStringLiteral("EXCLUDE_FIRST_DAY"));
  if (rule->lastDay) parts << s.text(QStringLiteral("EXCLUDE_LAST_DAY"));
  // A day is left out when its steps are below the threshold, so 0 or less leaves none.
  if (!rule->threshold.isEmpty() && rule->threshold.toLong() > 0)
    parts << s.text(QStringLiteral("EXCLUDE_LOW_STEPS")).arg(Num(rule->threshold.toDouble()));
  QString out = parts.isEmpty() ? s.text(QStringLiteral("EXCLUDE_NONE"))
                                : parts.join(s.text(QStringLiteral("EXCLUDE_SEPARATOR")));
  if (!out.isEmpty()) out[0] = out[0].toUpper();
  return out;
}

void DrawReportPage(QPainter& p, const QRectF& page, const ChartDocument& doc, const HeaderFile& h,
                    const ChartSettings& s) {
  Ctx x{p, s, page.width() / 70.0};
  p.save();
  p.setRenderHint(QPainter::Antialiasing, true);
  p.fillRect(page, s.colour(QStringLiteral("BACKGROUND")));
  double y = page.top();
  // Title bar.
  const QFont tf = x.font(1.7, true);
  const double th = QFontMetricsF(tf).height() * 1.2;
  QString chartTitle = s.text(QStringLiteral("CHART_%1").arg(ChartKindOf(doc.data.type)));
  DrawText(p, QRectF(page.left(), y, page.width(), th), Qt::AlignLeft | Qt::AlignVCenter,
           s.text(QStringLiteral("REPORT")) + QStringLiteral("  ·  ") + chartTitle, tf, x.c("TEXT"));
  DrawText(p, QRectF(page.left(), y, page.width(), th), Qt::AlignRight | Qt::AlignVCenter, h.institution, x.font(1.0),
           x.c("SUBTEXT"));
  y += th;
  p.setPen(QPen(x.c("ACCENT"), x.b * 0.18));
  p.drawLine(QPointF(page.left(), y), QPointF(page.right(), y));
  y += x.b * 0.8;

  // The person and the period.
  QStringList nameParts;
  for (const auto& n : {h.firstName, h.middleName, h.lastName})
    if (!n.isEmpty()) nameParts.append(n);
  QString name = nameParts.join(QLatin1Char(' '));
  if (!name.isEmpty() && !s.text(QStringLiteral("HONORIFIC")).isEmpty())
    name += QLatin1Char(' ') + s.text(QStringLiteral("HONORIFIC"));
  const QFont nf = x.font(1.5, true);
  const double nh = QFontMetricsF(nf).height() * 1.2;
  DrawText(p, QRectF(page.left(), y, page.width() * 0.6, nh), Qt::AlignLeft | Qt::AlignVCenter, name, nf, x.c("TEXT"));
  QStringList sub;
  if (!h.nickName.isEmpty()) sub << s.text(QStringLiteral("NICKNAME")) + QStringLiteral(": ") + h.nickName;
  if (!h.group.isEmpty()) sub << s.text(QStringLiteral("GROUP")) + QStringLiteral(": ") + h.group;
  DrawText(p, QRectF(page.left() + page.width() * 0.4, y, page.width() * 0.6, nh), Qt::AlignRight | Qt::AlignVCenter,
           sub.join(QStringLiteral("   ")), x.font(0.95), x.c("SUBTEXT"));
  y += nh + x.b * 0.3;

  const QDate from = h.start.isValid() ? h.start : doc.data.start;
  const QDate to = h.end.isValid() ? h.end : doc.data.end;
  std::vector<std::pair<QString, QString>> facts = {
      {s.text(QStringLiteral("PERIOD")), DateRangeText(s, from, to)},
      {s.text(QStringLiteral("VALID_DAYS")), h.validDays.isEmpty() ? QString::number(doc.data.validDays) : h.validDays},
      {s.text(QStringLiteral("AGE")) + QStringLiteral(" / ") + s.text(QStringLiteral("GENDER")), h.age + QStringLiteral(" / ") + h.gender},
      {s.text(QStringLiteral("HEIGHT")) + QStringLiteral(" / ") + s.text(QStringLiteral("WEIGHT")), h.height + QStringLiteral(" / ") + h.weight},
      {s.text(QStringLiteral("TARGETS")),
       s.text(QStringLiteral("TARGET_STEP")) + QLatin1Char(' ') + h.targetStep + QStringLiteral("   ") +
           s.text(QStringLiteral("TARGET_INTAKE")) + QLatin1Char(' ') + h.targetIntake + QStringLiteral("   ") +
           s.text(QStringLiteral("TARGET_ACTMIN")) + QLatin1Char(' ') + h.targetActMin},
      {s.text(QStringLiteral("MODERATE_RANGE")),
       s.text(QStringLiteral("LEVEL")) + QLatin1Char(' ') + h.moderateFrom + QStringLiteral(" - ") + h.moderateTo},
      {s.text(QStringLiteral("EXCLUSION")), ExclusionCaption(s, h.exclusionText)},
      {s.text(QStringLiteral("RECORDER")), RecorderName(s, h.recorderKind)},
  };
  if (!h.comment.isEmpty()) facts.push_back({s.text(QStringLiteral("COMMENT")), h.comment});
  const QFont kf = x.font(0.78), vf = x.font(0.95);
  const double rowH = x.b * 1.45;
  const double colW = page.width() / 2;
  const int perCol = static_cast<int>((facts.size() + 1) / 2);
  const double blockH = rowH * perCol + x.b * 0.8;
  p.setPen(Qt::NoPen);
  p.setBrush(x.c("PANEL"));
  p.drawRoundedRect(QRectF(page.left(), y, page.width(), blockH), x.b * 0.4, x.b * 0.4);
  for (int i = 0; i < static_cast<int>(facts.size()); ++i) {
    const double cx = page.left() + (i < perCol ? 0 : colW) + x.b * 0.7;
    const double cy = y + x.b * 0.4 + rowH * (i < perCol ? i : i - perCol);
    const double keyW = colW * 0.32;
    DrawText(p, QRectF(cx, cy, keyW, rowH), Qt::AlignLeft | Qt::AlignVCenter, facts[static_cast<size_t>(i)].first, kf,
             x.c("SUBTEXT"));
    // A long value (a comment, an exclusion line shown as written) ends in an ellipsis
    // instead of running into the next column or off the page.
    const double valueW = colW - keyW - x.b * 1.2;
    DrawText(p, QRectF(cx + keyW, cy, valueW, rowH), Qt::AlignLeft | Qt::AlignVCenter,
             QFontMetricsF(vf).elidedText(facts[static_cast<size_t>(i)].second, Qt::ElideRight, valueW), vf,
             x.c("TEXT"));
  }
  y += blockH + x.b * 0.8;

  // The chart, then the table of its values.
  const double footH = x.b * 1.6;
  const double rest = page.bottom() - y - footH;
  const bool table = doc.kind == ChartDocument::Kind::Interface && ChartKindOf(doc.data.type) != 800;
  // The table takes what its rows need, at most about two fifths of the space.
  const double chartH = ReportChartHeight(rest, static_cast<int>(doc.data.lines.size()), x.b, table);
  p.setPen(QPen(x.c("GRID"), 1));
  p.setBrush(Qt::NoBrush);
  const QRectF chartRect(page.left(), y, page.width(), chartH);
  p.drawRoundedRect(chartRect, x.b * 0.4, x.b * 0.4);
  DrawChartDocument(p, chartRect.adjusted(1, 1, -1, -1), doc, s);
  y += chartH + x.b * 0.8;
  if (table) DrawValueTable(x, QRectF(page.left(), y, page.width(), page.bottom() - footH - y), doc);
  DrawText(p, QRectF(page.left(), page.bottom() - footH, page.width(), footH), Qt::AlignRight | Qt::AlignBottom,
           s.text(QStringLiteral("PRINTED")) + QStringLiteral(" ") + s.ymd(QDate::currentDate()), x.font(0.7),
           x.c("SUBTEXT"));
  p.restore();
}
