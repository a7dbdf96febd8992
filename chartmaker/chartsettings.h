// The chart settings file: font, colours, date formats, titles and captions. Every
// value has a built-in default, so a missing key never leaves a hole in a chart.
#pragma once

#include <QColor>
#include <QDate>
#include <QHash>
#include <QString>
#include <QStringList>

struct ChartSettings {
  QString fontFamily;
  QString dateYmd;   // strftime-like: %Y %m %d %a
  QString dateMda;
  QStringList weekdays;  // Monday first, seven names
  QHash<QString, QColor> colours;
  QHash<QString, QString> texts;  // [TITLE] and [CAPTION] keys
  // The value axes' maxima from the configuration, as written there; a blank or
  // non-positive one leaves the chart's own maximum. Read when the charts are prepared,
  // never while drawing.
  struct AxisMaxima {
    QString steps, dayActivityMinutes, totalCal, meanActivityMinutes;
  } axisMaxima;

  ChartSettings();  // the built-in defaults
  // Reads the file over the defaults; false when the file does not exist.
  bool load(const QString& path);

  QColor colour(const QString& key) const;
  QString text(const QString& key) const;
  // "%Y/%m/%d" style format of a date, %a the weekday name of the settings.
  QString formatDate(const QDate& date, const QString& format) const;
  QString ymd(const QDate& d) const { return formatDate(d, dateYmd); }
  QString mda(const QDate& d) const { return formatDate(d, dateMda); }
};
