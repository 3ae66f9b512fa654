#pragma once

#include <QPainter>
#include <QRectF>
#include <QSizeF>

/// The mark of the place where the next recording goes: a small red wedge that hangs from the upper
/// edge, with its tip at `position`, a fraction of the width. At the left and right ends it leans
/// inward, so that it is never cut off.
///
/// Threads: main. Real-time: not safe.

/// Draws it into a painter in view coordinates for a view of `size`, points. A position that is not
/// finite draws nothing.
void drawRecordingTick(QPainter& painter, QSizeF size, double position);

/// What the drawing covers, in Qt's coordinates (origin top left), points; empty for none.
[[nodiscard]] QRectF recordingTickBounds(QSizeF size, double position);
