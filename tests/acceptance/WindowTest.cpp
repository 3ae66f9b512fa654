// The real window on a real screen: the spectrum that enlarges it, and operation by keyboard alone.
#include <utility>

#include "acceptance/AcceptanceTest.h"

using namespace support;

namespace {

constexpr int kStrip = 200;    // points
constexpr int kBarBelow = 29;  // from the lower edge of the bar to the middle of its buttons

class RealWindow : public AcceptanceTest {
 protected:
  using Frame = VirtualScreen::Frame;

  [[nodiscard]] Frame frame() const { return screen_->frameOf(orvo_->window()); }

  /// Waits until the window has this frame.
  void expectFrame(const Frame& expected) {
    EXPECT_TRUE(eventually([&] { return frame() == expected; }))
        << frame().x << ", " << frame().y << ", " << frame().width << " x " << frame().height
        << " instead of " << expected.x << ", " << expected.y << ", " << expected.width << " x "
        << expected.height;
  }

  /// Clicks the spectrum button where it is while the strip is hidden or shown.
  void clickSpectrum(bool shown) {
    const int bar = frame().height - (shown ? kStrip : 0);
    ASSERT_TRUE(orvo_->click(*screen_, frame().width - 28, bar - kBarBelow));
  }

  void moveTo(int x, int y) { ASSERT_TRUE(screen_->move(orvo_->window(), x, y)); }

  static Frame higher(Frame frame, int by) {
    frame.height += by;
    return frame;
  }
};

TEST_F(RealWindow, TheSpectrumGrowsTheWindowDownwardAndGivesItsFrameBack) {
  ASSERT_NO_FATAL_FAILURE(startOrvo());
  moveTo(200, 150);
  const Frame before = frame();
  clickSpectrum(false);
  expectFrame(higher(before, kStrip));
  clickSpectrum(true);
  expectFrame(before);
}

TEST_F(RealWindow, AtTheScreensLowerEdgeItMovesUpForTheSpectrumAndComesBack) {
  ASSERT_NO_FATAL_FAILURE(startOrvo());
  moveTo(200, 1000);
  const Frame before = frame();
  ASSERT_GT(before.y + before.height + kStrip, 1400) << "no room below";
  clickSpectrum(false);
  ASSERT_TRUE(eventually([&] { return frame().height == before.height + kStrip; }));
  EXPECT_LE(frame().y + frame().height, 1400);
  EXPECT_LT(frame().y, before.y);
  clickSpectrum(true);
  expectFrame(before);
}

TEST_F(RealWindow, MaximisedItKeepsItsSizeAndComesBackHigher) {
  ASSERT_NO_FATAL_FAILURE(startOrvo());
  moveTo(200, 150);
  const Frame before = frame();
  ASSERT_TRUE(screen_->setMaximised(orvo_->window(), true));
  ASSERT_TRUE(eventually([&] { return frame().width == 1920; }));
  const Frame maximised = frame();
  clickSpectrum(false);
  const std::string shown = folder_.file("shown.png");
  ASSERT_TRUE(screen_->screenshotAtRest(orvo_->window(), shown));
  EXPECT_EQ(frame(), maximised);
  ASSERT_TRUE(screen_->setMaximised(orvo_->window(), false));
  expectFrame(higher(before, kStrip));
  clickSpectrum(true);
  expectFrame(before);
}

TEST_F(RealWindow, ToggledQuicklyItEndsWhereItBegan) {
  ASSERT_NO_FATAL_FAILURE(startOrvo());
  moveTo(200, 150);
  const Frame before = frame();
  const int x = before.width - 28;
  const int y = before.height - kBarBelow;
  for (int i = 0; i < 6; ++i) {
    ASSERT_TRUE(orvo_->click(*screen_, x, y));
  }
  ASSERT_TRUE(screen_->screenshotAtRest(orvo_->window(), folder_.file("rest.png")));
  expectFrame(before);
}

TEST_F(RealWindow, TheKeyboardAloneReachesRecordAndPressesIt) {
  ASSERT_NO_FATAL_FAILURE(startOrvo());
  // An active window gives the focus to the waveform; To Start and Record follow.
  ASSERT_TRUE(screen_->pressKey("Tab"));
  ASSERT_TRUE(screen_->pressKey("Tab"));
  ASSERT_TRUE(screen_->pressKey("ctrl+Return"));
  ASSERT_TRUE(orvo_->waitUntilRecorded(1)) << orvo_->process().errorOutput();
  ASSERT_TRUE(screen_->pressKey("r"));
  std::uint64_t frames = 0;
  EXPECT_TRUE(eventually([&] {
    const std::uint64_t last = std::exchange(frames, orvo_->recordedFrames());
    return last == frames;
  })) << "R stops it wherever the keyboard is";
}

}  // namespace
