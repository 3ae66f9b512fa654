// The real program is killed at random moments of whatever it does. What its keeper wrote is
// compared with the temporary file and the journal, sample by sample. scripts/test --crashes sets
// the number of moments.

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <random>

#include <sys/resource.h>

#include "acceptance/KilledProgramTest.h"
#include "support/programs/AudioFileTools.h"

using namespace support;

namespace {

namespace fs = std::filesystem;

unsigned moments() {
  const char* const number = std::getenv("ORVO_TEST_CRASHES");  // NOLINT(concurrency-mt-unsafe)
  return number == nullptr ? 1 : static_cast<unsigned>(std::strtoul(number, nullptr, 10));
}

class KilledAnywhere : public KilledProgramTest {
 protected:
  static constexpr std::size_t kImported = 40 * kFramesPerSecond;  // frames

  KilledAnywhere() {
    const rlimit none{0, 0};
    ::setrlimit(RLIMIT_CORE, &none);  // inherited by the program
  }

  /// Calls `doAndKill` for each moment with a new program that has recorded something.
  void atEachMoment(const std::function<void()>& doAndKill) {
    for (unsigned seed = 1; seed <= moments(); ++seed) {
      SCOPED_TRACE("moment " + std::to_string(seed));
      random_.seed(seed);
      fs::remove_all(data_ + "/orvo");
      fs::remove_all(documents_);
      fs::create_directory(documents_);
      ASSERT_NO_FATAL_FAILURE(startWithKeeper());
      ASSERT_NO_FATAL_FAILURE(record(signalOfSeconds(0.2, 200 + seed)));
      before_ = orvo_->recorded();
      ASSERT_NO_FATAL_FAILURE(doAndKill());
      ASSERT_FALSE(HasFailure());
      orvo_.reset();
      signal_.reset();
    }
  }

  [[nodiscard]] std::uint64_t below(std::uint64_t end) {
    return std::uniform_int_distribution<std::uint64_t>(0, end - 1)(random_);
  }

  [[nodiscard]] int anySignal() {
    constexpr std::array kSignals{SIGKILL, SIGABRT, SIGSEGV, SIGBUS};
    return kSignals[below(kSignals.size())];
  }

  /// Lets the program go on for a random time below this.
  void letRun(std::chrono::microseconds longest) {
    const auto end = std::chrono::steady_clock::now() +
                     std::chrono::microseconds(below(static_cast<std::uint64_t>(longest.count())));
    while (std::chrono::steady_clock::now() < end) {
    }
  }

  /// Kills the program and expects the recovered file to hold what the journal says, or that there
  /// is none if it says that nothing would be lost.
  void killAndCompare() {
    ASSERT_NO_FATAL_FAILURE(endBy(anySignal()));
    ASSERT_EQ(journals(), 1U);
    found_ = recoveredAudio();
    const Samples wanted = expected();
    expectNothingElseIsLeft(wanted.empty() ? 0 : 1);
    EXPECT_EQ(found_.size(), wanted.size());
    EXPECT_TRUE(found_ == wanted);
  }

  /// The same for a program that may have closed its document already.
  void killInItsEnd(pid_t keeper) {
    orvo_->process().signal(anySignal());
    ASSERT_TRUE(orvo_->process().waitForExit());
    ASSERT_TRUE(eventually([&] { return hasEnded(keeper); }));
    const Samples wanted = expected();
    expectNothingElseIsLeft(wanted.empty() ? 0 : 1);
    EXPECT_TRUE(recoveredAudio() == wanted);
  }

  /// Bytes of the file that is being saved, under whatever name.
  [[nodiscard]] std::uint64_t savedBytes() const {
    std::uint64_t bytes = 0;
    std::error_code gone;
    for (const auto& entry : fs::directory_iterator(documents_, gone)) {
      if (entry.path().filename() != "imported.wav") {
        bytes = std::max<std::uint64_t>(bytes, entry.file_size(gone));
      }
    }
    return gone ? 0 : bytes;
  }
  [[nodiscard]] bool isSaved() const { return fs::exists(document("saved.wav")); }

  /// What was recovered begins with what was there before, and has all that was written.
  void expectAllThatWasWritten() const { expectAllOf(written(), found_); }

  /// From now on, for some seconds, there is a signal to record.
  void beginSignal() {
    ASSERT_TRUE(writeRaw(folder_.file("signal"), signalOfSeconds(5.0, 301)));
    signal_ = server_->playIntoFeed(folder_.file("signal"));
    ASSERT_NE(signal_, nullptr);
  }

  /// Begins an import, which takes a while.
  void beginImport() {
    imported_ = noise(kImported, 300);
    ASSERT_TRUE(writeWav(document("imported.wav"), imported_));
    const Window shown = openPanel("ctrl+i", "Import");
    ASSERT_FALSE(shown.empty());
    ASSERT_NO_FATAL_FAILURE(chooseFile(document("imported.wav")));
  }

  std::mt19937_64 random_;
  std::unique_ptr<ChildProcess> signal_;
  Samples before_;
  Samples imported_;
  Samples found_;
};

TEST_F(KilledAnywhere, WhileItRecords) {
  atEachMoment([this] {
    ASSERT_NO_FATAL_FAILURE(beginSignal());
    ASSERT_NO_FATAL_FAILURE(beginRecording());
    ASSERT_TRUE(orvo_->waitUntilRecorded(before_.size() / kChannels + below(kFramesPerSecond)));
    letRun(std::chrono::milliseconds(20));
    ASSERT_NO_FATAL_FAILURE(killAndCompare());
    expectAllThatWasWritten();
  });
}

TEST_F(KilledAnywhere, WhileItRecordsOverTheMiddle) {
  atEachMoment([this] {
    ASSERT_TRUE(screen_->pressKey("Return"));  // to the start
    ASSERT_NO_FATAL_FAILURE(beginSignal());
    ASSERT_NO_FATAL_FAILURE(beginRecording());
    ASSERT_TRUE(orvo_->waitUntilRecorded(before_.size() / kChannels + below(kFramesPerSecond)));
    letRun(std::chrono::milliseconds(20));
    ASSERT_NO_FATAL_FAILURE(killAndCompare());
    EXPECT_GE(found_.size(), before_.size());
  });
}

TEST_F(KilledAnywhere, WhileItEdits) {
  constexpr int kClickY = 120;
  constexpr int kWidth = 640;
  constexpr std::array kKeys{"ctrl+z", "ctrl+shift+z", "ctrl+z", "Return"};
  atEachMoment([this, kKeys] {
    for (std::uint64_t steps = below(4) + 1; steps > 0; --steps) {
      if (below(2) == 0) {
        ASSERT_TRUE(orvo_->click(*screen_, static_cast<int>(below(kWidth - 40)) + 20, kClickY));
        ASSERT_NO_FATAL_FAILURE(chooseEdit(static_cast<int>(below(3)) + 1));
      } else {
        ASSERT_TRUE(screen_->pressKey(kKeys[below(kKeys.size())]));
      }
    }
    letRun(std::chrono::milliseconds(20));
    ASSERT_NO_FATAL_FAILURE(killAndCompare());
  });
}

TEST_F(KilledAnywhere, WhileItImports) {
  atEachMoment([this] {
    ASSERT_NO_FATAL_FAILURE(beginImport());
    const std::uint64_t frames = before_.size() / kChannels + 1 + below(kImported);
    ASSERT_TRUE(orvo_->waitUntilRecorded(frames));
    letRun(std::chrono::milliseconds(2));
    ASSERT_NO_FATAL_FAILURE(killAndCompare());
    // The import stands where the marker was, as far as it had come.
    const Samples all = written();
    ASSERT_GE(found_.size(), before_.size());
    EXPECT_LE(all.size(), before_.size() + imported_.size());
    EXPECT_TRUE(std::equal(all.begin() + static_cast<std::ptrdiff_t>(before_.size()), all.end(),
                           imported_.begin()));
  });
}

TEST_F(KilledAnywhere, WhileItSaves) {
  atEachMoment([this] {
    ASSERT_NO_FATAL_FAILURE(beginImport());
    ASSERT_TRUE(orvo_->waitUntilRecorded((before_.size() / kChannels) + kImported));
    const Window shown = openPanel("ctrl+shift+s", "Save As");  // once it is imported
    ASSERT_FALSE(shown.empty());
    ASSERT_NO_FATAL_FAILURE(chooseKind(Kind::wav));
    hold();
    const Samples whole = expected();
    ASSERT_NO_FATAL_FAILURE(chooseFile(document("saved.wav")));
    const std::uint64_t bytes = below(kImported * 4 * 6 / 5);
    ASSERT_TRUE(eventually([&] { return savedBytes() >= bytes || isSaved(); }));
    letRun(std::chrono::milliseconds(2));
    ASSERT_NO_FATAL_FAILURE(killAndCompare());
    if (found_.empty()) {
      expectHolds(document("saved.wav"), whole);
    } else {
      EXPECT_TRUE(found_ == whole);
    }
  });
}

TEST_F(KilledAnywhere, WhileItQuits) {
  atEachMoment([this] {
    hold();
    const Samples whole = expected();
    const pid_t keeper = orvo_->keeperPid();
    ASSERT_TRUE(screen_->pressKey("ctrl+q"));
    const bool discards = below(3) > 0;
    if (discards) {
      ASSERT_TRUE(eventually([&] { return alerts().size() == 1; }));
      const Window question = alerts().front();
      ASSERT_TRUE(screen_->activate(question));
      ASSERT_TRUE(screen_->pressKey("Tab") && screen_->pressKey("space"));
    }
    letRun(std::chrono::milliseconds(40));
    ASSERT_NO_FATAL_FAILURE(killInItsEnd(keeper));
    if (!discards) {
      EXPECT_TRUE(recoveredAudio() == whole);
    } else if (!recovered().empty()) {  // it was killed before it took the answer
      EXPECT_TRUE(recoveredAudio() == whole);
    }
  });
}

}  // namespace
