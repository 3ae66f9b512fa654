#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include <cubeb/cubeb.h>

#include "platform/base/AudioTypes.h"
#include "platform/cubeb/CubebConnection.h"

namespace platform {

/// A cubeb stream in one direction, in kWorkingFormat, on the default device.
///
/// cubeb_stream_get_latency() is not used: it aborts the process on a dead stream. Its callbacks
/// never call cubeb, which would abort as well.
///
/// Threads: the control thread, except the callbacks. Real-time: only the callbacks are safe.
class CubebStream {
 public:
  enum class Direction { kInput, kOutput };

  /// cubeb's data callback, on its audio thread.
  using Transfer = void (*)(void* client, const void* captured, void* wanted,
                            std::uint32_t frames) noexcept;
  /// The stream has died; called on one of cubeb's threads.
  using Died = void (*)(void* client) noexcept;

  CubebStream(std::shared_ptr<CubebConnection> connection, Direction direction, void* client,
              Transfer transfer, Died died)
      : connection_(std::move(connection)),
        direction_(direction),
        client_(client),
        transfer_(transfer),
        died_(died) {}

  /// Stops and destroys the stream; queued output is dropped.
  ~CubebStream();
  CubebStream(const CubebStream&) = delete;
  CubebStream& operator=(const CubebStream&) = delete;

  /// Opens the stream, once; an input is also started. A stream that dies meanwhile counts as not
  /// opened, and `died` is not called for it. A failure marks the connection as broken.
  [[nodiscard]] AudioStatus open(std::uint32_t latencyFrames);

  /// A failure marks the connection as broken.
  [[nodiscard]] AudioStatus start();
  [[nodiscard]] AudioStatus stop();

  /// AudioInputStream::currentInput().
  [[nodiscard]] std::string currentInput();

  /// Frames played; the last known number if cubeb does not report it. Never more than the device
  /// must have taken from the stream's buffer.
  [[nodiscard]] std::uint64_t position();

 private:
  enum class Life { kOpening, kOpen, kDead };

  [[nodiscard]] AudioStatus checked(int result);

  static long transferCallback(cubeb_stream* stream, void* user, const void* input, void* output,
                               long frames);
  static void stateCallback(cubeb_stream* stream, void* user, cubeb_state state);

  // Fixed after construction.
  const std::shared_ptr<CubebConnection> connection_;
  const Direction direction_;
  void* const client_;
  const Transfer transfer_;
  const Died died_;

  // Set to kOpen by open(), to kDead by cubeb's threads; never leaves kDead.
  std::atomic<Life> life_{Life::kOpening};

  // Frames that the device has delivered or taken. Only writer: cubeb's audio thread; only a count,
  // so relaxed.
  std::atomic<std::uint64_t> transferred_{0};

  // Control thread only.
  cubeb_stream* stream_ = nullptr;
  std::uint32_t latencyFrames_ = 0;
  std::uint64_t position_ = 0;
};

/// Converts a result of cubeb to a status.
[[nodiscard]] AudioStatus statusOfCubeb(int result);

}  // namespace platform
