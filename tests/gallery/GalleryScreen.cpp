#include "gallery/GalleryScreen.h"

#include <QCoreApplication>
#include <QGuiApplication>

#include "support/MainLoop.h"

QScreen* screenOfScale(double factor) {
  for (QScreen* const screen : QGuiApplication::screens()) {
    if (screen->devicePixelRatio() == factor) {
      return screen;
    }
  }
  return nullptr;
}

bool showOnScreenOfScale(QWidget& window, double factor) {
  QScreen* const screen = screenOfScale(factor);
  if (screen == nullptr) {
    return false;
  }
  window.show();
  const QSize size = window.size();
  window.setScreen(screen);
  window.move(screen->geometry().topLeft() + QPoint(40, 60));
  const bool arrived = runMainLoopUntil(
      [&] { return window.screen() == screen && window.devicePixelRatioF() == factor; });
  static_cast<void>(drainMainQueue());
  QCoreApplication::processEvents();
  window.resize(size);  // by default, a window keeps its size in device pixels
  window.repaint();
  return arrived && drainMainQueue();
}

QImage pictureOfWindow(QWidget& window) {
  return window.grab().toImage().convertToFormat(QImage::Format_RGB32);
}
