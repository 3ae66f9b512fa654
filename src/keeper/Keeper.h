#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "keeper/KeptRecording.h"
#include "platform/process/DescriptorChannel.h"
#include "recovery/KeeperMessage.h"

/// Holds the audio and the journals of a program's open documents, and writes those that would be
/// lost into the user's data directory once the program has ended.
///
/// Threads: one. Real-time: not safe.
class Keeper {
 public:
  /// For the data directory see platform::userDataDirectory().
  Keeper(std::unique_ptr<platform::DescriptorChannel> program, std::string dataDirectory);

  /// Takes messages until the program has ended. Sleeps between them. Nothing but the end of the
  /// connection is taken for the program's end: a message that is lost is less than a running
  /// program's recordings.
  void listen();
  /// Writes what would be lost; false if some of it must wait for room on the disk.
  [[nodiscard]] bool recover();

  /// Whether a recording is being moved: what is not in its file yet ends with the keeper.
  [[nodiscard]] bool isMoving() const;

  /// Number of documents kept.
  [[nodiscard]] std::size_t size() const { return recordings_.size(); }

 private:
  void take(const KeeperMessage& message, const std::vector<int>& descriptors);

  const std::unique_ptr<platform::DescriptorChannel> program_;
  const std::string dataDirectory_;
  std::unique_ptr<RecoveredFolder> folder_;            // null until it could be opened
  std::map<std::uint64_t, KeptRecording> recordings_;  // by the number of their document
};
