#pragma once

#include <memory>
#include <string>

#include <QDBusConnection>

#include "support/TemporaryFolder.h"
#include "support/fakes/LoginManager.h"
#include "support/programs/PrivateBus.h"
#include "support/programs/VirtualScreen.h"

/// A screen, a message bus with a login manager, and a home folder for this process, in its
/// environment. Made before the application, destroyed after it.
///
/// Threads: main, while no other thread reads the environment.
class RoundDesktop {
 public:
  RoundDesktop();

  /// A plain sentence; empty if everything is there.
  [[nodiscard]] const std::string& error() const { return error_; }
  [[nodiscard]] std::string musicFile(const std::string& name) const { return music_.file(name); }
  /// After the application was made.
  [[nodiscard]] bool offerLoginManager();
  [[nodiscard]] support::LoginManager& loginManager() { return loginManager_; }

 private:
  std::string error_;
  std::unique_ptr<support::VirtualScreen> screen_;
  support::PrivateBus bus_;
  support::TemporaryFolder music_;
  support::TemporaryFolder data_;
  support::LoginManager loginManager_;
};
