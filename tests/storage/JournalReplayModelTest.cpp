#include <gtest/gtest.h>

#include <unistd.h>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/files/PosixFile.h"
#include "storage/BlockBufferPair.h"
#include "storage/JournalReplay.h"
#include "storage/RandomBlockSteps.h"

namespace {

using support::BlockBufferPair;
using support::BlockSteps;
using support::PlainBlockBuffer;

/// Where each stretch of a recording is in the file, in the order of addresses; neighbours joined.
struct Content {
  std::map<std::uint64_t, std::pair<std::uint64_t, std::uint64_t>> stretches;
  std::uint64_t length = 0;

  friend bool operator==(const Content&, const Content&) = default;
};

Content contentOf(const std::vector<OVBlock>& blocks, std::uint64_t length) {
  std::map<std::uint64_t, OVBlock> byAddress;
  for (const OVBlock& block : blocks) {
    if (block.linear_addr_start() < block.end() && block.linear_addr_start() < length) {
      byAddress.emplace(block.linear_addr_start(), block);
    }
  }
  Content content;
  content.length = length;
  for (const auto& [address, block] : byAddress) {
    const std::uint64_t size = std::min(block.end(), length) - address;
    if (!content.stretches.empty()) {
      auto& [start, last] = *content.stretches.rbegin();
      auto& [place, count] = last;
      if (start + count == address && place + count == block.file_offset_start()) {
        count += size;
        continue;
      }
    }
    content.stretches[address] = {block.file_offset_start(), size};
  }
  return content;
}

Content contentOf(const PlainBlockBuffer& model) {
  return contentOf(model.live.blocks, model.live.fillSize);
}

Content contentOf(const JournalReplay& replay) {
  return contentOf(replay.list().blocks(), replay.fillSize());
}

/// A buffer with a journal, and its model. The journal begins after some steps and renews its state
/// after this many bytes of records.
template <unsigned kBeginsAfter, unsigned kRecordBytes>
class JournaledPair : public BlockBufferPair {
 public:
  static constexpr const char* kName = "JournaledPair";

  JournaledPair() {
    files_.beforeSizeChanges([this](std::uint64_t size) { fileIsCut(size); });
  }

  void apply(const modeltest::Step& step) {
    if (steps_++ == kBeginsAfter) {
      begin();
    }
    instants_.clear();
    noteInstant(model());
    if (step.what == "write" && step.a <= support::kHighestAddress - step.b) {
      PlainBlockBuffer unmerged = model();  // a kill may come before neighbours are merged
      unmerged.map(OVBlock(step.a, unmerged.file.size(), step.b));
      noteInstant(unmerged);
    }
    BlockBufferPair::apply(step);
    noteInstant(model());
  }

  std::string difference() {
    modeltest::Comparison comparison;
    comparison.tell("bytes cut off that the journal maps", std::exchange(lostBytes_, 0), 0U);
    if (journal_ && isCompared()) {
      compareReplay(comparison);
    } else {
      records_ = std::numeric_limits<unsigned>::max();
    }
    return comparison.text();
  }

 private:
  static constexpr unsigned kAlwaysCompared = 200;  // steps
  static constexpr unsigned kComparedAfter = 50;

  // A long journal is not replayed after every step.
  [[nodiscard]] bool isCompared() const {
    return steps_ < kAlwaysCompared || steps_ % kComparedAfter == 0;
  }

  void noteInstant(const PlainBlockBuffer& model) {
    if (isCompared()) {
      instants_.push_back(contentOf(model));
    }
  }

  // A kill may come right after the cut.
  void fileIsCut(std::uint64_t size) {
    if (journal_ && isCompared()) {
      auto replay = JournalReplay::begin(*journal_);
      if (replay) {
        replay->run();
        lostBytes_ += std::max(replay->list().endInFile(), size) - size;
      }
    }
  }

  void begin() {
    BlockJournal* const journal =
        real().beginJournal({.created = 1, .recoveredFrom = {}, .recordsPerState = kRecordBytes});
    if (journal != nullptr) {
      journal_.emplace(::dup(journal->descriptor()));
    }
  }

  // After the last record the list is the buffer's. After each record that the last step added, the
  // recording is as it was at one of the step's instants.
  void compareReplay(modeltest::Comparison& comparison) {
    auto begun = JournalReplay::begin(*journal_);
    comparison.tell("replay begins", static_cast<bool>(begun), true);
    if (!begun) {
      return;
    }
    JournalReplay& replay = *begun;
    unsigned records = 0;
    while (replay.step()) {
      if (++records > records_) {
        comparison.tell(
            "cut off after record " + std::to_string(records),
            std::find(instants_.begin(), instants_.end(), contentOf(replay)) != instants_.end(),
            true);
      }
    }
    records_ = records;
    comparison.tellSequence("list replayed", replay.list().blocks(), model().live.blocks);
    comparison.tell("length replayed", replay.fillSize(), model().live.fillSize);
  }

  std::optional<platform::PosixFile> journal_;
  std::vector<Content> instants_;
  std::uint64_t lostBytes_ = 0;  // in the last step
  unsigned steps_ = 0;
  unsigned records_ = 0;  // at the step before; the highest number if that was not compared
};

class JournalReplayModelTest : public testing::TestWithParam<BlockSteps> {
 protected:
  template <typename Pair>
  void expectTheSame() {
    const BlockSteps& steps = GetParam();
    const auto draw = [&steps](std::mt19937_64& random, const Pair& pair) {
      return support::drawStep(steps, random, pair.model());
    };
    // Each difference() replays all records, and each pair has memory of its own.
    EXPECT_TRUE(
        modeltest::holds<Pair>((steps.sequences + 9) / 10, std::min(steps.operations, 800U), draw));
  }
};

TEST_P(JournalReplayModelTest, RestoresTheListWhereverItIsCutOff) {
  expectTheSame<JournaledPair<0, 1 << 20>>();
}

TEST_P(JournalReplayModelTest, RestoresTheListFromStatesRenewedAfterFewRecords) {
  expectTheSame<JournaledPair<0, 160>>();
}

TEST_P(JournalReplayModelTest, RestoresTheListFromAJournalBegunLater) {
  expectTheSame<JournaledPair<15, 1 << 20>>();
}

INSTANTIATE_TEST_SUITE_P(Shapes, JournalReplayModelTest, support::allBlockSteps(),
                         [](const auto& steps) { return support::nameOfSteps(steps); });

}  // namespace
