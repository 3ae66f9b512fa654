// Cuts, undo and redo by real keys and mouse, seen on the screen and compared sample by sample.

#include <algorithm>

#include "acceptance/DocumentTest.h"
#include "support/programs/AudioFileTools.h"

using namespace support;

namespace {

constexpr int kWidth = 640;  // points
constexpr int kMiddle = 320;
constexpr int kClickY = 120;
constexpr int kAboveNotices = 250;

Samples slice(const Samples& samples, std::size_t fromFrame, std::size_t frames) {
  const auto begin = samples.begin() + static_cast<std::ptrdiff_t>(fromFrame * kChannels);
  return {begin, begin + static_cast<std::ptrdiff_t>(frames * kChannels)};
}

class Editing : public DocumentTest {
 protected:
  /// Moves the marker to the start and takes a picture, without the lower edge of the waveform,
  /// where notices come and go. The marker keeps the brightness of the audio where it was last
  /// clicked.
  std::string picture(const std::string& name) {
    const std::string path = folder_.file(name + ".png");
    EXPECT_TRUE(screen_->activate(orvo_->window()) && orvo_->click(*screen_, kMiddle, kClickY) &&
                screen_->pressKey("Return"));
    EXPECT_TRUE(screen_->screenshotAtRest(orvo_->window(), path));
    EXPECT_TRUE(screen_->keepTop(path, kAboveNotices));
    return path;
  }

  /// Saves under this name and returns the number of frames in the file.
  std::size_t savedFrames(const std::string& name) {
    saveAs(document(name), Kind::wav);
    return decoded16ByFfmpeg(document(name)).size() / kChannels;
  }

  void expectAlike(const std::string& one, const std::string& other) {
    EXPECT_TRUE(screen_->looksLike(one, other)) << one << ' ' << other;
  }
  void expectDifferent(const std::string& one, const std::string& other) {
    EXPECT_FALSE(screen_->looksLike(one, other)) << one << ' ' << other;
  }

  /// Expects the marker where a click in the middle sets it, within a point.
  static void expectMiddle(std::size_t frame, std::size_t frames) {
    EXPECT_NEAR(static_cast<double>(frame), static_cast<double>(frames) / 2,
                2.0 * static_cast<double>(frames) / kWidth);
  }
};

TEST_F(Editing, CutsAreTakenBackAndDoneAgainSampleForSample) {
  // Undo is the first command of the menu, then come the cuts; Redo is disabled here.
  constexpr int kRemoveAfter = 1;
  constexpr int kRemoveBefore = 2;
  ASSERT_NO_FATAL_FAILURE(startOrvo());
  ASSERT_NO_FATAL_FAILURE(record(signalOfSeconds(1.0, 41)));
  const std::string whole = picture("whole");
  const Samples take = orvo_->recorded();
  const std::size_t frames = take.size() / kChannels;

  ASSERT_TRUE(orvo_->click(*screen_, kMiddle, kClickY));
  ASSERT_NO_FATAL_FAILURE(chooseEdit(kRemoveAfter));
  const std::string cutAfter = picture("cut-after");
  const std::size_t kept = savedFrames("cut-after.wav");
  expectMiddle(kept, frames);
  expectHolds(document("cut-after.wav"), slice(take, 0, kept));

  ASSERT_TRUE(screen_->pressKey("ctrl+z"));
  const std::string undone = picture("undone");
  savedFrames("undone.wav");
  expectHolds(document("undone.wav"), take);

  ASSERT_TRUE(screen_->pressKey("ctrl+shift+z"));
  const std::string redone = picture("redone");
  savedFrames("redone.wav");
  expectHolds(document("redone.wav"), slice(take, 0, kept));

  ASSERT_TRUE(orvo_->click(*screen_, kMiddle, kClickY));
  ASSERT_NO_FATAL_FAILURE(chooseEdit(kRemoveBefore));
  const std::string cutBefore = picture("cut-before");
  const std::size_t left = savedFrames("cut-before.wav");
  expectMiddle(left, kept);
  expectHolds(document("cut-before.wav"), slice(take, kept - left, left));

  ASSERT_TRUE(screen_->pressKey("ctrl+z"));
  const std::string again = picture("again");
  savedFrames("again.wav");
  expectHolds(document("again.wav"), slice(take, 0, kept));

  expectAlike(whole, undone);
  expectAlike(cutAfter, redone);
  expectAlike(cutAfter, again);
  expectDifferent(whole, cutAfter);
  expectDifferent(cutAfter, cutBefore);
  EXPECT_TRUE(alerts().empty());
}

TEST_F(Editing, ImportAtTheMarkerIsOneStepBackAndForth) {
  const Samples original = noise16(2 * kFramesPerSecond, 42);
  const Samples imported = noise16(kFramesPerSecond / 2 + 11, 43);
  ASSERT_TRUE(writeWav(document("original.wav"), original));
  ASSERT_TRUE(writeWav(document("imported.wav"), imported));
  const std::size_t frames = original.size() / kChannels;
  ASSERT_NO_FATAL_FAILURE(startWith({document("original.wav")}, frames));
  const std::string before = picture("before");
  ASSERT_TRUE(orvo_->click(*screen_, kMiddle, kClickY));
  const Window shown = openPanel("ctrl+i", "Import");
  ASSERT_FALSE(shown.empty());
  ASSERT_NO_FATAL_FAILURE(chooseFile(document("imported.wav")));
  ASSERT_TRUE(screen_->waitUntilGone(shown));
  ASSERT_NO_FATAL_FAILURE(expectTitle("original.wav*"));
  const std::string with = picture("with");
  savedFrames("with.wav");
  std::vector<Samples> possible;
  for (int x = kMiddle - 2; x <= kMiddle + 2; ++x) {  // the click may be a point off
    const std::size_t at = frames * static_cast<std::size_t>(x) / kWidth;
    possible.push_back(original);
    std::copy(imported.begin(), imported.end(),
              possible.back().begin() + static_cast<std::ptrdiff_t>(at * kChannels));
  }
  EXPECT_GE(indexOf(document("with.wav"), possible), 0);

  ASSERT_TRUE(screen_->pressKey("ctrl+z"));
  const std::string undone = picture("undone");
  savedFrames("undone.wav");
  expectHolds(document("undone.wav"), original);
  ASSERT_TRUE(screen_->pressKey("ctrl+shift+z"));
  const std::string redone = picture("redone");
  savedFrames("redone.wav");
  EXPECT_EQ(fileBytes(document("redone.wav")), fileBytes(document("with.wav")));

  expectAlike(before, undone);
  expectAlike(with, redone);
  expectDifferent(before, with);
  EXPECT_TRUE(alerts().empty());
}

}  // namespace
