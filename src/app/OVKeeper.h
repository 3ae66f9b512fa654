#pragma once

#include <memory>
#include <string>

#include <QSocketNotifier>
#include <QString>

#include "platform/base/Installed.h"
#include "platform/mainloop/Timer.h"
#include "recovery/KeeperConnection.h"

/// The keeper of this program's recordings: connects it with the main loop, which tells when it is
/// gone, or takes messages again. Installed for all documents while it lives.
///
/// Threads: main. Real-time: not safe.
class OVKeeper {
 public:
  /// `program` is the keeper's path.
  explicit OVKeeper(const std::string& program);
  ~OVKeeper();
  OVKeeper(const OVKeeper&) = delete;
  OVKeeper& operator=(const OVKeeper&) = delete;

  /// The absolute path of the keeper that belongs to the program in a folder, whether it is there
  /// or not.
  [[nodiscard]] static std::string programPath(const QString& folder);

  void start() { connection_->start(); }

 private:
  void watch();
  void unwatch();
  [[nodiscard]] std::unique_ptr<QSocketNotifier> notifier(QSocketNotifier::Type type,
                                                          void (KeeperConnection::*call)());

  const std::shared_ptr<KeeperConnection> connection_;
  const platform::Installed<RecordingKeeper>::Scope installed_;
  int watched_ = 0;  // connection_->starts() when the notifiers were made
  std::unique_ptr<QSocketNotifier> gone_;
  std::unique_ptr<QSocketNotifier> takesMessages_;
  std::unique_ptr<platform::Timer> again_;  // while the system takes no message
};
