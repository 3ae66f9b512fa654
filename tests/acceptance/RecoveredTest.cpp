// Recordings that were kept when the program ended unexpectedly, in the real program.
#include <algorithm>
#include <filesystem>

#include "acceptance/KilledProgramTest.h"
#include "support/RecoveredFolder.h"
#include "support/programs/AudioFileTools.h"

using namespace support;

namespace {

const std::string kFirst = "Orvo recording 2026-11-21 14.02.31.caf";
const std::string kSecond = "Orvo recording 2026-11-22 09.00.00.caf";

class Recovered : public KilledProgramTest {
 protected:
  void SetUp() override { ASSERT_TRUE(screen_ && server_); }

  void startHere() {
    RunningOrvo::Options options;
    options.dataFolder = data_;
    options.temporaryFolder = temporary_;
    ASSERT_NO_FATAL_FAILURE(startOrvo(options));
  }

  /// Starts the program, waits for the question and gives it the keyboard.
  void startAndAwaitQuestion() {
    ASSERT_NO_FATAL_FAILURE(startHere());
    question_ = panel("Recovered Recordings");
    ASSERT_FALSE(question_.empty()) << orvo_->process().errorOutput();
  }

  /// Opens everything that the question offers.
  void openAll(std::size_t windows) {
    ASSERT_NO_FATAL_FAILURE(startAndAwaitQuestion());
    ASSERT_TRUE(screen_->pressKey("Return"));
    ASSERT_TRUE(screen_->waitUntilGone(question_));
    ASSERT_TRUE(eventually([&] { return loaded().size() == windows; }));
  }

  /// The recovered documents that are loaded: their windows are edited.
  [[nodiscard]] std::vector<Window> loaded() const {
    auto windows = screen_->windowsOf(orvo_->pid(), "Orvo - Recovered");
    std::erase_if(windows,
                  [&](const Window& window) { return !screen_->titleOf(window).ends_with('*'); });
    return windows;
  }
  [[nodiscard]] Window loadedFrom(const std::string& part) const {
    const auto windows = loaded();
    const auto found = std::find_if(windows.begin(), windows.end(), [&](const Window& window) {
      return screen_->titleOf(window).find(part) != std::string::npos;
    });
    return found == windows.end() ? Window() : *found;
  }

  /// Whether the program is told of changes in a folder, which begins after its window is shown.
  [[nodiscard]] bool watchesAFolder() const {
    const std::string process = "/proc/" + std::to_string(orvo_->pid());
    std::error_code gone;
    for (const auto& entry : std::filesystem::directory_iterator(process + "/fd", gone)) {
      const std::string target = std::filesystem::read_symlink(entry.path(), gone).string();
      if (target.find("inotify") != std::string::npos &&
          fileBytes(process + "/fdinfo/" + entry.path().filename().string()).find("inotify wd:") !=
              std::string::npos) {
        return true;
      }
    }
    return false;
  }

  /// Records over the beginning of the only recovered document, which has the keyboard; what it
  /// holds then is put into `result`.
  void recordOver(Samples& result) {
    std::size_t document = 0;  // the other one is empty
    while (document < orvo_->recordingPaths().size() && orvo_->recordedFrames(document) == 0) {
      ++document;
    }
    const Samples before = orvo_->recorded(document);
    ASSERT_TRUE(screen_->activate(loaded().front()));
    ASSERT_TRUE(screen_->pressKey("Return"));  // to the start
    ASSERT_TRUE(screen_->pressKey("r"));
    ASSERT_TRUE(orvo_->waitUntilRecorded(before.size() / kChannels + 1, document));
    ASSERT_NO_FATAL_FAILURE(feed(signalOfSeconds(0.1, 98)));
    ASSERT_TRUE(screen_->pressKey("r"));
    ASSERT_TRUE(screen_->screenshotAtRest(loaded().front(), folder_.file("recorded.png")));
    const Samples all = orvo_->recorded(document);
    result.assign(all.begin() + static_cast<std::ptrdiff_t>(before.size()), all.end());
    if (result.size() < before.size()) {
      result.insert(result.end(), before.begin() + static_cast<std::ptrdiff_t>(result.size()),
                    before.end());
    }
  }

  void add(const std::string& name, std::uint32_t seed) { recovered_.add(name, samplesOf(seed)); }
  [[nodiscard]] static Samples samplesOf(std::uint32_t seed) { return noise16(44100, seed); }

  const RecoveredFolder recovered_{data_};
  Window question_;
};

TEST_F(Recovered, TwoOpenInTheirWindowsSaveDeletesOneAndDontSaveTheOther) {
  add(kFirst, 91);
  add(kSecond, 92);
  ASSERT_NO_FATAL_FAILURE(openAll(2));
  EXPECT_EQ(screen_->windowsOf(orvo_->pid(), "Orvo - Unnamed").size(), 1U) << "the empty one stays";
  EXPECT_TRUE(recovered_.has(kFirst));
  EXPECT_TRUE(recovered_.has(kSecond));

  const Window saved = loadedFrom("21 Nov 2026");
  ASSERT_TRUE(!saved.empty() && screen_->activate(saved));
  const Window shown = openPanel("ctrl+s", "Save As");
  ASSERT_FALSE(shown.empty());
  ASSERT_NO_FATAL_FAILURE(chooseFile(document("take.wav")));
  EXPECT_TRUE(eventually([&] { return !recovered_.has(kFirst); }));
  expectHolds(document("take.wav"), samplesOf(91));
  EXPECT_EQ(screen_->titleOf(saved), "Orvo - take.wav");
  EXPECT_TRUE(recovered_.has(kSecond));

  const Window discarded = loadedFrom("22 Nov 2026");
  ASSERT_TRUE(!discarded.empty() && screen_->activate(discarded));
  ASSERT_TRUE(screen_->pressKey("ctrl+w"));
  ASSERT_NO_FATAL_FAILURE(answerSheet(Answer::dontSave));
  ASSERT_TRUE(screen_->waitUntilGone(discarded));
  EXPECT_TRUE(eventually([&] { return !recovered_.has(kSecond); }));
}

TEST_F(Recovered, CancelKeepsItAndAKillReplacesItAndTheNextStartOffersIt) {
  add(kFirst, 93);
  ASSERT_NO_FATAL_FAILURE(openAll(1));
  ASSERT_TRUE(screen_->activate(loaded().front()));
  ASSERT_TRUE(screen_->pressKey("ctrl+w"));
  ASSERT_NO_FATAL_FAILURE(answerSheet(Answer::cancel));
  EXPECT_TRUE(recovered_.has(kFirst));
  EXPECT_FALSE(FileLock(recovered_.file(kFirst)).isHeld()) << "the document holds it";
  ASSERT_TRUE(eventually([&] { return orvo_->keeperPid() != 0; }));
  Samples wanted;
  ASSERT_NO_FATAL_FAILURE(recordOver(wanted));
  ASSERT_NO_FATAL_FAILURE(endBy(SIGKILL));
  EXPECT_EQ(recovered(), std::vector<std::string>{kFirst});
  EXPECT_TRUE(recoveredAudio() == wanted);
  EXPECT_NE(fileBytes(recovered_.file(kFirst)).find("2026-11-21T14:02:31"), std::string::npos)
      << "recorded when its first recording began";

  ASSERT_NO_FATAL_FAILURE(openAll(1));
  EXPECT_FALSE(loadedFrom("21 Nov 2026 14:02").empty()) << screen_->titleOf(loaded().front());
  ASSERT_TRUE(screen_->activate(loaded().front()));
  ASSERT_TRUE(screen_->pressKey("ctrl+q"));
  ASSERT_NO_FATAL_FAILURE(answerSheet(Answer::dontSave));
  EXPECT_EQ(orvo_->process().waitForExit(), (ExitStatus{0, 0}));
  EXPECT_FALSE(recovered_.has(kFirst));
}

TEST_F(Recovered, LaterKeepsThemAndTheMenuShowsThem) {
  add(kFirst, 94);
  ASSERT_NO_FATAL_FAILURE(startAndAwaitQuestion());
  ASSERT_TRUE(screen_->pressKey("Escape"));
  ASSERT_TRUE(screen_->waitUntilGone(question_));
  EXPECT_TRUE(FileLock(recovered_.file(kFirst)).isHeld()) << "released";

  ASSERT_TRUE(screen_->activate(orvo_->window()));
  ASSERT_TRUE(screen_->pressKey("alt+h"));
  ASSERT_TRUE(screen_->pressKey("Down"));
  ASSERT_TRUE(screen_->pressKey("Return"));
  const Window list = panel("Recovered Recordings");
  ASSERT_FALSE(list.empty());
  ASSERT_TRUE(screen_->pressKey("Return"));
  EXPECT_TRUE(eventually([&] { return loaded().size() == 1; }));
}

TEST_F(Recovered, DeleteAsksAgainAndThenDeletes) {
  add(kFirst, 95);
  ASSERT_NO_FATAL_FAILURE(startAndAwaitQuestion());
  // Open has the keyboard, Delete is beside it.
  ASSERT_TRUE(screen_->pressKey("Tab"));
  ASSERT_TRUE(screen_->pressKey("space"));
  ASSERT_NO_FATAL_FAILURE(answerSheet(Answer::cancel));
  EXPECT_TRUE(recovered_.has(kFirst));
  ASSERT_TRUE(screen_->activate(question_));
  ASSERT_TRUE(screen_->pressKey("space"));
  ASSERT_NO_FATAL_FAILURE(answerSheet(Answer::dontSave));  // the button beside the usual one
  EXPECT_TRUE(screen_->waitUntilGone(question_));
  EXPECT_TRUE(eventually([&] { return !recovered_.has(kFirst); }));
}

TEST_F(Recovered, ARunningProgramAsksWhenOneAppearsAndTheKeyboardStays) {
  ASSERT_NO_FATAL_FAILURE(startHere());
  ASSERT_TRUE(eventually([&] { return watchesAFolder(); }));
  const std::string elsewhere = folder_.file("written");
  ASSERT_TRUE(writeBytes(elsewhere, recoveredCaf(samplesOf(96))));
  std::filesystem::rename(elsewhere, recovered_.file(kFirst));
  const Window question = screen_->waitForWindow(orvo_->pid(), "Recovered Recordings");
  ASSERT_FALSE(question.empty());
  EXPECT_TRUE(eventually([&] { return screen_->hasKeyboard(orvo_->window()); }));
  EXPECT_FALSE(openFurtherWindow().empty()) << "the recorder's window has the keyboard";
  ASSERT_TRUE(screen_->activate(question));
  ASSERT_TRUE(screen_->pressKey("Return"));
  EXPECT_TRUE(eventually([&] { return loaded().size() == 1; }));
}

TEST_F(Recovered, OfTwoRunningProgramsOneOffersIt) {
  add(kFirst, 97);
  ASSERT_NO_FATAL_FAILURE(startAndAwaitQuestion());
  RunningOrvo::Options options;
  options.dataFolder = data_;
  std::string error;
  const auto other =
      RunningOrvo::start(ORVO_PROGRAM, *screen_, server_->environment(), options, error);
  ASSERT_NE(other, nullptr) << error;
  ASSERT_TRUE(screen_->pressKey("alt+h"));
  ASSERT_TRUE(screen_->pressKey("Down"));
  ASSERT_TRUE(screen_->pressKey("Return"));
  const Window list = screen_->waitForWindow(other->pid(), "Recovered Recordings");
  ASSERT_FALSE(list.empty());
  ASSERT_TRUE(screen_->activate(list));
  ASSERT_TRUE(screen_->pressKey("Return"));  // Close: there is nothing in it
  EXPECT_TRUE(screen_->waitUntilGone(list));
  EXPECT_TRUE(screen_->windowsOf(other->pid(), "Orvo - Recovered").empty());
  EXPECT_TRUE(screen_->isVisible(question_));
}

}  // namespace
