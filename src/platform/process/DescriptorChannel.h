#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "platform/base/Result.h"

namespace platform {

/// One end of a connection between two processes, over which short messages and open files pass.
/// Only the processes that hold the two ends can use it: it has no name. Messages arrive whole and
/// in order.
///
/// Threads: one at a time. Real-time: not safe.
class DescriptorChannel {
 public:
  static constexpr std::size_t kMaxDescriptors = 2;  ///< in one message

  /// Owns the descriptor of an end.
  explicit DescriptorChannel(int descriptor) : descriptor_(descriptor) {}
  ~DescriptorChannel();
  DescriptorChannel(const DescriptorChannel&) = delete;
  DescriptorChannel& operator=(const DescriptorChannel&) = delete;

  using Ends = std::pair<std::unique_ptr<DescriptorChannel>, std::unique_ptr<DescriptorChannel>>;
  /// A new connection, closed on exec.
  [[nodiscard]] static Result<Ends> connect();

  [[nodiscard]] int descriptor() const { return descriptor_; }

  /// Sends a message and copies of descriptors; never waits. Returns 0; EAGAIN while the other end
  /// is too far behind, with nothing sent, until descriptor() is writable; ENOBUFS while the system
  /// takes no more, which descriptor() does not tell; EPIPE or ECONNRESET once the other end is
  /// gone; or another errno.
  [[nodiscard]] int send(std::span<const std::byte> message, std::span<const int> descriptors);

  struct Received {
    std::size_t byteCount = 0;     ///< of the message; 0 when the other end is gone
    std::vector<int> descriptors;  ///< closed on exec; the caller closes them
    int error = 0;                 ///< errno; 0 for none
  };
  enum class Waiting { untilItCame, no };
  /// The next message, at most as long as `message`. Without waiting, the error is EAGAIN when
  /// there is none.
  [[nodiscard]] Received receive(std::span<std::byte> message, Waiting waiting);

 private:
  const int descriptor_;
};

}  // namespace platform
