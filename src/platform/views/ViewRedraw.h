#pragma once

#include <QPointer>
#include <QRectF>
#include <QWidget>

#include "platform/mainloop/MainQueue.h"

/// Redraws a view from the main queue, if it still exists.
/// Threads: any. Real-time: not safe.
template <typename View>
void requestRedraw(const QPointer<View>& view) {
  platform::mainQueue().asyncShared([view] {
    if (view) {
      view->update();
    }
  });
}

/// Redraws a part of it: `inRect`, in points, rounded outward to whole points.
/// Threads: any. Real-time: not safe.
template <typename View>
void requestRedraw(const QPointer<View>& view, const QRectF& inRect) {
  platform::mainQueue().asyncShared([view, rect = inRect.toAlignedRect()] {
    if (view) {
      view->update(rect);
    }
  });
}
