// What happens around the program does not end or hang it: a closed standard error, few
// descriptors, a folder that does not answer. And it leaves no settings.

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "acceptance/DocumentTest.h"
#include "support/programs/AudioFileTools.h"
#include "support/programs/StalledFolder.h"

using namespace support;

namespace {

class ProcessFaults : public DocumentTest {
 protected:
  /// Runs the program with a standard error that nobody reads any more.
  static std::vector<std::string> withoutReaderOfErrors() {
    return {"bash", "-c", "exec 2> >(:); wait $!; exec \"$@\"", "orvo"};
  }

  static std::vector<std::string> withLimit(const std::string& limit) {
    return {"bash", "-c", "ulimit " + limit + "; exec \"$@\"", "orvo"};
  }

  std::size_t softDescriptorLimit() const {
    std::ifstream limits("/proc/" + std::to_string(orvo_->pid()) + "/limits");
    constexpr std::string_view kName = "Max open files";
    for (std::string line; std::getline(limits, line);) {
      if (line.starts_with(kName)) {
        return std::stoul(line.substr(kName.size()));
      }
    }
    return 0;
  }

  std::vector<Window> documents() const { return screen_->windowsOf(orvo_->pid(), "Orvo - "); }

  /// Regular files below the folder in which programs keep their settings.
  std::vector<std::string> settings() const {
    std::vector<std::string> found;
    std::error_code gone;
    const std::string folder = screen_->environment().at("XDG_CONFIG_HOME");
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder, gone)) {
      if (entry.is_regular_file()) {
        found.push_back(entry.path().string());
      }
    }
    return found;
  }
};

TEST_F(ProcessFaults, FailureIsToldWhereNobodyReadsStandardError) {
  RunningOrvo::Options options;
  options.wrapper = withoutReaderOfErrors();
  options.files = {document("missing.wav")};
  options.alertFirst = true;
  ASSERT_NO_FATAL_FAILURE(startOrvo(options));
  ASSERT_TRUE(eventually([&] { return alerts().size() == 1; }));
  ASSERT_NO_FATAL_FAILURE(expectOneAlertAndDismissIt());
  EXPECT_TRUE(orvo_->process().isRunning());
}

TEST_F(ProcessFaults, ServerThatDiesWhileRecordingEndsNothingWhereNobodyReadsStandardError) {
  RunningOrvo::Options options;
  options.wrapper = withoutReaderOfErrors();
  ASSERT_NO_FATAL_FAILURE(startOrvo(options));
  const Samples signal = signalOfSeconds(1.0, 71);
  ASSERT_NO_FATAL_FAILURE(beginRecording());
  ASSERT_NO_FATAL_FAILURE(feed(signal));
  ASSERT_NO_FATAL_FAILURE(expectRecorded(signal));
  server_->kill();
  ASSERT_NO_FATAL_FAILURE(expectOneAlertAndDismissIt());
  ASSERT_NO_FATAL_FAILURE(saveAs(document("kept.wav"), Kind::wav));
  expectHolds(document("kept.wav"), orvo_->recorded());
}

TEST_F(ProcessFaults, LowLimitOfOpenFilesIsRaised) {
  RunningOrvo::Options options;
  options.wrapper = withLimit("-S -n 100");
  ASSERT_NO_FATAL_FAILURE(startOrvo(options));
  EXPECT_GT(softDescriptorLimit(), 100U);
}

TEST_F(ProcessFaults, WindowsAreRefusedInPlainWordsAndEverythingElseStillWorks) {
  RunningOrvo::Options options;
  options.wrapper = withLimit("-n 92");
  ASSERT_NO_FATAL_FAILURE(startOrvo(options));
  ASSERT_NO_FATAL_FAILURE(record(signalOfSeconds(0.3, 72)));
  constexpr int kMore = 30;
  for (int i = 0; i < kMore && alerts().empty(); ++i) {
    const std::size_t before = documents().size();
    ASSERT_TRUE(screen_->pressKey("ctrl+n"));
    ASSERT_TRUE(eventually([&] { return documents().size() > before || !alerts().empty(); }));
  }
  const auto shown = alerts();
  ASSERT_EQ(shown.size(), 1U);
  ASSERT_TRUE(screen_->activate(shown.front()));
  ASSERT_TRUE(screen_->pressKey("Return"));
  ASSERT_TRUE(screen_->waitUntilGone(shown.front()));
  ASSERT_TRUE(screen_->activate(orvo_->window()));
  const Samples recorded = orvo_->recorded();
  ASSERT_NO_FATAL_FAILURE(saveAs(document("take.wav"), Kind::wav));
  expectHolds(document("take.wav"), recorded);
}

TEST_F(ProcessFaults, PanelsLeaveNoSettings) {
  ASSERT_TRUE(writeWav(document("take.wav"), signalOfSeconds(0.2, 73)));
  ASSERT_NO_FATAL_FAILURE(startOrvo());
  const auto before = settings();
  const Window shown = openPanel("ctrl+o", "Open");
  ASSERT_FALSE(shown.empty());
  ASSERT_NO_FATAL_FAILURE(chooseFile(document("take.wav")));
  ASSERT_TRUE(screen_->waitUntilGone(shown));
  ASSERT_TRUE(eventually([&] { return documents().size() == 2; }));
  ASSERT_TRUE(screen_->activate(documents().back()));
  const Window save = openPanel("ctrl+shift+s", "Save As");
  ASSERT_FALSE(save.empty());
  ASSERT_NO_FATAL_FAILURE(chooseFile(document("another.wav")));
  ASSERT_TRUE(screen_->waitUntilGone(save));
  ASSERT_TRUE(eventually([&] { return std::filesystem::exists(document("another.wav")); }));
  const Window import = openPanel("ctrl+i", "Import");
  ASSERT_FALSE(import.empty());
  ASSERT_TRUE(screen_->pressKey("Escape"));
  ASSERT_TRUE(screen_->waitUntilGone(import));
  ASSERT_TRUE(screen_->pressKey("ctrl+q"));
  EXPECT_EQ(orvo_->process().waitForExit(), (ExitStatus{0, 0}));
  EXPECT_EQ(settings(), before);
}

// A folder that does not answer ------------------------------------------------------------------

/// The program answers within a second. On a busy machine a program that waits for nothing takes
/// longer than that: so it is a second more than this one takes, in the same run, for three
/// windows.
class StalledProcess : public ProcessFaults {
 protected:
  enum class Document { unchanged, edited };

  void startAndStall(Document state = Document::unchanged) {
    const Samples take = signalOfSeconds(0.3, 74);
    ASSERT_TRUE(writeWav(document("take.wav"), take));
    RunningOrvo::Options options;
    options.wrapper = stalled_.wrapper();
    options.files = {document("take.wav")};
    ASSERT_NO_FATAL_FAILURE(startOrvo(options));
    ASSERT_TRUE(orvo_->waitUntilRecorded(take.size() / kChannels));
    ASSERT_TRUE(screen_->screenshotAtRest(orvo_->window(), folder_.file("loaded.png")));
    if (state == Document::edited) {
      ASSERT_NO_FATAL_FAILURE(beginRecording());
      ASSERT_TRUE(screen_->pressKey("r"));
      ASSERT_TRUE(screen_->screenshotAtRest(orvo_->window(), folder_.file("edited.png")));
    }
    for (int i = 0; i < 3; ++i) {
      const auto begin = std::chrono::steady_clock::now();
      const Window further = openFurtherWindow();
      ASSERT_FALSE(further.empty());
      ASSERT_TRUE(screen_->activate(further));
      ASSERT_TRUE(screen_->pressKey("ctrl+w"));
      ASSERT_TRUE(screen_->waitUntilGone(further));
      atOnce_ += std::chrono::duration_cast<std::chrono::milliseconds>(
          std::chrono::steady_clock::now() - begin);
    }
    ASSERT_TRUE(screen_->activate(orvo_->window()));
    stalled_.stall();
  }

  /// The panel that a key shows at once although the folder never answers.
  Window panelOf(const std::string& key, const std::string& title) {
    return screen_->pressKey(key) ? panel(title, atOnce_) : Window();
  }
  /// The same for the command of the File menu that has this letter.
  Window panelOfCommand(const std::string& letter, const std::string& title) {
    return screen_->pressKey("alt+f") ? panelOf(letter, title) : Window();
  }

  void expectGoneAtOnce(const Window& window) const {
    EXPECT_TRUE(eventually([&] { return !screen_->isVisible(window); }, atOnce_))
        << atOnce_.count() << " ms";
  }
  void cancel(const Window& shown) {
    ASSERT_TRUE(screen_->pressKey("Escape"));
    expectGoneAtOnce(shown);
    ASSERT_TRUE(screen_->activate(orvo_->window()));
  }

  const StalledFolder stalled_{documents_};
  std::chrono::milliseconds atOnce_{1000};
};

TEST_F(StalledProcess, PanelsOfItsFolderOpenTakeANameAndAreCancelled) {
  ASSERT_NO_FATAL_FAILURE(startAndStall());
  const Window save = panelOf("ctrl+shift+s", "Save As");
  ASSERT_FALSE(save.empty());
  ASSERT_NO_FATAL_FAILURE(chooseFile("another"));  // what is there is looked up, for ever
  ASSERT_TRUE(screen_->screenshotAtRest(save, folder_.file("waiting.png")));
  ASSERT_NO_FATAL_FAILURE(cancel(save));

  const Window open = panelOf("ctrl+o", "Open");
  ASSERT_FALSE(open.empty());
  ASSERT_NO_FATAL_FAILURE(chooseFile(document("take.wav")));
  ASSERT_TRUE(screen_->pressKey("alt+n"));
  ASSERT_TRUE(screen_->type("x"));
  ASSERT_NO_FATAL_FAILURE(cancel(open));
}

TEST_F(StalledProcess, ImportAndBothExportsAreCancelledToo) {
  ASSERT_NO_FATAL_FAILURE(startAndStall());
  const Window import = panelOf("ctrl+i", "Import");
  ASSERT_FALSE(import.empty());
  ASSERT_NO_FATAL_FAILURE(cancel(import));
  const Window ringtone = panelOfCommand("g", "Export Ringtone");
  ASSERT_FALSE(ringtone.empty());
  ASSERT_NO_FATAL_FAILURE(chooseFile("another"));
  ASSERT_NO_FATAL_FAILURE(cancel(ringtone));
  const Window picture = panelOfCommand("w", "Export Waveform Picture");
  ASSERT_FALSE(picture.empty());
  ASSERT_NO_FATAL_FAILURE(chooseFile("another"));
  ASSERT_NO_FATAL_FAILURE(cancel(picture));
}

// Reading some files there takes for ever; the panel only lists their names.
TEST_F(StalledProcess, FilesOfTheSystemThatNeverEndAreListed) {
  ASSERT_NO_FATAL_FAILURE(startAndStall());
  const Window open = panelOf("ctrl+o", "Open");
  ASSERT_FALSE(open.empty());
  ASSERT_NO_FATAL_FAILURE(chooseFile("/proc/"));
  ASSERT_TRUE(screen_->screenshotAtRest(open, folder_.file("listed.png")));
  ASSERT_NO_FATAL_FAILURE(cancel(open));
}

TEST_F(StalledProcess, SignalIsAnsweredWhileAPanelShowsIt) {
  ASSERT_NO_FATAL_FAILURE(startAndStall());
  const Window save = panelOf("ctrl+shift+s", "Save As");
  ASSERT_FALSE(save.empty());
  orvo_->process().signal(SIGTERM);
  expectGoneAtOnce(orvo_->window());
  EXPECT_EQ(orvo_->process().waitForExit(), (ExitStatus{0, 0}));
}

TEST_F(StalledProcess, SignalIsAnsweredForAChangedDocumentWhileAPanelShowsIt) {
  ASSERT_NO_FATAL_FAILURE(startAndStall(Document::edited));
  const Window save = panelOf("ctrl+shift+s", "Save As");
  ASSERT_FALSE(save.empty());
  orvo_->process().signal(SIGTERM);
  ASSERT_TRUE(eventually([&] { return alerts().size() == 1; }, atOnce_));
  const Window refusal = alerts().front();  // the panel is to be answered first
  ASSERT_TRUE(screen_->activate(refusal));
  ASSERT_TRUE(screen_->pressKey("Return"));
  expectGoneAtOnce(refusal);
  ASSERT_TRUE(screen_->activate(save));
  ASSERT_NO_FATAL_FAILURE(cancel(save));
  orvo_->process().signal(SIGTERM);
  ASSERT_TRUE(eventually([&] { return alerts().size() == 1; }, atOnce_));
  ASSERT_NO_FATAL_FAILURE(answerSheet(Answer::dontSave));
  EXPECT_EQ(orvo_->process().waitForExit(), (ExitStatus{0, 0}));
}

TEST_F(StalledProcess, PanelIsUsableAgainWhenTheFolderAnswers) {
  ASSERT_NO_FATAL_FAILURE(startAndStall());
  const Window save = panelOf("ctrl+shift+s", "Save As");
  ASSERT_FALSE(save.empty());
  ASSERT_NO_FATAL_FAILURE(chooseFile("another"));
  stalled_.release();
  ASSERT_TRUE(screen_->waitUntilGone(save));
  ASSERT_NO_FATAL_FAILURE(expectTitle("another.wav"));
}

}  // namespace
