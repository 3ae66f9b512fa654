#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <QDateTime>

#include "platform/files/PrivateFolder.h"

/// A recording that was kept when the program ended unexpectedly: a file in the recovered folder.
///
/// Its name is "Orvo recording 2026-11-21 14.02.31.caf", the local time at which its first
/// recording began, with " 2", " 3" before the suffix for further ones of the same second. While it
/// is being written, ".part" follows the suffix and the writer holds the file's lock; where there
/// are no locks, it has changed within the last minute.
struct OVRecoveredFile {
  enum class State {
    whole,
    beingWritten,
    waitingForRoom,  ///< its writer waits until its disk has room for it: it has a length only
    damaged,  ///< shorter than its header says, without a usable header, or left by its writer
  };

  std::string path;
  QDateTime start;              ///< local time, from the name; otherwise the time of the file
  std::uint64_t byteCount = 0;  ///< length of the file
  std::uint64_t frames = 0;     ///< frames of sound in it; 0 if unknown
  State state = State::whole;
  std::uint64_t number = 0;  ///< tells it from another file that replaces it

  /// Holds the file's lock, so that neither another document nor another running Orvo takes the
  /// file. Null while its writer has it.
  std::shared_ptr<platform::PrivateFile> claim;
};

/// Whether the file's writer still has it.
[[nodiscard]] constexpr bool isBeingMade(OVRecoveredFile::State state) {
  return state == OVRecoveredFile::State::beingWritten ||
         state == OVRecoveredFile::State::waitingForRoom;
}

/// Most files that are listed at a time, the latest; each costs a descriptor.
inline constexpr std::size_t kMaxRecoveredFiles = 100;

struct OVRecoveredListing {
  std::vector<OVRecoveredFile> files;  ///< the oldest first
  std::size_t lockedElsewhere = 0;     ///< files left out because others hold or renamed them
  int error = 0;                       ///< errno if the folder cannot be used
  std::string nearest;  ///< the folder, or the first above it that exists: it tells of changes
};

/// The folder: orvo/recovered in platform::userDataDirectory(); empty if there is none.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] std::string recoveredFolder();

/// Lists the folder and claims every file that is not being written. Foreign files, links and files
/// that someone else has claimed are left out, and so is a file that is just being replaced: only
/// the new one is listed. A missing folder is empty, and not made. One that others may enter is
/// closed to them; one that is a link or belongs to someone else is not used.
///
/// @param held  files listed before and still claimed: listed again as they are, if still there
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] OVRecoveredListing recoveredFilesIn(const std::string& folder,
                                                  const std::vector<OVRecoveredFile>& held = {});

/// The time in the name of a recovered file; invalid if there is none.
[[nodiscard]] QDateTime startInName(const std::string& name);

/// What a CAF file of the working format holds.
struct OVRecoveredContent {
  std::uint64_t frames = 0;  ///< 0 without a usable header
  bool isWhole = false;      ///< all that the header announces is there
};

/// Looks at the header only; the sound is read by OVAudioFileReader.
[[nodiscard]] OVRecoveredContent recoveredContentOf(platform::File& file);
