// Files from the command line and from the panel, each in a window of its own.

#include <algorithm>

#include "acceptance/DocumentTest.h"
#include "support/programs/AccessibilityBus.h"
#include "support/programs/AudioFileTools.h"

using namespace support;

namespace {

class Opening : public DocumentTest {
 protected:
  /// Waits until the document windows have these titles, in any order.
  void expectDocuments(std::vector<std::string> titles) {
    std::sort(titles.begin(), titles.end());
    std::vector<std::string> shown;
    EXPECT_TRUE(eventually([&] {
      shown.clear();
      for (const Window& window : screen_->windowsOf(orvo_->pid(), "Orvo - ")) {
        shown.push_back(screen_->titleOf(window).substr(std::string("Orvo - ").size()));
      }
      std::sort(shown.begin(), shown.end());
      return shown == titles;
    })) << testing::PrintToString(shown);
  }

  /// Waits until one of the documents holds the signal of file(), from its first frame to its last.
  void expectLoaded(double seconds, std::uint32_t seed) {
    const Samples signal = signalOfSeconds(seconds, seed);
    EXPECT_TRUE(eventually([&] {
      for (std::size_t i = 0; i < orvo_->recordingPaths().size(); ++i) {
        if (orvo_->recorded(i) == signal) {
          return true;
        }
      }
      return false;
    })) << seed;
  }

  /// Opens the File menu by its keys and then the list of recent files, as soon as there is one.
  void openRecentMenu() {
    constexpr std::chrono::seconds kAgain{2};
    const auto popUps = [this] {
      return screen_->windowsOf(orvo_->pid(), "").size() -
             screen_->windowsOf(orvo_->pid(), "Orvo - ").size();
    };
    ASSERT_TRUE(eventually([&] {
      static_cast<void>(screen_->pressKey("Escape") && screen_->pressKey("Escape"));
      return screen_->pressKey("alt+f") && eventually([&] { return popUps() == 1; }, kAgain) &&
             screen_->pressKey("Down") && screen_->pressKey("Down") && screen_->pressKey("Right") &&
             eventually([&] { return popUps() == 2; }, kAgain);
    }));
  }

  std::string file(const std::string& name, double seconds, std::uint32_t seed) {
    EXPECT_TRUE(writeWav(document(name), signalOfSeconds(seconds, seed)));
    return document(name);
  }
};

TEST_F(Opening, TwoFilesOnTheCommandLineShowTwoWindowsAndNoEmptyOne) {
  RunningOrvo::Options options;
  options.files = {file("one.wav", 0.5, 51), file("two.wav", 0.7, 52)};
  ASSERT_NO_FATAL_FAILURE(startOrvo(options));
  expectDocuments({"one.wav", "two.wav"});
  expectLoaded(0.5, 51);
  expectLoaded(0.7, 52);
  EXPECT_TRUE(alerts().empty());
  ASSERT_TRUE(screen_->pressKey("ctrl+q"));
  EXPECT_EQ(orvo_->process().waitForExit(), (ExitStatus{0, 0})) << "nothing is edited";
}

TEST_F(Opening, TypedPathIsOpenedInAWindowOfItsOwn) {
  const std::string path = file("typed.wav", 0.5, 53);
  ASSERT_NO_FATAL_FAILURE(startOrvo());
  const Window shown = openPanel("ctrl+o", "Open");
  ASSERT_FALSE(shown.empty());
  ASSERT_NO_FATAL_FAILURE(chooseFile(path));
  ASSERT_TRUE(screen_->waitUntilGone(shown));
  expectDocuments({"Unnamed", "typed.wav"});
  expectLoaded(0.5, 53);
  EXPECT_TRUE(alerts().empty());
}

TEST_F(Opening, SeveralFilesNamedInThePanelGetWindowsOfTheirOwn) {
  const std::string one = file("one.wav", 0.5, 57);
  const std::string two = file("two.wav", 0.7, 58);
  static_cast<void>(file("three.wav", 0.3, 59));
  ASSERT_NO_FATAL_FAILURE(startOrvo());
  const Window shown = openPanel("ctrl+o", "Open");
  ASSERT_FALSE(shown.empty());
  ASSERT_NO_FATAL_FAILURE(chooseFile('"' + one + "\" \"" + two + '"'));
  ASSERT_TRUE(screen_->waitUntilGone(shown));
  expectDocuments({"Unnamed", "one.wav", "two.wav"});
  expectLoaded(0.5, 57);
  expectLoaded(0.7, 58);
  EXPECT_TRUE(alerts().empty());
}

TEST_F(Opening, OpenRecentOpensAFileAgain) {
  RunningOrvo::Options options;
  options.files = {file("take & more.wav", 0.5, 60)};
  ASSERT_NO_FATAL_FAILURE(startOrvo(options));
  expectDocuments({"take & more.wav"});
  ASSERT_NO_FATAL_FAILURE(openRecentMenu());
  ASSERT_TRUE(screen_->pressKey("Return"));
  expectDocuments({"take & more.wav", "take & more.wav"});
  expectLoaded(0.5, 60);
  EXPECT_TRUE(alerts().empty());
}

TEST_F(Opening, FilesDroppedOnAWindowGetWindowsOfTheirOwn) {
  const std::string noUtf8 = "two \xFF.wav";
  std::string error;
  ASSERT_NO_FATAL_FAILURE(startOrvo());
  const auto source =
      ChildProcess::start({ORVO_DRAG_SOURCE, file("one.wav", 0.5, 55), file(noUtf8, 0.7, 56)},
                          screen_->environment(), error);
  ASSERT_NE(source, nullptr) << error;
  const auto tells = [&](const std::string& text) {
    return eventually([&] { return source->output().find(text) != std::string::npos; });
  };
  const Window from = screen_->waitForWindow(source->pid(), "Drag Source");
  ASSERT_FALSE(from.empty());
  ASSERT_TRUE(screen_->moveMouse(from, 50, 50) && screen_->mouseDown());
  ASSERT_TRUE(screen_->moveMouse(from, 70, 60));
  // As with a hand, the mouse keeps moving until the window below shows that it accepts the files.
  int x = 200;
  EXPECT_TRUE(eventually([&] {
    x = x == 200 ? 210 : 200;
    return screen_->moveMouse(orvo_->window(), x, 120) &&
           source->output().find("accepted") != std::string::npos;
  })) << source->output();
  ASSERT_TRUE(screen_->mouseUp());
  EXPECT_TRUE(tells("dropped")) << source->output();
  expectDocuments({"Unnamed", "one.wav", "two \xEF\xBF\xBD.wav"});
  expectLoaded(0.5, 55);
  expectLoaded(0.7, 56);
  EXPECT_TRUE(alerts().empty());
}

TEST_F(Opening, TextNamedWavIsToldOnceByItsName) {
  ASSERT_TRUE(writeBytes(document("words.wav"), "These are words and no audio at all.\n"));
  std::string error;
  const auto bus = AccessibilityBus::start(error);
  ASSERT_NE(bus, nullptr) << error;
  RunningOrvo::Options options;
  options.files = {document("words.wav")};
  options.wrapper = {"env"};  // the screen's environment has no message bus
  for (const auto& [name, value] : bus->environment()) {
    options.wrapper.push_back(name + "=" + value);
  }
  options.alertFirst = true;
  ASSERT_NO_FATAL_FAILURE(startOrvo(options));
  std::string told;
  EXPECT_TRUE(eventually([&] {
    told.clear();
    for (const auto& node : bus->nodesOf(orvo_->pid())) {
      told += node.role + ": " + node.name + "\n";
    }
    return told.find("“words.wav”") != std::string::npos ||
           told.find("words.wav ") != std::string::npos;
  })) << told;
  ASSERT_NO_FATAL_FAILURE(expectOneAlertAndDismissIt());
  expectDocuments({"Unnamed"});
  ASSERT_NO_FATAL_FAILURE(record(signalOfSeconds(0.2, 54)));
  EXPECT_TRUE(alerts().empty()) << "told once, and the window is as good as any";
}

}  // namespace
