// A label that the chart library paints into: the picture areas of the plan screens.
#pragma once

#include <QLabel>
#include <QPixmap>

#include "chartmaker/chartmaker.h"

class PictureSurface : public QLabel, public ChartSurface {
 public:
  explicit PictureSurface(QWidget* parent = nullptr) : QLabel(parent) {
    setAlignment(Qt::AlignCenter);
  }
  QSize chartSize() const override { return contentsRect().size(); }
  qreal chartDevicePixelRatio() const override { return devicePixelRatioF(); }
  void showChart(const QImage& image) override { setPixmap(QPixmap::fromImage(image)); }
};
