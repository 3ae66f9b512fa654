#include "app/OVKeeper.h"

#include <QFile>

#include "app/OVInstalledFile.h"

namespace {

constexpr double kAgain = 1.0;  // seconds

}  // namespace

OVKeeper::OVKeeper(const std::string& program)
    : connection_(std::make_shared<KeeperConnection>(program)), installed_(connection_) {
  connection_->setChangeHandler([this] { watch(); });
}

OVKeeper::~OVKeeper() {
  connection_->setChangeHandler(nullptr);
}

std::string OVKeeper::programPath(const QString& folder) {
  const OVInstalledFile keeper{.installed = QStringLiteral(ORVO_INSTALLED_MODULES "/orvo-keeper"),
                               .built = QStringLiteral("../../lib/orvo/orvo-keeper"),
                               .use = OVInstalledFile::Use::run};
  return QFile::encodeName(keeper.pathFrom(folder)).toStdString();
}

void OVKeeper::watch() {
  if (watched_ != connection_->starts() || connection_->descriptor() < 0) {
    unwatch();
    again_.reset();
  }
  if (connection_->descriptor() < 0) {
    return;
  }
  if (!gone_) {
    watched_ = connection_->starts();
    gone_ = notifier(QSocketNotifier::Read, &KeeperConnection::check);
    takesMessages_ = notifier(QSocketNotifier::Write, &KeeperConnection::sendPending);
  }
  using Waiting = KeeperConnection::Waiting;
  const Waiting waiting = connection_->waiting();
  takesMessages_->setEnabled(waiting == Waiting::forKeeper);
  if (waiting != Waiting::forSystem) {
    again_.reset();
  } else if (!again_) {
    again_ = std::make_unique<platform::Timer>(kAgain, [this] { connection_->sendPending(); });
  }
}

std::unique_ptr<QSocketNotifier> OVKeeper::notifier(QSocketNotifier::Type type,
                                                    void (KeeperConnection::*call)()) {
  auto notifier = std::make_unique<QSocketNotifier>(connection_->descriptor(), type);
  QObject::connect(notifier.get(), &QSocketNotifier::activated, notifier.get(),
                   [this, call] { (connection_.get()->*call)(); });
  return notifier;
}

// A notifier may be reporting just now.
void OVKeeper::unwatch() {
  for (auto* const each : {&gone_, &takesMessages_}) {
    if (QSocketNotifier* const notifier = each->release()) {
      notifier->setEnabled(false);
      notifier->deleteLater();
    }
  }
}
