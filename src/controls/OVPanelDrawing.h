#pragma once

#include <QColor>
#include <QSizeF>

class QPainter;

/// Draws the light grey panel over a view of size `bounds`: a gradient that is lighter towards the
/// top, a white line of one point along the top edge and, with `bottomShadow`, a dark line of 1.3
/// points along the bottom edge. The painter has the widget's own coordinates, y downward.
///
/// Threads: main. Real-time: not safe.
void drawPanel(QPainter& painter, const QSizeF& bounds, bool bottomShadow);

/// The darker end of the panel's gradient, for the ground below the panel.
[[nodiscard]] QColor panelGround();
