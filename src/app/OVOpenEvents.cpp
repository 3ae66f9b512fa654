#include "app/OVOpenEvents.h"

#include <QFileOpenEvent>

bool OVOpenEvents::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::FileOpen) {
    return QObject::eventFilter(watched, event);
  }
  const QString path = static_cast<QFileOpenEvent*>(event)->file();
  if (!path.isEmpty()) {
    handler_(path.toStdString());
  }
  return true;
}
