#pragma once

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include <QColor>
#include <QImage>
#include <QPainter>
#include <QSize>

#include "platform/views/ViewDrawing.h"

/// Pictures and colours for tests that examine single pixels. Rows count from the top.

/// A picture of `size` points at a device pixel ratio, of one colour.
inline QImage makePicture(QSize size, double ratio, const QColor& background) {
  QImage picture(size * ratio, QImage::Format_ARGB32_Premultiplied);
  picture.fill(background);
  picture.setDevicePixelRatio(ratio);
  return picture;
}

/// Such a picture after `draw(painter)` in view coordinates.
template <typename Draw>
QImage drawnPicture(QSize size, double ratio, const QColor& background, Draw draw) {
  QImage picture = makePicture(size, ratio, background);
  QPainter painter(&picture);
  platform::useViewCoordinates(painter, size);
  draw(painter);
  painter.end();
  return picture;
}

/// `over` blended over `under` with an opacity of `part`, 0 to 1.
inline QColor blended(const QColor& under, const QColor& over, double part) {
  const auto channel = [part](int from, int to) {
    return static_cast<int>(std::lround(from + (to - from) * part));
  };
  return QColor(channel(under.red(), over.red()), channel(under.green(), over.green()),
                channel(under.blue(), over.blue()));
}

/// The largest difference between the channels of two colours, 0 to 255.
inline int colorDistance(const QColor& a, const QColor& b) {
  return std::max({std::abs(a.red() - b.red()), std::abs(a.green() - b.green()),
                   std::abs(a.blue() - b.blue())});
}

/// The mean difference between the channels of two pictures of equal size, 0 to 255.
inline double meanDistance(const QImage& a, const QImage& b) {
  double sum = 0.0;
  for (int y = 0; y < a.height(); ++y) {
    for (int x = 0; x < a.width(); ++x) {
      sum += colorDistance(a.pixelColor(x, y), b.pixelColor(x, y));
    }
  }
  return sum / a.width() / a.height();
}
