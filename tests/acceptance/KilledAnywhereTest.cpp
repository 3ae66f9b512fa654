// The real program, with some windows, is killed at random moments of whatever it does, or loses
// its screen. What its keeper wrote is compared with the temporary files and the journals, sample
// by sample. scripts/test --crashes sets the number of moments.

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

/// Moments for each test; 0 for the few of every run.
unsigned wantedMoments() {
  const char* const number = std::getenv("ORVO_TEST_CRASHES");  // NOLINT(concurrency-mt-unsafe)
  return number == nullptr ? 0 : static_cast<unsigned>(std::strtoul(number, nullptr, 10));
}

/// Numbers of windows: one and `many` in every run, which shall not take long.
std::vector<std::size_t> oneAnd(std::size_t many) {
  return wantedMoments() == 0 ? std::vector<std::size_t>{1, many}
                              : std::vector<std::size_t>{1, 3, 10};
}

/// The first window is the one in which something is done.
class KilledAnywhere : public KilledProgramTest, public testing::WithParamInterface<std::size_t> {
 protected:
  static constexpr std::size_t kImported = 40 * kFramesPerSecond;  // frames

  /// What the further windows do when the first one is ready.
  enum class Further { recorded, goOnRecording };

  KilledAnywhere() {
    const rlimit none{0, 0};
    ::setrlimit(RLIMIT_CORE, &none);  // inherited by the program
  }

  [[nodiscard]] static std::size_t windows() { return GetParam(); }

  /// Calls `doAndKill` for each moment with a new program that has recorded something in each of
  /// its windows.
  void atEachMoment(const std::function<void()>& doAndKill, Further further = Further::recorded) {
    for (unsigned seed = 1; seed <= std::max(wantedMoments(), 1U); ++seed) {
      SCOPED_TRACE("moment " + std::to_string(seed));
      random_.seed(seed);
      fs::remove_all(data_ + "/orvo");
      fs::remove_all(documents_);
      fs::create_directory(documents_);
      ASSERT_NO_FATAL_FAILURE(startWithKeeper());
      ASSERT_NO_FATAL_FAILURE(record(signalOfSeconds(0.2, 200 + seed)));
      ASSERT_NO_FATAL_FAILURE(openFurtherWindows(further));
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

  /// Ends the program by one of some signals or by the loss of its screen.
  void endProgram() {
    constexpr std::array kSignals{SIGKILL, SIGABRT, SIGSEGV, SIGBUS};
    const std::uint64_t way = below(kSignals.size() + 1);
    if (way < kSignals.size()) {
      orvo_->process().signal(kSignals[way]);
    } else {
      screen_.reset();
    }
    ASSERT_TRUE(orvo_->process().waitForExit());
    if (!screen_) {
      std::string error;
      screen_ = VirtualScreen::start(error);
      ASSERT_NE(screen_, nullptr) << error;
    }
  }

  /// Lets the program go on for a random time below this.
  void letRun(std::chrono::microseconds longest) {
    const auto end = std::chrono::steady_clock::now() +
                     std::chrono::microseconds(below(static_cast<std::uint64_t>(longest.count())));
    while (std::chrono::steady_clock::now() < end) {
    }
  }

  /// Holds what the keeper has of every document.
  void holdAll() {
    keeper_ = orvo_->keeperPid();
    ASSERT_NO_FATAL_FAILURE(holdWhatIsKept(windows()));
  }

  /// Kills the program and expects the recovered files to hold what the journals say, each document
  /// once, and none of those of which the journal says that nothing would be lost.
  void killAndCompare() {
    ASSERT_NO_FATAL_FAILURE(holdAll());
    ASSERT_NO_FATAL_FAILURE(killHeld());
  }

  /// The same for a program that may close its documents meanwhile; they are held.
  void killHeld() {
    ASSERT_NO_FATAL_FAILURE(endProgram());
    ASSERT_TRUE(eventually([&] { return hasEnded(keeper_); }));
    kept_ = wholeOfEach();
    std::vector<Samples> wanted = kept_;
    std::erase_if(wanted, [](const Samples& one) { return one.empty(); });
    std::vector<Samples> found;
    for (std::size_t file = 0; file < recovered().size(); ++file) {
      found.push_back(recoveredAudio(file));
    }
    expectNothingElseIsLeft(wanted.size());
    std::sort(wanted.begin(), wanted.end());
    std::sort(found.begin(), found.end());
    EXPECT_TRUE(found == wanted);
  }

  /// What each of the documents held would lose now.
  [[nodiscard]] std::vector<Samples> wholeOfEach() const {
    std::vector<Samples> each;
    for (std::size_t document = 0; document < journals(); ++document) {
      each.push_back(expected(document, document));
    }
    return each;
  }

  /// What was recovered of the first window's document; empty if nothing.
  [[nodiscard]] const Samples& first() const { return kept_.front(); }

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

  /// From now on, for so many seconds, there is a signal to record.
  void beginSignal(double seconds = 5.0) {
    ASSERT_TRUE(writeRaw(folder_.file("signal"), signalOfSeconds(seconds, 301)));
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

  /// Some random steps, not all of which change something.
  void edit() {
    constexpr int kClickY = 120;
    constexpr int kWidth = 640;
    constexpr std::array kKeys{"ctrl+z", "ctrl+shift+z", "ctrl+z", "Return"};
    for (std::uint64_t steps = below(4) + 1; steps > 0; --steps) {
      if (below(2) == 0) {
        ASSERT_TRUE(orvo_->click(*screen_, static_cast<int>(below(kWidth - 40)) + 20, kClickY));
        ASSERT_NO_FATAL_FAILURE(chooseEdit(static_cast<int>(below(3)) + 1));
      } else {
        ASSERT_TRUE(screen_->pressKey(kKeys[below(kKeys.size())]));
      }
    }
  }

  /// Does not wait for the answer to the last of these questions.
  void discard(const std::vector<Window>& questions) {
    for (std::size_t i = 0; i < questions.size(); ++i) {
      if (i + 1 < questions.size()) {
        ASSERT_NO_FATAL_FAILURE(answer(questions[i], Answer::dontSave));
      } else {
        ASSERT_TRUE(screen_->activate(questions[i]));
        ASSERT_TRUE(screen_->pressKey("Tab") && screen_->pressKey("space"));
      }
    }
  }

  std::mt19937_64 random_;
  std::unique_ptr<ChildProcess> signal_;
  Samples before_;
  Samples imported_;
  std::vector<Samples> kept_;  // what was recovered of each document

 private:
  pid_t keeper_ = 0;  // of the program whose documents are held

  /// Records something else in each of them; then the first window has the keyboard again.
  void openFurtherWindows(Further further) {
    if (windows() == 1) {
      return;
    }
    ASSERT_NO_FATAL_FAILURE(beginSignal(3.0 * static_cast<double>(windows())));
    for (std::size_t window = 1; window < windows(); ++window) {
      const Window opened = openFurtherWindow();
      ASSERT_FALSE(opened.empty());
      ASSERT_TRUE(screen_->activate(opened));
      ASSERT_TRUE(screen_->pressKey("r"));
      ASSERT_TRUE(orvo_->waitUntilRecorded(1, window));
      if (further == Further::recorded) {
        ASSERT_TRUE(screen_->pressKey("r"));
      }
    }
    ASSERT_TRUE(screen_->activate(orvo_->window()));
  }
};

class KilledWhileRecording : public KilledAnywhere {};
INSTANTIATE_TEST_SUITE_P(Windows, KilledWhileRecording, testing::ValuesIn(oneAnd(3)));

TEST_P(KilledWhileRecording, EveryWindowKeepsAllThatWasWritten) {
  atEachMoment(
      [this] {
        ASSERT_NO_FATAL_FAILURE(beginSignal());
        ASSERT_NO_FATAL_FAILURE(beginRecording());
        ASSERT_TRUE(orvo_->waitUntilRecorded(before_.size() / kChannels + below(kFramesPerSecond)));
        letRun(std::chrono::milliseconds(20));
        ASSERT_NO_FATAL_FAILURE(killAndCompare());
        for (std::size_t document = 0; document < windows(); ++document) {
          expectAllOf(written(document), kept_[document]);
        }
      },
      Further::goOnRecording);
}

class KilledWhileRecordingOver : public KilledAnywhere {};
INSTANTIATE_TEST_SUITE_P(Windows, KilledWhileRecordingOver, testing::ValuesIn(oneAnd(3)));

TEST_P(KilledWhileRecordingOver, WhatWasWrittenStandsOverWhatWasThere) {
  atEachMoment([this] {
    ASSERT_TRUE(screen_->pressKey("Return"));  // to the start
    ASSERT_NO_FATAL_FAILURE(beginSignal());
    ASSERT_NO_FATAL_FAILURE(beginRecording());
    ASSERT_TRUE(orvo_->waitUntilRecorded(before_.size() / kChannels + below(kFramesPerSecond)));
    letRun(std::chrono::milliseconds(20));
    ASSERT_NO_FATAL_FAILURE(killAndCompare());
    // The chunk that was just being written may be missing.
    const Samples all = written();
    ASSERT_GE(first().size(), before_.size());
    const auto [found, wrote] =
        std::mismatch(first().begin(), first().end(),
                      all.begin() + static_cast<std::ptrdiff_t>(before_.size()), all.end());
    EXPECT_LE(all.end() - wrote, static_cast<std::ptrdiff_t>(kChunk));
    const auto over = found - first().begin();
    if (over < static_cast<std::ptrdiff_t>(before_.size())) {
      EXPECT_TRUE(std::equal(found, first().end(), before_.begin() + over, before_.end()));
    } else {
      EXPECT_EQ(found, first().end());
    }
  });
}

class KilledWhileEditing : public KilledAnywhere {};
INSTANTIATE_TEST_SUITE_P(Windows, KilledWhileEditing, testing::ValuesIn(oneAnd(10)));

TEST_P(KilledWhileEditing, EveryWindowIsAsItsJournalSays) {
  atEachMoment([this] {
    ASSERT_NO_FATAL_FAILURE(edit());
    letRun(std::chrono::milliseconds(20));
    ASSERT_NO_FATAL_FAILURE(killAndCompare());
  });
}

class KilledAfterEdits : public KilledAnywhere {};
INSTANTIATE_TEST_SUITE_P(Windows, KilledAfterEdits, testing::Values(1));

// A file that was saved from the document says what it held, whatever the journal says. Another
// save of what it held before makes that state an unsaved one again.
TEST_P(KilledAfterEdits, TheDocumentIsAsAFileSavedFromItIs) {
  atEachMoment([this] {
    ASSERT_NO_FATAL_FAILURE(edit());
    ASSERT_NO_FATAL_FAILURE(beginRecording());  // wherever the marker stands now
    ASSERT_TRUE(screen_->pressKey("r"));
    ASSERT_NO_FATAL_FAILURE(saveAs(document("saved.wav"), Kind::wav));
    ASSERT_TRUE(screen_->pressKey("ctrl+z"));
    ASSERT_NO_FATAL_FAILURE(expectTitle("saved.wav*"));
    ASSERT_NO_FATAL_FAILURE(saveAs(document("undone.wav"), Kind::wav));
    ASSERT_TRUE(screen_->pressKey("ctrl+shift+z"));
    ASSERT_NO_FATAL_FAILURE(expectTitle("undone.wav*"));
    ASSERT_TRUE(screen_->screenshotAtRest(orvo_->window(), folder_.file("redone.png")));
    ASSERT_NO_FATAL_FAILURE(killAndCompare());
    ASSERT_FALSE(first().empty());
    expectHolds(document("saved.wav"), first());
  });
}

class KilledWhileImporting : public KilledAnywhere {};
INSTANTIATE_TEST_SUITE_P(Windows, KilledWhileImporting, testing::ValuesIn(oneAnd(3)));

TEST_P(KilledWhileImporting, WhatHadBeenImportedStandsWhereTheMarkerWas) {
  atEachMoment([this] {
    ASSERT_NO_FATAL_FAILURE(beginImport());
    const std::uint64_t frames = before_.size() / kChannels + 1 + below(kImported);
    ASSERT_TRUE(orvo_->waitUntilRecorded(frames));
    letRun(std::chrono::milliseconds(2));
    ASSERT_NO_FATAL_FAILURE(killAndCompare());
    const Samples all = written();
    ASSERT_GE(first().size(), before_.size());
    EXPECT_LE(all.size(), before_.size() + imported_.size());
    EXPECT_TRUE(std::equal(all.begin() + static_cast<std::ptrdiff_t>(before_.size()), all.end(),
                           imported_.begin()));
  });
}

class KilledWhileSaving : public KilledAnywhere {};
INSTANTIATE_TEST_SUITE_P(Windows, KilledWhileSaving, testing::ValuesIn(oneAnd(3)));

TEST_P(KilledWhileSaving, TheDocumentIsInTheFileOrRecovered) {
  atEachMoment([this] {
    ASSERT_NO_FATAL_FAILURE(beginImport());
    ASSERT_TRUE(orvo_->waitUntilRecorded((before_.size() / kChannels) + kImported));
    const Window shown = openPanel("ctrl+shift+s", "Save As");  // once it is imported
    ASSERT_FALSE(shown.empty());
    ASSERT_NO_FATAL_FAILURE(chooseKind(Kind::wav));
    ASSERT_NO_FATAL_FAILURE(holdAll());
    const Samples whole = expected();
    ASSERT_NO_FATAL_FAILURE(chooseFile(document("saved.wav")));
    const std::uint64_t bytes = below(kImported * 4 * 6 / 5);
    ASSERT_TRUE(eventually([&] { return savedBytes() >= bytes || isSaved(); }));
    letRun(std::chrono::milliseconds(2));
    ASSERT_NO_FATAL_FAILURE(killAndCompare());
    if (first().empty()) {
      expectHolds(document("saved.wav"), whole);
    } else {
      EXPECT_TRUE(first() == whole);
    }
  });
}

class KilledWhileQuitting : public KilledAnywhere {};
INSTANTIATE_TEST_SUITE_P(Windows, KilledWhileQuitting, testing::ValuesIn(oneAnd(3)));

// Each window asks at once. Some of the questions are answered with Don't Save.
TEST_P(KilledWhileQuitting, WhatWasNotDiscardedIsRecovered) {
  atEachMoment([this] {
    ASSERT_NO_FATAL_FAILURE(holdAll());
    ASSERT_TRUE(screen_->pressKey("ctrl+q"));
    std::vector<Window> questions;
    if (const std::uint64_t discarded = below(windows() + 1); discarded > 0) {
      ASSERT_TRUE(eventually([&] {
        questions = alerts();
        return questions.size() == windows();
      }));
      questions.resize(discarded);
    }
    const std::vector<Samples> whole = wholeOfEach();
    ASSERT_NO_FATAL_FAILURE(discard(questions));
    letRun(std::chrono::milliseconds(40));
    ASSERT_NO_FATAL_FAILURE(killHeld());
    std::size_t missing = 0;
    for (std::size_t document = 0; document < windows(); ++document) {
      EXPECT_TRUE(kept_[document].empty() || kept_[document] == whole[document]);
      missing += kept_[document].empty() ? 1 : 0;
    }
    // The last answer may not have been taken.
    EXPECT_LE(missing, questions.size());
    EXPECT_GE(missing + 1, questions.size());
  });
}

}  // namespace
