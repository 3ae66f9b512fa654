#pragma once

#include <vector>

#include <poll.h>
#include <unistd.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>
#include <QDBusVirtualObject>
#include <QStringList>

namespace support {

/// A login manager on a private message bus. Whether a descriptor that it gave is still open is
/// seen at the other end of a pipe.
///
/// Threads: the one of its connection's main loop.
class LoginManager : public QDBusVirtualObject {
 public:
  std::vector<QStringList> calls;  ///< what, who, why and mode of each
  bool refuses = false;
  bool answersLate = false;

  LoginManager() = default;
  ~LoginManager() override {
    for (const int end : readEnds_) {
      ::close(end);
    }
  }
  LoginManager(const LoginManager&) = delete;
  LoginManager& operator=(const LoginManager&) = delete;

  /// Takes the login manager's name on this bus; false on failure.
  [[nodiscard]] bool offerOn(QDBusConnection bus) {
    return bus.registerVirtualObject(QStringLiteral("/org/freedesktop/login1"), this) &&
           bus.registerService(QStringLiteral("org.freedesktop.login1"));
  }

  /// Answers the call that was left without an answer.
  void answerLate(QDBusConnection bus) { bus.send(replyWithDescriptor(late_)); }

  /// Descriptors that are open somewhere. The ends of the others are closed.
  [[nodiscard]] int held() {
    std::erase_if(readEnds_, [](int end) {
      pollfd state{.fd = end, .events = 0, .revents = 0};
      ::poll(&state, 1, 0);
      const bool isReleased = (state.revents & POLLHUP) != 0;
      if (isReleased) {
        ::close(end);
      }
      return isReleased;
    });
    return static_cast<int>(readEnds_.size());
  }

  [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }

  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
    constexpr int kArguments = 4;
    if (message.interface() != QLatin1String("org.freedesktop.login1.Manager") ||
        message.member() != QLatin1String("Inhibit") || message.arguments().size() != kArguments) {
      return false;
    }
    QStringList call;
    for (const QVariant& argument : message.arguments()) {
      call.append(argument.toString());
    }
    calls.push_back(call);
    if (answersLate) {
      late_ = message;
    } else {
      static_cast<void>(connection.send(
          refuses
              ? message.createErrorReply(QDBusError::AccessDenied, QStringLiteral("not allowed"))
              : replyWithDescriptor(message)));
    }
    return true;
  }

 private:
  QDBusMessage replyWithDescriptor(const QDBusMessage& message) {
    int ends[2] = {-1, -1};
    if (::pipe(ends) != 0) {
      return message.createErrorReply(QDBusError::LimitsExceeded, QStringLiteral("no pipe"));
    }
    readEnds_.push_back(ends[0]);
    const QDBusUnixFileDescriptor descriptor(ends[1]);
    ::close(ends[1]);
    return message.createReply(QVariant::fromValue(descriptor));
  }

  std::vector<int> readEnds_;
  QDBusMessage late_;
};

}  // namespace support
