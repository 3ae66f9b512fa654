#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/files/TemporaryFiles.h"
#include "recovery/KeeperConnection.h"
#include "storage/BlockJournal.h"
#include "support/programs/ChildProcess.h"

/// Long recordings that cost little, and what the keeper takes to write them.
///
/// Threads: one.
namespace support {

/// A number of a process as the system reports it; 0 once it has ended.
inline std::uint64_t statusOf(int process, const std::string& key) {
  std::ifstream file("/proc/" + std::to_string(process) + "/status");
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with(key + ":")) {
      return std::stoull(line.substr(key.size() + 1));
    }
  }
  return 0;
}

/// An edited recording of so many pieces of this many bytes, whose neighbours in the recording are
/// none in the file. Each begins with its number, in 8 bytes; the rest is a hole, which takes no
/// room on the disk. The number of pieces is 1 or even.
struct LongRecording {
  LongRecording(std::uint64_t pieces, std::uint64_t bytesOfAPiece) {
    const auto files = platform::temporaryFiles();
    auto created = files->createUnlinked(files->directory() + "orvoXXXXXX");
    audio = std::move(created->file);
    EXPECT_EQ(audio->setSize(pieces * bytesOfAPiece), 0);
    std::vector<OVBlock> blocks;
    for (std::uint64_t number = 0; number < pieces; ++number) {
      const std::uint64_t place = (pieces > 1 ? number ^ 1U : number) * bytesOfAPiece;
      EXPECT_EQ(audio->writeAt(&number, sizeof number, place).byteCount, sizeof number);
      blocks.emplace_back(number * bytesOfAPiece, place, bytesOfAPiece);
    }
    journal = *BlockJournal::create({.created = 1'000'000'000, .recoveredFrom = {}});
    EXPECT_EQ(journal->prepareState(pieces), 0);
    EXPECT_TRUE(journal->writeState(BlockList(blocks), pieces * bytesOfAPiece));
    journal->setState(journal::State::edited);
  }

  std::unique_ptr<platform::File> audio;
  std::unique_ptr<BlockJournal> journal;
};

struct RecoveryCost {
  std::uint64_t peakKilobytes = 0;  ///< of the keeper's memory
  double seconds = 0.0;             ///< from the program's end to the keeper's
};

/// Lets a keeper write a recording into a data folder, as after the end of its program.
inline RecoveryCost recover(const LongRecording& recording, const std::string& dataFolder) {
  // The keeper inherits it; no other thread runs.
  ::setenv("XDG_DATA_HOME", dataFolder.c_str(), 1);  // NOLINT(concurrency-mt-unsafe)
  auto connection = std::make_unique<KeeperConnection>(ORVO_KEEPER);
  connection->start();
  connection->keep(
      1, {.audio = recording.audio->descriptor(), .journal = recording.journal->descriptor()});
  const int keeper = connection->keeperProcess();
  connection.reset();
  const auto begin = std::chrono::steady_clock::now();
  RecoveryCost cost;
  while (!hasEnded(keeper)) {
    cost.peakKilobytes = std::max(cost.peakKilobytes, statusOf(keeper, "VmHWM"));
  }
  cost.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
  return cost;
}

}  // namespace support
