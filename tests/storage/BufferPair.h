#pragma once

#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "storage/OVAudioBufferInterface.h"
#include "support/ModelTest.h"
#include "support/TransferHelpers.h"
#include "support/fakes/FailingTemporaryFiles.h"
#include "support/fakes/RecordingDelegate.h"

namespace support {

inline constexpr std::uint64_t kHighestAddress = std::numeric_limits<std::uint64_t>::max();

/// Equal, or both NaN: the compiler decides which NaN a sum of two NaNs is.
inline bool isSameLevel(double left, double right) {
  return left == right || (std::isnan(left) && std::isnan(right));
}

/// The common part of pairs of a real buffer and its model: files in memory, writes of generated
/// bytes, and a delegate whose calls are compared too.
///
/// Threads: one.
class BufferPair {
 public:
  BufferPair(const BufferPair&) = delete;
  BufferPair& operator=(const BufferPair&) = delete;

 protected:
  BufferPair() = default;
  ~BufferPair() = default;

  void watch(OVAudioBufferInterface& buffer) { buffer.setDelegate(delegate_); }

  /// Writes `size` bytes of the pattern `seed` into the real buffer and returns them.
  Bytes writeReal(OVAudioBufferInterface& buffer, std::uint64_t offset, std::uint64_t size,
                  std::uint64_t seed) {
    Bytes bytes = pattern(size, static_cast<unsigned>(seed));
    write(buffer, bytes, offset);
    expected_.push_back({bytes.data(), offset, static_cast<std::uint32_t>(size), 0});
    return bytes;
  }

  void compareDelegateCalls(modeltest::Comparison& comparison) const {
    comparison.tellSequence("delegate calls", delegate_->calls(), expected_);
  }

  support::FailingTemporaryFiles files_;

 private:
  platform::Installed<platform::TemporaryFiles>::Scope installation_{files_};
  const std::shared_ptr<support::RecordingDelegate> delegate_ =
      std::make_shared<support::RecordingDelegate>();
  std::vector<support::DelegateCall> expected_;
};

}  // namespace support
