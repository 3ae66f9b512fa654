#pragma once

#include <QPainter>
#include <QSizeF>

/// Draws the marker into a painter in view coordinates: one white line, 2 points wide, from bottom
/// to top at `position`, a fraction of the width. Its alpha is the audio level, at least 0.3, at
/// most 1; a NaN level counts as 0, a NaN position draws nothing.
///
/// Threads: main. Real-time: not safe.
void drawPlaybackMarker(QPainter& painter, QSizeF size, double position, double audioLevel);
