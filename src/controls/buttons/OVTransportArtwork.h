#pragma once

class QPainter;
class QRectF;

// The bezels of the transport controls, made of grey levels with alpha. Each function draws into
// `frame` in coordinates whose y grows downward; the artwork stretches to any frame, while insets,
// corner radii, the 5-point band and the 1-point separator keep their sizes. A frame narrower than
// about 8 points gives a meaningless picture. The painter must have antialiasing on; its state is
// restored.
//
// Threads: main. Real-time: not safe.

/// Both ends have small round corners.
void drawBezelWithFrame(QPainter& painter, const QRectF& frame, bool highlighted);

/// The left end is a half circle, the rest as in the plain bezel.
void drawLeftTypeButtonWithFrame(QPainter& painter, const QRectF& frame, bool highlighted);

/// The mirror image of the left type.
void drawRightTypeButtonWithFrame(QPainter& painter, const QRectF& frame, bool highlighted);
