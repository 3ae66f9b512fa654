#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/files/TemporaryFiles.h"

namespace support {

/// Temporary files for recordings of numbered frames (NumberedFrames.h) that store nothing but
/// which stretches of numbers were written, so that a day of sound takes no room: every frame
/// written is checked to be the successor of the one before it in the same write, and every frame
/// read is computed. They are written only at their end, as recordings are; what is not expected is
/// counted as a fault. They have a descriptor, of a file without content.
///
/// All files of one object share its counts. It must outlive them. Install it with
/// platform::Installed.
///
/// Threads: any, also while files are in use.
class ComputedTemporaryFiles : public platform::TemporaryFiles {
 public:
  /// Frames written so far that follow each other, of all files.
  [[nodiscard]] std::uint64_t framesWritten() const;
  /// Frames that do not follow the one before them in the same write, and calls that no recording
  /// makes.
  [[nodiscard]] std::uint64_t faults() const;
  /// Stretches of consecutive numbers.
  [[nodiscard]] std::uint64_t stretches() const;

  [[nodiscard]] std::string directory() const override { return "/nowhere/"; }
  [[nodiscard]] Created createUnlinked(const std::string& pathTemplate) override;
  /// No file of this name exists on disk.
  [[nodiscard]] Created createNamed(const std::string& pathTemplate) override {
    return createUnlinked(pathTemplate);
  }

 private:
  class ComputedFile;

  mutable std::mutex mutex_;  // guards everything below
  std::uint64_t framesWritten_ = 0;
  std::uint64_t faults_ = 0;
  std::uint64_t stretches_ = 0;
};

}  // namespace support
