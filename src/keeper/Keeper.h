#pragma once

#include <chrono>
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
  struct Settings {
    std::string dataDirectory;           ///< see platform::userDataDirectory()
    std::chrono::milliseconds patience;  ///< between two tries on a full disk
  };

  Keeper(std::unique_ptr<platform::DescriptorChannel> program, Settings settings);

  /// Takes messages until the program has ended. Sleeps between them. Nothing but the end of the
  /// connection is taken for the program's end: a message that is lost is less than a running
  /// program's recordings.
  void listen();
  /// Writes what would be lost; false if some of it must wait for room on the disk.
  [[nodiscard]] bool recover();
  /// The same until nothing waits any more.
  void recoverAll();

  /// Number of documents kept.
  [[nodiscard]] std::size_t size() const { return recordings_.size(); }

 private:
  void take(const KeeperMessage& message, std::vector<int> descriptors);

  const std::unique_ptr<platform::DescriptorChannel> program_;
  const Settings settings_;
  std::map<std::uint64_t, KeptRecording> recordings_;  // by the number of their document
};
