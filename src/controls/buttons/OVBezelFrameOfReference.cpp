#include "controls/buttons/OVBezelFrameOfReference.h"

#include <QMainWindow>

namespace {

const QWidget& contentViewOf(const QWidget& view) {
  const QWidget* window = view.window();
  const auto* mainWindow = qobject_cast<const QMainWindow*>(window);
  const QWidget* central = mainWindow != nullptr ? mainWindow->centralWidget() : nullptr;
  return central != nullptr && central->isAncestorOf(&view) ? *central : *window;
}

// The bottom left corner of a view in its superview, y upward; the origin for a content view.
QPointF frameOrigin(const QWidget* view, const QWidget& content) {
  if (view == nullptr || view == &content || view->parentWidget() == nullptr) {
    return {};
  }
  const QRect frame = view->geometry();
  return QPointF(frame.x(), view->parentWidget()->height() - frame.y() - frame.height());
}

}  // namespace

OVBezelFrameOfReference::OVBezelFrameOfReference(const QWidget& button) {
  const QWidget& content = contentViewOf(button);
  const QPointF own = frameOrigin(&button, content);
  const QPointF superview = frameOrigin(button.parentWidget(), content);
  const QPointF inContent = button.mapTo(&content, QPointF(0.0, 0.0));

  toWidget.translate(-inContent.x(), -inContent.y());
  toWidget.translate(0.0, content.height());
  toWidget.scale(1.0, -1.0);
  toWidget.translate(own.x(), own.y() + button.height());
  toWidget.scale(1.0, -1.0);
  bezel = QRectF(superview.x(), -superview.y(), button.width(), button.height());
}
