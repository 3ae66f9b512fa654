#pragma once

#include <QImage>
#include <QScreen>
#include <QWidget>

/// The screens of screens.json: five of the same size in points, with 1, 1.25, 1.5, 2 and 1.75
/// device pixels per point. They exist if the application runs on ORVO_GALLERY_PLATFORM.

/// The scale factors of the pictures, in the order of the screens. Those at 1.75 are tested, but
/// not kept.
inline constexpr double kScaleFactors[] = {1.0, 1.25, 1.5, 2.0};

/// The screen of a scale factor; null if the platform has none.
[[nodiscard]] QScreen* screenOfScale(double factor);

/// Shows a window, moves it to the screen with its size in points, and returns once it has been
/// painted there; false if that does not happen.
[[nodiscard]] bool showOnScreenOfScale(QWidget& window, double factor);

/// The picture of a window, in device pixels.
[[nodiscard]] QImage pictureOfWindow(QWidget& window);
