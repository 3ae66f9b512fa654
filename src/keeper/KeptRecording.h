#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "keeper/RecoveredFolder.h"
#include "platform/files/File.h"
#include "storage/JournalReplay.h"
#include "storage/OVBlock.h"

/// The recording of one document: its audio and its journal.
///
/// It is copied into the folder. On a full disk that holds its audio as well, which is where a
/// recording ends that has filled it, it is moved instead: what the recording does not use is given
/// back first, then each stretch before it is written. From then on nothing else has it, so no
/// error ends the writing: what cannot be written is left out, and the part file stays.
///
/// Threads: one at a time. Real-time: not safe.
class KeptRecording {
 public:
  KeptRecording(std::unique_ptr<platform::File> audio, std::unique_ptr<platform::File> journal);

  enum class Outcome {
    done,     ///< written, or there was nothing to lose
    waiting,  ///< no room on the disk: try again later
    failed,   ///< it cannot be recovered, or what there is of it stays as a part file
  };
  /// Writes the recording as its document last had it into the folder, if it would be lost
  /// otherwise. Holes, and what the disk never took, are silent. While there is no room for it, a
  /// part file of its length, which takes none, says so.
  ///
  /// The program that wrote audio and journal must have ended.
  [[nodiscard]] Outcome recover(RecoveredFolder& folder);

  /// Whether it is being moved: then nothing else has what is not in its part file yet.
  [[nodiscard]] bool isMoving() const { return way_ == Way::move; }

 private:
  enum class Way { copy, move };

  [[nodiscard]] int write(RecoveredFolder& folder);
  [[nodiscard]] int replay();
  [[nodiscard]] int createPart(RecoveredFolder& folder);
  [[nodiscard]] int writePart();
  [[nodiscard]] int takeRoom();
  [[nodiscard]] bool canMove();
  [[nodiscard]] int writeSound();
  [[nodiscard]] int writeHeader();
  [[nodiscard]] int writeHeld();
  [[nodiscard]] int orLost(int error);
  [[nodiscard]] bool readNext();
  void giveBack(std::uint64_t from, std::uint64_t byteCount);
  [[nodiscard]] std::uint64_t fileBytes() const { return header_.size() + length_; }

  std::unique_ptr<platform::File> audio_;
  std::unique_ptr<platform::File> journal_;
  std::optional<PartFile> part_;

  // What is to be written; empty and 0 for nothing.
  JournalOrigin origin_;
  std::vector<OVBlock> blocks_;  // the reachable ones, cut at the recording's end
  std::uint64_t length_ = 0;     // bytes, whole frames
  std::vector<std::byte> header_;

  // A stretch that was read and not yet written. While it is moved, the audio has it no more.
  struct Held {
    std::vector<std::byte> bytes;  // at least the count
    std::uint64_t count = 0;
    std::uint64_t to = 0;  // address in the recording
  };

  // How far the writing has come.
  Way way_ = Way::copy;
  std::size_t block_ = 0;                          // the one that is read from
  std::uint64_t inBlock_ = 0;                      // bytes of it that were read
  std::map<std::uint64_t, std::uint64_t> unread_;  // of the audio: begins and ends; only if moved
  bool hasHeader_ = false;
  int lost_ = 0;                  // errno for which something was left out; 0 for none
  std::deque<Held> held_;         // the oldest first
  std::vector<std::byte> spare_;  // memory for the next one
};
