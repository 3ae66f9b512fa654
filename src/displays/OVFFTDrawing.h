#pragma once

#include <span>
#include <vector>

#include <QPainter>
#include <QPointF>
#include <QSizeF>

#include "platform/views/PolylineStroke.h"

/// The layers of the spectrum picture. Each draws into a painter in view coordinates
/// (platform::useViewCoordinates) for a view of the given size in points. Holds only memory that
/// successive drawings reuse.
///
/// Threads: any one at a time; main in a view. Real-time: not safe.
class OVFFTDrawing {
 public:
  /// Fills the background and draws the linear magnitudes as a line graph that begins in the bottom
  /// left corner. Value k of n is at ((k + 1) × width / n, value × 90 % of the height), so the last
  /// is at the right edge. Without values, draws only the background. Values above 1.11 leave the
  /// view at the top; NaN counts as 0.
  void drawSpectrum(QPainter& painter, QSizeF size, std::span<const float> data);

  [[nodiscard]] static QColor background();

  /// A linear gradient from (35, 37, 62) at the bottom to (36, 54, 71) at the top, the reverse of
  /// the waveform's. Not part of the spectrum's picture.
  static void drawGradient(QPainter& painter, QSizeF size);

  /// The unscrolled grid of the waveform: lines every 24 points, the horizontal ones ending half a
  /// point lower than they begin. Not part of the spectrum's picture.
  static void drawGrid(QPainter& painter, QSizeF size);

 private:
  std::vector<QPointF> graph_;
  platform::PolylineStroke graphStroke_;
};
