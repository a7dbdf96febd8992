// The main window's chart face: the chart view, periods, dates, graph buttons and drawing.
#include "ui/frmTerminal.h"

#include <QFile>
#include <QFileInfo>
#include <QDateEdit>
#include <QLabel>
#include <QPainter>
#include <QToolButton>

#include "charts/make_chart.h"
#include "frame/catalogue.h"
#include "frame/config.h"
#include "frame/helpers.h"
#include "frame/shared_values.h"
#include "frame/trace.h"
#include "ui/form_look.h"
#include "ui/frmTerminal_parts.h"
#include "ui/ini_picture.h"
#include "ui/printing.h"
#include "ui/receive_screens.h"
#include "ui/startup.h"

namespace {

using terminal::Caption;
using terminal::Trace0;

// A date as the screen shows it. The configured form escapes literal characters with a
// backslash ("yyyy\/MM\/dd"); Qt quotes them.
QString ScreenDate(const QDate& date) {
  const QString configured = GetCommonScreenDateFormat();
  if (configured.isEmpty()) return date.toString(QStringLiteral("yyyy/MM/dd"));
  QString format;
  for (qsizetype i = 0; i < configured.size(); ++i) {
    if (configured[i] == QLatin1Char('\\') && i + 1 < configured.size()) {
      format += QLatin1Char('\'') + configured[++i] + QLatin1Char('\'');
    } else {
      format += configured[i];
    }
  }
  return date.toString(format);
}


void SetDown(QToolButton* b, bool down) {
  b->setCheckable(true);
  b->setChecked(down);
}

}  // namespace

// ---------------------------------------------------------------- chart view

ChartView::ChartView(ChartMaker& maker, QWidget* parent) : QWidget(parent), maker_(maker) {
  setObjectName(QStringLiteral("pictureContents"));
  setAttribute(Qt::WA_OpaquePaintEvent);
  setMinimumSize(320, 200);
}

ChartView::~ChartView() { maker_.forgetSurface(this); }

void ChartView::showChart(const QImage& image) {
  image_ = image;
  if (!painting_) update();
}

void ChartView::clearChart() {
  maker_.forgetSurface(this);
  image_ = QImage();
  update();
}

void ChartView::paintEvent(QPaintEvent*) {
  const QSize wanted = (QSizeF(size()) * devicePixelRatioF()).toSize();
  if (maker_.hasChart(this) && image_.size() != wanted) {
    // The library keeps the last chart: paint it again at the new size.
    painting_ = true;
    ChartReMakePersonal(maker_, *this);
    painting_ = false;
  }
  QPainter p(this);
  p.fillRect(rect(), Qt::white);
  if (!image_.isNull()) p.drawImage(QPoint(0, 0), image_);
}
// ---------------------------------------------------------------- charts

void frmTerminal::InitChartState() {
  QDate first;
  QDate last;
  charts::ReadUserRange(s_.db, GetCurrentUserId(), first, last);
  charts::InitChartState(range_, first, last);
  hasData_ = !range_.noData;
  lastKind_ = 0;
  pictureContents->clearChart();
  syncPickers();
  showButtonStates();
  setJobPanesEnabled(hasData_);
  picPeriodArea->show();
  if (!hasData_) {
    lblDispChartRange->clear();
    lblDispChartOneday->clear();
    UpdateMenuState(kDataStateNoData);
    return;
  }
  ReDrawChart(range_.chartKind);
}

void frmTerminal::setJobPanesEnabled(bool enabled) {
  picPeriodArea->setEnabled(enabled);
  for (QWidget* w : std::initializer_list<QWidget*>{dtDateStart, dtDateEnd, btnDateUpdate}) w->setEnabled(enabled);
  picGraphBtn->setEnabled(enabled);
  picGraph->setEnabled(enabled);
  UpdateButtonState();
}

void frmTerminal::syncPickers() {
  const QSignalBlocker b1(dtDateStart);
  const QSignalBlocker b2(dtDateEnd);
  if (range_.rangeFirst.isValid()) {
    dtDateStart->setDateRange(range_.rangeFirst, range_.rangeLast);
    dtDateEnd->setDateRange(range_.rangeFirst, range_.rangeLast);
  } else {
    dtDateStart->clearMinimumDate();
    dtDateStart->clearMaximumDate();
    dtDateEnd->clearMinimumDate();
    dtDateEnd->clearMaximumDate();
  }
  dtDateStart->setDate(range_.dtDateStart);
  dtDateEnd->setDate(range_.dtDateEnd);
  dtDateStart->setEnabled(range_.periodKind != charts::kPeriodDay);
}

void frmTerminal::showButtonStates() {
  SetDown(btnDay, range_.periodKind == charts::kPeriodDay);
  SetDown(btnWeek, range_.periodKind == charts::kPeriodWeek);
  SetDown(btnMonth, range_.periodKind == charts::kPeriodMonth);
  SetDown(btnSixMonths, range_.periodKind == charts::kPeriodSixMonths);
  const int indexes[7] = {0, 1, 2, 3, 4, 5, 7};
  for (int i = 0; i < 7; ++i) {
    SetDown(btnGraph[i], range_.periodKind != charts::kPeriodDay && range_.graphIndex == indexes[i]);
  }
  SetDown(btnDateLatest, hasData_ && charts::IsLatestDate(range_));
}

void frmTerminal::periodButton_Click(int period) {
  static const char* names[5] = {"", "btnDay_Click Start", "btnWeek_Click Start", "btnMonth_Click Start",
                                 "btnSixMonths_Click Start"};
  Trace0(QString::fromLatin1(names[std::clamp(period, 1, 4)]));
  const bool wasLatest = charts::SelectPeriod(range_, period);
  SetDown(btnDateUpdate, !wasLatest);
  SetDown(btnDateBack, false);
  SetDown(btnDateNext, false);
  syncPickers();
  showButtonStates();
  ReDrawChart(range_.chartKind);
}

void frmTerminal::graphButton_Click(int graphIndex) {
  Trace0(charts::GraphButtonTraceLine(graphIndex));
  charts::SelectGraph(range_, graphIndex);
  syncPickers();
  showButtonStates();
  ReDrawChart(range_.chartKind);
}

void frmTerminal::dateButton_Click(int mode) {
  const char* name = mode == charts::kAdjustBack   ? "btnDateBack_Click Start"
                     : mode == charts::kAdjustNext ? "btnDateNext_Click Start"
                                                   : "btnDateLatest_Click Start";
  Trace0(QString::fromLatin1(name));
  charts::DateAdjustment(range_, range_.periodKind, mode);
  syncPickers();
  showButtonStates();
  SetDown(btnDateBack, mode == charts::kAdjustBack);
  SetDown(btnDateNext, mode == charts::kAdjustNext);
  SetDown(btnDateLatest, mode == charts::kAdjustLatest || charts::IsLatestDate(range_));
  SetDown(btnDateUpdate, false);
  ReDrawChart(range_.chartKind);
}

void frmTerminal::btnDateUpdate_Click() {
  Trace0(QStringLiteral("btnDateUpdate_MouseDown Start"));
  range_.dtDateStart = dtDateStart->date();
  range_.dtDateEnd = dtDateEnd->date();
  charts::DateAdjustment(range_, range_.periodKind, charts::kAdjustKeep);
  syncPickers();
  showButtonStates();
  SetDown(btnDateUpdate, false);
  ReDrawChart(range_.chartKind);
}

void frmTerminal::dtDateEnd_Change() {
  Trace0(QStringLiteral("dtDateEnd_Change Start"));
  range_.dtDateEnd = dtDateEnd->date();
  charts::UpdateRangeStartDate(range_);
  syncPickers();
  SetDown(btnDateUpdate, true);
}

void frmTerminal::dtDateStart_Change() {
  Trace0(QStringLiteral("dtDateStart_Change Start"));
  range_.dtDateStart = dtDateStart->date();
  charts::UpdateRangeEndDate(range_);
  syncPickers();
  SetDown(btnDateUpdate, true);
}

void frmTerminal::deleteChartFiles() {
  for (QString* f : {&headerFile_, &interfaceFile_}) {
    if (!f->isEmpty()) QFile::remove(*f);
    f->clear();
  }
}

void frmTerminal::centreWaitNotice() {
  WaitPicture->adjustSize();
  const QRect area = picGraph->rect();
  WaitPicture->move(area.center() - WaitPicture->rect().center());
  WaitPicture->raise();
}

void frmTerminal::ReDrawChart(int kind, bool printFlag) {
  if (!hasData_) return;
  centreWaitNotice();
  const bool oneDay = range_.periodKind == charts::kPeriodDay;
  lblDispChartOneday->setVisible(oneDay);
  lblDispChartRange->setVisible(!oneDay);
  if (oneDay) {
    lblDispChartOneday->setText(ScreenDate(range_.dtDateEnd));
  } else {
    lblDispChartRange->setText(Caption("CAPTION_LBLCHARTFROM") + QLatin1Char(' ') +
                               ScreenDate(range_.dtDateStart) + QLatin1Char(' ') +
                               Caption("CAPTION_LBLCHARTTO") + QLatin1Char(' ') +
                               ScreenDate(range_.dtDateEnd));
  }
  range_.dateChartFrom = range_.dtDateStart;
  range_.dateChartTo = range_.dtDateEnd;

  WaitPicture->show();
  WaitPicture->repaint();
  ++busyCounter_;
  SetModalFormOpen(true);
  int result = -1;
  try {
    const bool same = kind == lastKind_ && kind != 5 && range_.dateChartFrom == lastFrom_ &&
                      range_.dateChartTo == lastTo_ && !forceRebuild_ && QFileInfo::exists(headerFile_) &&
                      QFileInfo::exists(interfaceFile_);
    if (!same) {
      deleteChartFiles();
      QString iface;
      QString header;
      if (!charts::MakeChartData(s_.db, kind, DateToSlash(range_.dateChartFrom), DateToSlash(range_.dateChartTo),
                                 iface, header, GetCurrentUserId())) {
        MessageDialog(QStringLiteral("USEL-C-0003"));
      }
      interfaceFile_ = iface;
      headerFile_ = header;
      lastKind_ = kind;
      lastFrom_ = range_.dateChartFrom;
      lastTo_ = range_.dateChartTo;
      forceRebuild_ = false;
    }
    const bool headerThere = !headerFile_.isEmpty() && QFileInfo::exists(headerFile_);
    const bool interfaceThere = !interfaceFile_.isEmpty() && QFileInfo::exists(interfaceFile_);
    if (!headerThere) {
      MessageDialog(QStringLiteral("USEL-C-0001"));
      deleteChartFiles();
      lastKind_ = 0;
    } else {
      if (!interfaceThere) MessageDialog(QStringLiteral("USEL-C-0002"));
      if (!printFlag) {
        result = ChartMakerPersonal(s_.chart, *pictureContents, GetAbsolutePath(interfaceFile_));
        WriteTrace(QStringLiteral("0"), QStringLiteral("DrawChart"),
                   QStringLiteral("lChartProcessRet = ") + QString::number(result));
        ReportChartResult(result);
      } else if (actions_.printFiles) {
        actions_.printFiles(headerFile_, interfaceFile_);
      }
    }
    busyCounter_ = 0;
    SetModalFormOpen(false);
    WriteTrace(QStringLiteral("0"), QStringLiteral("DrawChart"), QStringLiteral("Normal END"));
  } catch (const std::exception& e) {
    busyCounter_ = 0;
    SetModalFormOpen(false);
    MessageDialog(QStringLiteral("USEL-C-0004"), QString::fromUtf8(e.what()));
    WriteTrace(QStringLiteral("2"), QStringLiteral("DrawChart"), QStringLiteral("ERROR END"));
  }
  WaitPicture->hide();
  checkData();
  Q_EMIT chartDrawn(kind, result);
}

