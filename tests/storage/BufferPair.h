#pragma once

#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "storage/OVAudioBufferInterface.h"
#include "storage/TransferHelpers.h"
#include "support/ModelTest.h"
#include "support/fakes/FailingTemporaryFiles.h"
#include "support/fakes/RecordingDelegate.h"

namespace storagetest {

inline constexpr std::uint64_t kHighestAddress = std::numeric_limits<std::uint64_t>::max();

/// Equal, or both not a number: which one a sum of two such gives is the compiler's choice.
inline bool isSameLevel(double left, double right) {
  return left == right || (std::isnan(left) && std::isnan(right));
}

/// What the pairs of a real buffer and its model share: files in memory, writes of drawn bytes, and
/// a delegate whose calls are compared, too.
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

  /// Writes `size` bytes of the pattern `seed` into the real buffer and gives them.
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

}  // namespace storagetest
