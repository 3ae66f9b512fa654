#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <utility>

#include <cubeb/cubeb.h>

#include "platform/base/AudioTypes.h"
#include "platform/cubeb/CubebConnection.h"

namespace platform {

/// A cubeb stream in one direction, in kWorkingFormat, on the default device.
///
/// cubeb_stream_get_latency() is not used: it aborts the process on a dead stream. No call of the
/// library is made from its callbacks: that would abort as well.
///
/// Threads: the control thread, except the callbacks. Real-time: only the callbacks are safe.
class CubebStream {
 public:
  enum class Direction { kInput, kOutput };

  /// The library's data callback, on its audio thread.
  using Transfer = void (*)(void* client, const void* captured, void* wanted,
                            std::uint32_t frames) noexcept;
  /// The stream has died, on a thread of the library.
  using Died = void (*)(void* client) noexcept;

  CubebStream(std::shared_ptr<CubebConnection> connection, Direction direction, void* client,
              Transfer transfer, Died died)
      : connection_(std::move(connection)),
        direction_(direction),
        client_(client),
        transfer_(transfer),
        died_(died) {}

  /// Stops and destroys; what is queued for output is dropped.
  ~CubebStream();
  CubebStream(const CubebStream&) = delete;
  CubebStream& operator=(const CubebStream&) = delete;

  /// Makes the stream, once; an input is started as well. A stream that died meanwhile counts as
  /// not opened, and `died` is not called for it. A failure breaks the connection.
  [[nodiscard]] AudioStatus open(std::uint32_t latencyFrames);

  [[nodiscard]] AudioStatus start();
  [[nodiscard]] AudioStatus stop();

  /// Frames heard; the last known number when the library does not tell. Never more than the
  /// device must have taken out of the stream's buffer.
  [[nodiscard]] std::uint64_t position();

 private:
  enum class Life { kOpening, kOpen, kDead };

  static long transferCallback(cubeb_stream* stream, void* user, const void* input, void* output,
                               long frames);
  static void stateCallback(cubeb_stream* stream, void* user, cubeb_state state);

  // Fixed after construction.
  const std::shared_ptr<CubebConnection> connection_;
  const Direction direction_;
  void* const client_;
  const Transfer transfer_;
  const Died died_;

  // Becomes kOpen by open(), kDead by the library's threads; never leaves kDead.
  std::atomic<Life> life_{Life::kOpening};

  // Frames that the device has given or taken. Only writer: the library's audio thread; a count
  // alone, so relaxed.
  std::atomic<std::uint64_t> transferred_{0};

  // Control thread only.
  cubeb_stream* stream_ = nullptr;
  std::uint32_t latencyFrames_ = 0;
  std::uint64_t position_ = 0;
};

/// The status for a result of the library.
[[nodiscard]] AudioStatus statusOfCubeb(int result);

}  // namespace platform
