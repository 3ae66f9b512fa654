#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "platform/cubeb/CubebConnection.h"

namespace platform {

/// Ends connections that are not used any more.
///
/// cubeb forgets a handler of changed inputs at once, but the server's notices end a round trip
/// later: one that comes in between calls a null pointer. A connection is often given up just when
/// an input goes, which is what the server notifies of. So one that has a handler is kept until no
/// notice has come for a while; what is left at the end stays until the process ends.
///
/// Threads: the control thread of the audio queues. Real-time: not safe.
class RetiredConnections {
 public:
  using Now = std::function<std::chrono::steady_clock::time_point()>;

  /// How long a server must not have notified: a card that goes or comes makes its changes within
  /// two seconds.
  static constexpr std::chrono::seconds kQuiet{5};

  explicit RetiredConnections(Now now) : now_(std::move(now)) {}
  ~RetiredConnections();
  RetiredConnections(const RetiredConnections&) = delete;
  RetiredConnections& operator=(const RetiredConnections&) = delete;

  /// The connection calls its handler no more. One without a handler is ended at once.
  void take(std::unique_ptr<CubebConnection> connection);

  /// Ends those that have been quiet for long enough. Call now and then.
  void endQuietOnes();

 private:
  struct Retired {
    std::unique_ptr<CubebConnection> connection;
    std::uint64_t notices;
    std::chrono::steady_clock::time_point quietSince;
  };

  const Now now_;
  std::vector<Retired> retired_;
};

}  // namespace platform
