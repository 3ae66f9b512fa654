#include "acceptance/AcceptanceTest.h"

using namespace support;

namespace {

/// Whether `in` holds the whole of `part`, sample for sample.
bool holds(const Samples& in, const Samples& part) {
  const auto start = findStart(part, in);
  return start && equalFrames(part, in, *start) == part.size() / kChannels;
}

/// Where the two begin to differ, for the message of a failed test.
std::string difference(const Samples& in, const Samples& part) {
  const Samples sounding = withoutSilence(in);
  const auto start = findStart(part, sounding);
  return start ? "the first " + std::to_string(equalFrames(part, sounding, *start)) + " of " +
                     std::to_string(part.size() / kChannels) + " frames are there"
               : "its beginning is not among " + std::to_string(sounding.size() / kChannels) +
                     " frames that are not silent";
}

}  // namespace

Samples signalOfSeconds(double seconds, std::uint32_t seed) {
  return noise(static_cast<std::size_t>(seconds * kFramesPerSecond) + 17, seed);
}

AcceptanceTest::AcceptanceTest() {
  std::string error;
  screen_ = VirtualScreen::start(error);
  EXPECT_NE(screen_, nullptr) << error;
  server_ = PrivateSoundServer::start(error);
  EXPECT_NE(server_, nullptr) << error;
}

void AcceptanceTest::startOrvo(const RunningOrvo::Options& options) {
  ASSERT_TRUE(screen_ && server_);
  std::string error;
  orvo_ = RunningOrvo::start(ORVO_PROGRAM, *screen_, server_->environment(), options, error);
  ASSERT_NE(orvo_, nullptr) << error;
}

void AcceptanceTest::feed(const Samples& signal) {
  const std::string path = folder_.file("fed" + std::to_string(++parts_));
  ASSERT_TRUE(writeRaw(path, signal));
  const auto player = server_->playIntoFeed(path);
  ASSERT_NE(player, nullptr);
  ASSERT_TRUE(player->waitForExit());
}

void AcceptanceTest::beginRecording() {
  const std::uint64_t before = orvo_->recordedFrames();
  ASSERT_TRUE(screen_->pressKey("r"));
  ASSERT_TRUE(orvo_->waitUntilRecorded(before + 1)) << orvo_->process().errorOutput();
}

void AcceptanceTest::record(const Samples& signal) {
  ASSERT_NO_FATAL_FAILURE(beginRecording());
  ASSERT_NO_FATAL_FAILURE(feed(signal));
  ASSERT_NO_FATAL_FAILURE(expectRecorded(signal));
  ASSERT_TRUE(screen_->pressKey("r"));
}

void AcceptanceTest::expectRecorded(const Samples& signal, std::size_t document) {
  ASSERT_TRUE(eventually([&] { return holds(withoutSilence(orvo_->recorded(document)), signal); }))
      << difference(orvo_->recorded(document), signal);
}

void AcceptanceTest::listen() {
  listener_ = server_->captureHeard(folder_.file("heard" + std::to_string(++parts_)));
  ASSERT_NE(listener_, nullptr);
}

Samples AcceptanceTest::heard() const {
  return readRaw(folder_.file("heard" + std::to_string(parts_)));
}

void AcceptanceTest::expectHeard(const Samples& signal) {
  ASSERT_TRUE(eventually([&] { return holds(withoutSilence(heard()), signal); }))
      << difference(heard(), signal);
}

bool AcceptanceTest::wasHeardWithoutAGap(const Samples& signal) const {
  return holds(heard(), signal);
}

void AcceptanceTest::beginPlaying() {
  ASSERT_TRUE(screen_->pressKey("space"));
  ASSERT_TRUE(eventually([&] { return server_->isPlaying(orvo_->pid()); }));
}

void AcceptanceTest::waitUntilPlayed() {
  ASSERT_TRUE(eventually([&] { return !server_->isPlaying(orvo_->pid()); }));
}

std::vector<AcceptanceTest::Window> AcceptanceTest::alerts() const {
  std::vector<Window> found;
  for (const Window& window : screen_->windowsOf(orvo_->pid(), "Orvo")) {
    if (screen_->titleOf(window) == "Orvo") {  // titles of documents continue with a name
      found.push_back(window);
    }
  }
  return found;
}

void AcceptanceTest::expectOneAlertAndDismissIt() {
  ASSERT_TRUE(eventually([&] { return !alerts().empty(); }));
  const auto shown = alerts();
  ASSERT_EQ(shown.size(), 1U);
  ASSERT_TRUE(screen_->activate(shown.front()));
  ASSERT_TRUE(screen_->pressKey("Return"));
  ASSERT_TRUE(screen_->waitUntilGone(shown.front()));
  ASSERT_TRUE(orvo_->activateWindow(*screen_));
}

void AcceptanceTest::answerSheet(Answer given) {
  ASSERT_TRUE(eventually([&] { return alerts().size() == 1; }));
  ASSERT_NO_FATAL_FAILURE(answer(alerts().front(), given));
}

void AcceptanceTest::answer(const Window& sheet, Answer answer) {
  ASSERT_TRUE(screen_->activate(sheet));
  switch (answer) {
    case Answer::save:
      ASSERT_TRUE(screen_->pressKey("Return"));
      break;
    case Answer::dontSave:  // the button beside Save
      ASSERT_TRUE(screen_->pressKey("Tab") && screen_->pressKey("space"));
      break;
    case Answer::cancel:
      ASSERT_TRUE(screen_->pressKey("Escape"));
      break;
  }
  ASSERT_TRUE(screen_->waitUntilGone(sheet));
}

AcceptanceTest::Window AcceptanceTest::openFurtherWindow(std::chrono::milliseconds patience) {
  const auto before = screen_->windowsOf(orvo_->pid(), "Orvo - ");
  std::vector<Window> now;
  const bool opened =
      screen_->pressKey("ctrl+n") && eventually(
                                         [&] {
                                           now = screen_->windowsOf(orvo_->pid(), "Orvo - ");
                                           return now.size() > before.size();
                                         },
                                         patience);
  return opened ? now.back() : Window();
}
