// A program with documents is killed at random moments of random edits. What its keeper wrote is
// compared with a plain model of each document. scripts/test --crashes sets the number of moments.

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <memory>
#include <new>
#include <random>
#include <vector>

#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "keeper/KeptRecordings.h"
#include "recovery/KeeperConnection.h"
#include "storage/RandomBlockSteps.h"
#include "support/Eventually.h"
#include "support/TemporaryFolder.h"
#include "support/programs/ChildProcess.h"

namespace {

using modeltest::Step;
using support::BlockSteps;
using support::Bytes;
using support::PlainBlockBuffer;

constexpr std::int64_t kCreated = 1'000'000'000;  // 2001-09-09 01:46:40 UTC, of document 0
constexpr std::size_t kMaxDocuments = 10;
constexpr BlockSteps kSteps{"crash", 40'000, 8000, 8, 1, 80, false};

unsigned crashes() {
  const char* const number = std::getenv("ORVO_TEST_CRASHES");  // NOLINT(concurrency-mt-unsafe)
  return number == nullptr ? 5 : static_cast<unsigned>(std::strtoul(number, nullptr, 10));
}

/// How far the program has come, seen by both processes.
struct Progress {
  std::array<std::atomic<std::size_t>, kMaxDocuments> done{};  ///< steps of each document
  std::atomic<int> keeper{0};
};

void applyTo(PlainBlockBuffer& model, const Step& step) {
  if (step.what == "write") {
    model.write(support::pattern(step.b, static_cast<unsigned>(step.c)), step.a);
  } else if (step.what == "cutAfter") {
    model.cutAfter(step.a);
  } else if (step.what == "cutBefore") {
    model.cutBefore(step.a);
  } else if (step.what == "waypoint") {
    model.setWaypoint();
  } else if (step.what == "undo" && !model.waypoints.empty()) {
    model.undo();
  } else if (step.what == "redo") {
    model.redo();
  } else if (step.what == "rollBack" && model.position > 0) {
    model.rollBack();
  } else if (step.what == "optimize") {
    model.optimize();
  }
}

void applyTo(OVBlockBuffer& buffer, const Step& step) {
  if (step.what == "write") {
    support::write(buffer, support::pattern(step.b, static_cast<unsigned>(step.c)), step.a);
  } else if (step.what == "cutAfter") {
    buffer.cutoffBufferAfterPosition(step.a);
  } else if (step.what == "cutBefore") {
    buffer.cutoffBufferBeforePosition(step.a);
  } else if (step.what == "waypoint") {
    buffer.setWaypoint();
  } else if (step.what == "undo" && !buffer.waypointStack().empty()) {
    buffer.undo();
  } else if (step.what == "redo") {
    buffer.redo();
  } else if (step.what == "rollBack" && buffer.waypointPos() > 0) {
    buffer.rollBack();
  } else if (step.what == "optimize") {
    buffer.optimize();
  }
}

Bytes wholeOf(const PlainBlockBuffer& model) {
  Bytes all(model.live.fillSize / 8 * 8);
  for (std::size_t at = 0; at < all.size();) {
    const Bytes stretch = model.read(all.size() - at, at);
    std::copy(stretch.begin(), stretch.end(), all.begin() + static_cast<std::ptrdiff_t>(at));
    at += stretch.empty() ? 8 : stretch.size();
  }
  return all;
}

/// What may be recovered of a document that was killed in or after its step number `done`.
std::vector<Bytes> possible(const modeltest::Steps& steps, std::size_t done) {
  PlainBlockBuffer model;
  for (std::size_t i = 0; i < done; ++i) {
    applyTo(model, steps[i]);
  }
  std::vector<Bytes> all{wholeOf(model)};
  if (done < steps.size()) {
    const Step& next = steps[done];
    if (next.what == "write") {  // before neighbours are merged
      PlainBlockBuffer unmerged = model;
      unmerged.added = 0;
      applyTo(unmerged, next);
      all.push_back(wholeOf(unmerged));
    }
    applyTo(model, next);
    all.push_back(wholeOf(model));
  }
  return all;
}

modeltest::Steps drawSteps(unsigned seed) {
  std::mt19937_64 random(seed);
  PlainBlockBuffer model;
  modeltest::Steps steps;
  while (steps.size() < kSteps.operations) {
    const Step step = support::drawStep(kSteps, random, model);
    if (step.what == "cutBefore" && step.a * 8 > model.live.fillSize) {
      continue;  // the length would wrap, and no memory would hold what is compared
    }
    applyTo(model, step);
    steps.push_back(step);
  }
  return steps;
}

/// The program that is killed: it does one step of each document after the other.
[[noreturn]] void runProgram(const std::vector<modeltest::Steps>& documents, Progress& progress) {
  const rlimit none{0, 0};
  ::setrlimit(RLIMIT_CORE, &none);
  KeeperConnection keeper(ORVO_KEEPER);
  keeper.start();
  progress.keeper = keeper.keeperProcess();
  std::vector<std::shared_ptr<OVBlockBuffer>> buffers;
  for (std::size_t i = 0; i < documents.size(); ++i) {
    buffers.push_back(support::editedBuffer(kCreated + static_cast<std::int64_t>(i)));
    keeper.keep(
        i, {.audio = buffers[i]->fileDescriptor(), .journal = buffers[i]->journal()->descriptor()});
  }
  for (std::size_t step = 0; step < kSteps.operations; ++step) {
    for (std::size_t i = 0; i < documents.size(); ++i) {
      applyTo(*buffers[i], documents[i][step]);
      progress.done[i].store(step + 1);
    }
  }
  while (true) {
    ::pause();
  }
}

class CrashTest : public testing::TestWithParam<std::size_t> {
 protected:
  CrashTest() {
    ::setenv("TZ", "UTC", 1);  // NOLINT(concurrency-mt-unsafe): no other thread runs
  }

  /// Kills the program at a random moment, and returns once its keeper has ended.
  static void crash(const std::vector<modeltest::Steps>& documents, Progress& progress,
                    std::mt19937_64& random) {
    const pid_t program = ::fork();
    ASSERT_GE(program, 0);
    if (program == 0) {
      runProgram(documents, progress);
    }
    const std::size_t moment = modeltest::below(random, kSteps.operations);
    constexpr std::array kSignals{SIGKILL, SIGABRT, SIGSEGV, SIGBUS, SIGKILL};
    while (progress.done[0].load() < moment) {
      ASSERT_EQ(::waitpid(program, nullptr, WNOHANG), 0) << "it has ended by itself";
    }
    ::kill(program, kSignals[modeltest::below(random, kSignals.size())]);
    ASSERT_EQ(::waitpid(program, nullptr, 0), program);
    ASSERT_TRUE(support::eventually([&] { return support::hasEnded(progress.keeper); }));
  }

  static void expectRecovered(const std::string& folder,
                              const std::vector<modeltest::Steps>& documents,
                              const Progress& progress) {
    std::size_t files = 0;
    for (std::size_t i = 0; i < documents.size(); ++i) {
      std::string name = "Orvo recording 2001-09-09 01.46.40.caf";
      const std::string second = std::to_string(40 + i);
      name.replace(name.size() - 6, 2, second);
      const std::string path = support::recoveredPath(folder) + "/" + name;
      files += std::filesystem::exists(path) ? 1 : 0;
      const Bytes found = support::cafAudio(path);
      const auto expected = possible(documents[i], progress.done[i]);
      EXPECT_NE(std::find(expected.begin(), expected.end(), found), expected.end())
          << name << " has " << found.size() << " bytes, not " << expected.front().size() << " or "
          << expected.back().size() << ", after " << progress.done[i] << " steps";
    }
    EXPECT_EQ(support::recoveredNames(folder).size(), files);
  }
};

TEST_P(CrashTest, RecoversEveryDocumentAsItStood) {
  for (unsigned seed = 1; seed <= crashes(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const support::TemporaryFolder folder;
    ::setenv("XDG_DATA_HOME", folder.path().c_str(), 1);  // NOLINT(concurrency-mt-unsafe)
    std::vector<modeltest::Steps> documents;
    for (std::size_t i = 0; i < GetParam(); ++i) {
      documents.push_back(drawSteps(seed * 100 + static_cast<unsigned>(i)));
    }
    void* const shared = ::mmap(nullptr, sizeof(Progress), PROT_READ | PROT_WRITE,
                                MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(shared, MAP_FAILED);
    auto* const progress = new (shared) Progress;
    std::mt19937_64 random(seed);
    ASSERT_NO_FATAL_FAILURE(crash(documents, *progress, random));
    expectRecovered(folder.path(), documents, *progress);
    ::munmap(shared, sizeof(Progress));
  }
}

INSTANTIATE_TEST_SUITE_P(Documents, CrashTest, testing::Values(1, 3, 10),
                         [](const auto& documents) { return std::to_string(documents.param); });

}  // namespace
