#include "app/OVFirstWindowWatcher.h"

#include <utility>

#include <QCoreApplication>
#include <QEvent>
#include <QWindow>

OVFirstWindowWatcher::OVFirstWindowWatcher(std::function<void()> shown) {
  wait_.setSingleShot(true);
  QObject::connect(&wait_, &QTimer::timeout, this, [this, shown = std::move(shown)] {
    QCoreApplication::instance()->removeEventFilter(this);
    shown();
  });
  wait_.start(kMaxWait);
  QCoreApplication::instance()->installEventFilter(this);
}

bool OVFirstWindowWatcher::eventFilter(QObject* watched, QEvent* event) {
  // The window is drawn while this event is handled; the timer fires afterwards.
  const auto* window = qobject_cast<QWindow*>(watched);
  if (event->type() == QEvent::Expose && window != nullptr && window->isExposed()) {
    wait_.start(0);
  }
  return QObject::eventFilter(watched, event);
}
