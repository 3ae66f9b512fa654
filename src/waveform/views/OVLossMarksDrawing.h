#pragma once

#include <cstdint>

#include <QPainter>
#include <QRectF>
#include <QSizeF>
#include <QString>

/// A place of the audio where sound was lost.
struct OVLossMark {
  std::uint64_t atFrame = 0;
  std::uint64_t frames = 0;  ///< of silence in its place; 0 if nothing stands there
  QString text;              ///< localised, for people

  friend bool operator==(const OVLossMark&, const OVLossMark&) = default;
};

/// The mark of a loss: a short amber bar at the upper edge, as long as the silence in its place and
/// never too small to see. At the ends it lies wholly inside.
///
/// Threads: main. Real-time: not safe.

/// Draws it into a painter in view coordinates for a view of `size`, points, that shows
/// `lengthInFrames` frames. Draws nothing if there are none.
void drawLossMark(QPainter& painter, QSizeF size, const OVLossMark& mark,
                  std::uint64_t lengthInFrames);

/// What the drawing covers, in Qt's coordinates (origin top left), points; empty for none.
[[nodiscard]] QRectF lossMarkBounds(QSizeF size, const OVLossMark& mark,
                                    std::uint64_t lengthInFrames);

/// The strip at the upper edge that holds all marks, in the same coordinates.
[[nodiscard]] QRectF lossMarkStrip(QSizeF size);
