#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "keeper/RecoveredFolder.h"
#include "platform/files/File.h"
#include "storage/OVBlock.h"

/// The recording of one document: its audio and its journal.
///
/// Threads: one at a time. Real-time: not safe.
class KeptRecording {
 public:
  KeptRecording(std::unique_ptr<platform::File> audio, std::unique_ptr<platform::File> journal);

  enum class Outcome {
    done,     ///< written, or there was nothing to lose
    waiting,  ///< no room on the disk: try again later
    failed,   ///< it cannot be recovered, or stays as a whole part file
  };
  /// Writes the recording as its document last had it into the folder, if it would be lost
  /// otherwise. Holes, and what the disk never took, are silent. While there is no room for all of
  /// it, an empty part file says that it is still being written.
  ///
  /// The program that wrote audio and journal must have ended.
  [[nodiscard]] Outcome recover(RecoveredFolder& folder);

 private:
  [[nodiscard]] int write(RecoveredFolder& folder);
  [[nodiscard]] int writePart(const std::string& recorded);
  [[nodiscard]] int copy(const OVBlock& block, std::uint64_t headerBytes);

  std::unique_ptr<platform::File> audio_;
  std::unique_ptr<platform::File> journal_;
  std::vector<OVBlock> blocks_;  // the reachable ones, cut at the recording's end
  std::uint64_t length_ = 0;     // bytes, whole frames
  std::optional<PartFile> part_;
};
