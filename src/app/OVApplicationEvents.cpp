#include "app/OVApplicationEvents.h"

#include <QFileOpenEvent>

bool OVApplicationEvents::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Quit) {
    handlers_.terminate();
    return true;
  }
  if (event->type() != QEvent::FileOpen) {
    return QObject::eventFilter(watched, event);
  }
  const QString path = static_cast<QFileOpenEvent*>(event)->file();
  if (!path.isEmpty()) {
    handlers_.openFile(path.toStdString());
  }
  return true;
}
