#include "support/programs/VirtualScreen.h"

#include <filesystem>

#include <gtest/gtest.h>

namespace support {
namespace {

class VirtualScreenTest : public testing::Test {
 protected:
  void SetUp() override {
    std::string error;
    screen_ = VirtualScreen::start(error);
    ASSERT_NE(screen_, nullptr) << error;
    // A small X program that prints the events of its window.
    program_ = ChildProcess::start(
        {"xev", "-event", "keyboard", "-event", "button", "-name", "Orvo - Test"},
        screen_->environment(), error);
    ASSERT_NE(program_, nullptr) << error;
    // It publishes no process id, so its window is found by its name.
    ASSERT_TRUE(eventually([this] {
      window_ = runToEnd({"xdotool", "search", "--onlyvisible", "--name", "^Orvo - Test$"},
                         screen_->environment())
                    .output;
      std::erase(window_, '\n');
      return !window_.empty();
    }));
  }

  [[nodiscard]] bool eventuallyPrints(const std::string& text) const {
    return eventually([&] { return program_->output().find(text) != std::string::npos; });
  }

  std::unique_ptr<VirtualScreen> screen_;
  std::unique_ptr<ChildProcess> program_;
  VirtualScreen::Window window_;
};

TEST_F(VirtualScreenTest, KeysReachTheActiveWindow) {
  ASSERT_TRUE(screen_->activate(window_));
  ASSERT_TRUE(screen_->pressKey("r"));
  EXPECT_TRUE(eventuallyPrints("keysym 0x72, r"));
  ASSERT_TRUE(screen_->keyDown("space"));
  EXPECT_TRUE(eventuallyPrints("keysym 0x20, space"));
  ASSERT_TRUE(screen_->keyUp("space"));
}

TEST_F(VirtualScreenTest, ClickArrivesAtThePointOfTheWindow) {
  ASSERT_TRUE(screen_->click(window_, 21, 34));
  EXPECT_TRUE(eventuallyPrints("(21,34)"));
}

TEST_F(VirtualScreenTest, ScreenshotHasTheWindowsSize) {
  const TemporaryFolder folder;
  ASSERT_TRUE(screen_->screenshot(window_, folder.file("window.png")));
  const Finished size =
      runToEnd({"identify", "-format", "%wx%h", folder.file("window.png")}, cleanEnvironment());
  EXPECT_EQ(size.output, "178x178");
}

TEST_F(VirtualScreenTest, PicturesAreAlikeOnlyWhenTheyShowTheSame) {
  const TemporaryFolder folder;
  ASSERT_TRUE(screen_->screenshotAtRest(window_, folder.file("a.png")));
  ASSERT_TRUE(screen_->screenshotAtRest(window_, folder.file("b.png")));
  EXPECT_TRUE(screen_->looksLike(folder.file("a.png"), folder.file("b.png")));
  ASSERT_TRUE(runToEnd({"convert", folder.file("a.png"), "-negate", folder.file("c.png")},
                       cleanEnvironment())
                  .status.succeeded());
  EXPECT_FALSE(screen_->looksLike(folder.file("a.png"), folder.file("c.png")));
  EXPECT_FALSE(screen_->looksLike(folder.file("a.png"), folder.file("none.png")));
}

TEST_F(VirtualScreenTest, CloseAsksTheProgramToCloseItsWindow) {
  ASSERT_TRUE(screen_->isVisible(window_));
  ASSERT_TRUE(screen_->close(window_));
  EXPECT_TRUE(screen_->waitUntilGone(window_));
}

TEST_F(VirtualScreenTest, TitleIsTheWindowsOwn) {
  EXPECT_EQ(screen_->titleOf(window_), "Orvo - Test");
}

TEST(VirtualScreenStartTest, TwoScreensHaveDisplaysOfTheirOwn) {
  std::string error;
  const auto one = VirtualScreen::start(error);
  const auto other = VirtualScreen::start(error);
  ASSERT_NE(one, nullptr) << error;
  ASSERT_NE(other, nullptr) << error;
  EXPECT_NE(one->environment().at("DISPLAY"), other->environment().at("DISPLAY"));
}

}  // namespace
}  // namespace support
