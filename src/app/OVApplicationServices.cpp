#include "app/OVApplicationServices.h"

#include <utility>

#include <QApplication>
#include <QMessageBox>
#include <QPointer>

#include "platform/Dispatch.h"
#include "platform/Localization.h"

namespace {

void runAlert(const std::string& title, const std::string& message) {
  // The window may go while the alert runs its loop, and takes the alert along.
  const QPointer<QMessageBox> alert = new QMessageBox(QApplication::activeWindow());
  alert->setObjectName("modalAlert");
  alert->setIcon(QMessageBox::Warning);
  alert->setWindowTitle(platform::localized("Orvo"));
  alert->setText(QString::fromStdString(title));
  alert->setInformativeText(QString::fromStdString(message));
  alert->addButton(platform::localized("OK"), QMessageBox::AcceptRole);
  alert->setWindowModality(Qt::ApplicationModal);
  alert->setAttribute(Qt::WA_QuitOnClose, false);  // an alert may be the only window there is
  alert->exec();
  delete alert.data();
}

}  // namespace

OVApplicationServices::OVApplicationServices(Receivers receivers)
    : receivers_(std::move(receivers)) {}

void OVApplicationServices::showModalAlert(const std::string& title, const std::string& message) {
  platform::mainQueue().sync([title, message] { runAlert(title, message); });
}

void OVApplicationServices::postModalAlert(const std::string& title, const std::string& message) {
  platform::mainQueue().async([title, message] { runAlert(title, message); });
}

void OVApplicationServices::logToConsole(const std::string& text) {
  platform::mainQueue().async([log = receivers_.logToConsole, text] { log(text); });
}

void OVApplicationServices::registerTempFile(const std::string& path) {
  receivers_.registerTempFile(path);
}

void OVApplicationServices::cancelTermination() {
  platform::mainQueue().sync(receivers_.cancelTermination);
}
