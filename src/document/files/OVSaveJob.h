#pragma once

#include <cstdint>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <string>

#include "document/files/OVDiskShortage.h"
#include "platform/media/AudioFileTags.h"
#include "storage/OVAudioBufferInterface.h"

/// Writes a range of a buffer to an audio file: writes a file beside the target, syncs it, then
/// renames it over the target. A failed save leaves the target unchanged and no file beside it.
///
/// In place, for a file of the user's in a folder in which no file can be made: encodes the whole
/// audio in the temporary directory, copies the old file there, then writes over the target.
///
/// Threads: run() on any one thread; the buffer must not be edited meanwhile.
/// Real-time: not safe.
class OVSaveJob {
 public:
  struct Request {
    std::shared_ptr<OVAudioBufferInterface> buffer;
    std::uint64_t fromFrame = 0;
    std::uint64_t frameCount = 0;
    std::string path;                ///< of the target
    std::uint32_t outputFormat = 0;  ///< a kind of the file writer, 0 to 3
    std::shared_ptr<const platform::AudioFileTags> tags =
        std::make_shared<const platform::AudioFileTags>();  ///< never null
    /// Whether there is room for the file, as lookForRoom() reports; the job waits for it. May be
    /// invalid: then the job just begins.
    std::shared_future<std::optional<OVDiskShortage>> shortage = {};
    enum class Way { beside, inPlace } way = Way::beside;
  };

  struct Outcome {
    bool complete = false;  ///< the target holds the whole range
    bool told = false;      ///< the failure has been shown already
    int error = 0;          ///< errno of a failure that has not been shown; 0 for none
    /// There is no room: nothing was written, and nothing has been shown.
    std::optional<OVDiskShortage> shortage = {};
    /// Nothing was written: no file can be made beside the target, but it can be written in place.
    bool canBeInPlace = false;
    /// Nothing was written, since the user may not make files in this folder, the target's.
    std::string closedFolder = {};
    /// A copy of the old file if writing in place has damaged the target; otherwise empty.
    std::string copyOfOldFile = {};
    /// Frames that storage could not read. They are silent in a new file; an existing file is not
    /// replaced by a file with gaps.
    std::uint64_t unreadableFrames = 0;
  };

  /// Called after each chunk with the fraction written so far, 0 to 1.
  using Progress = std::function<void(double fraction)>;

  /// Frames read and written at a time: six seconds.
  static constexpr std::uint64_t kChunkFrames = platform::kFileChunkFrames;

  /// Looks on the global queue for the room that a request needs, by an estimate: beside the
  /// target, where the old file exists until the new one replaces it, so its space does not count
  /// as free; in place, in the temporary directory, and for what the target grows.
  [[nodiscard]] static std::shared_future<std::optional<OVDiskShortage>> lookForRoom(
      const Request& request);

  /// Throws nothing: if memory runs out, the save fails with ENOMEM.
  [[nodiscard]] static Outcome run(const Request& request, const Progress& progress);
};
