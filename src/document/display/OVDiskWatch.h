#pragma once

#include <cstdint>
#include <memory>

#include "document/display/OVDiskLimits.h"
#include "platform/base/Result.h"
#include "platform/files/FreeSpace.h"
#include "platform/mainloop/Timer.h"

class OVDocumentAudio;
class OVDocumentLife;
class OVNotices;

/// Looks every few seconds of a recording how long the disk of its temporary file will last, and
/// tells it in the line of notices, see OVDiskLimits. The last minute stays there until the
/// recording ends or space is free again. All documents that record into the same folder fill the
/// disk together.
///
/// The looks of all documents run one after the other on a background queue, at most one of each
/// document is queued, and nothing waits for them: a network folder that does not answer blocks one
/// background thread. Where the space cannot be read nothing is told, but one line is logged.
///
/// Threads: main. Real-time: not safe.
class OVDiskWatch {
 public:
  static constexpr double kSecondsBetweenLooks = 5.0;

  /// All outlive it.
  OVDiskWatch(const OVDocumentLife& life, const OVDocumentAudio& audio, OVNotices& notices,
              double secondsBetweenLooks = kSecondsBetweenLooks)
      : life_(life), audio_(audio), notices_(notices), secondsBetweenLooks_(secondsBetweenLooks) {}
  ~OVDiskWatch();
  OVDiskWatch(const OVDiskWatch&) = delete;
  OVDiskWatch& operator=(const OVDiskWatch&) = delete;

  /// A recording has begun or ended. Its first look follows at once.
  void setRecording(bool recording);

  /// Tick of the timer; does nothing while the last look has no answer.
  void look();
  [[nodiscard]] bool isRunning() const { return timer_ != nullptr; }

 private:
  using Space = platform::Result<platform::DiskSpace>;

  void looked(std::uint64_t recording, const std::string& folder, const Space& space);
  void tell(double secondsLeft, const std::string& folder);
  [[nodiscard]] static double bytesPerSecondInto(const std::string& folder);

  const OVDocumentLife& life_;
  const OVDocumentAudio& audio_;
  OVNotices& notices_;
  const double secondsBetweenLooks_;
  OVDiskLimits limits_;
  std::unique_ptr<platform::Timer> timer_;  // while recording
  std::uint64_t recording_ = 0;             // tells recordings apart
  bool isLooking_ = false;
  bool hasToldFailure_ = false;
};
