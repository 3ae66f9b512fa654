// Saving through the real panel; the file, decoded by another program, must match the recording.

#include <algorithm>

#include "acceptance/DocumentTest.h"
#include "support/programs/AudioFileTools.h"
#include "support/programs/LimitedDisk.h"

using namespace support;

namespace {

class Saving : public DocumentTest {
 protected:
  void recordSome(std::uint32_t seed) {
    ASSERT_NO_FATAL_FAILURE(startOrvo());
    ASSERT_NO_FATAL_FAILURE(record(signalOfSeconds(0.4, seed)));
    ASSERT_NO_FATAL_FAILURE(expectTitle("Unnamed*"));
  }
};

/// A tune with a little noise: a codec preserves it well, and no two sections are alike.
Samples tuneWithNoise(double seconds, std::uint32_t seed) {
  constexpr float kShare = 0.02F;
  Samples samples = tune(seconds);
  const Samples over = noise(samples.size() / kChannels, seed);
  std::transform(samples.begin(), samples.end(), over.begin(), samples.begin(),
                 [](float a, float b) { return a + kShare * b; });
  return samples;
}

TEST_F(Saving, EachOfTheFourKindsHoldsWhatWasRecorded) {
  constexpr double kGood = 15;  // decibels; another tune would give about 0, one frame off too
  ASSERT_NO_FATAL_FAILURE(startOrvo());
  ASSERT_NO_FATAL_FAILURE(expectTitle("Unnamed"));
  ASSERT_NO_FATAL_FAILURE(record(tuneWithNoise(1.5, 21)));
  ASSERT_NO_FATAL_FAILURE(expectTitle("Unnamed*"));
  const Samples recorded = orvo_->recorded();
  ASSERT_NO_FATAL_FAILURE(saveAs(document("take.wav"), Kind::wav));
  ASSERT_NO_FATAL_FAILURE(saveAs(document("take.aiff"), Kind::aiff));
  ASSERT_NO_FATAL_FAILURE(saveAs(document("take.caf"), Kind::caf));
  ASSERT_NO_FATAL_FAILURE(saveAs(document("take.m4a"), Kind::aac));
  EXPECT_EQ(orvo_->recorded(), recorded);
  for (const char* name : {"take.wav", "take.aiff", "take.caf"}) {
    expectHolds(document(name), recorded);
  }
  const Samples coded = decodedByFfmpeg(document("take.m4a"));
  EXPECT_GE(coded.size(), recorded.size()) << "the last packet may be filled up";
  EXPECT_LT(coded.size(), recorded.size() + 1024 * kChannels);
  EXPECT_GT(signalToNoise(recorded, coded), kGood);
  const auto told = runToEnd({"ffprobe", "-v", "error", "-show_entries", "stream=duration_ts",
                              "-of", "default=noprint_wrappers=1:nokey=1", document("take.m4a")},
                             cleanEnvironment());
  EXPECT_EQ(told.output, std::to_string(recorded.size() / kChannels) + "\n") << told.error;
  EXPECT_EQ(names(documents_),
            (std::vector<std::string>{"take.aiff", "take.caf", "take.m4a", "take.wav"}));
  EXPECT_TRUE(alerts().empty());
}

TEST_F(Saving, TheNameGetsTheSuffixOfTheKind) {
  ASSERT_NO_FATAL_FAILURE(recordSome(22));
  const Window panel = openPanel("ctrl+shift+s", "Save As");
  ASSERT_FALSE(panel.empty());
  ASSERT_NO_FATAL_FAILURE(chooseFile(document("one")));
  ASSERT_TRUE(screen_->waitUntilGone(panel));
  ASSERT_NO_FATAL_FAILURE(expectTitle("one.wav"));
  const Window again = openPanel("ctrl+shift+s", "Save As");
  ASSERT_FALSE(again.empty());
  ASSERT_NO_FATAL_FAILURE(chooseKind(Kind::caf));
  ASSERT_TRUE(screen_->pressKey("alt+s"));
  ASSERT_TRUE(screen_->waitUntilGone(again));
  ASSERT_NO_FATAL_FAILURE(expectTitle("one.caf"));
  for (const char* name : {"one.caf", "one.wav"}) {
    expectHolds(document(name), orvo_->recorded());
  }
  EXPECT_EQ(names(documents_), (std::vector<std::string>{"one.caf", "one.wav"}));
}

TEST_F(Saving, SavedAgainItAsksNothingAndHoldsTheSecondTakeToo) {
  const std::string path = document("take.wav");
  ASSERT_NO_FATAL_FAILURE(recordSome(23));
  ASSERT_NO_FATAL_FAILURE(saveAs(path, Kind::wav));
  const std::uint64_t first = orvo_->recordedFrames();
  ASSERT_NO_FATAL_FAILURE(record(signalOfSeconds(0.4, 24)));
  ASSERT_NO_FATAL_FAILURE(expectTitle("take.wav*"));
  ASSERT_NO_FATAL_FAILURE(save());
  EXPECT_GT(orvo_->recordedFrames(), first);
  expectHolds(path, orvo_->recorded());
  EXPECT_EQ(screen_->windowsOf(orvo_->pid(), "").size(), 1U);
  ASSERT_TRUE(screen_->pressKey("ctrl+q"));
  EXPECT_EQ(orvo_->process().waitForExit(), (ExitStatus{0, 0})) << "nothing is asked";
}

TEST_F(Saving, FileThatExistsIsReplacedOnlyAfterAQuestion) {
  const std::string path = document("take.wav");
  const std::string old = "not to be lost";
  ASSERT_TRUE(writeBytes(path, old));
  ASSERT_NO_FATAL_FAILURE(recordSome(25));
  const Window shown = openPanel("ctrl+shift+s", "Save As");
  ASSERT_FALSE(shown.empty());
  ASSERT_NO_FATAL_FAILURE(chooseFile(path));
  const Window question = questionToReplace();
  ASSERT_FALSE(question.empty());
  ASSERT_TRUE(screen_->pressKey("alt+c"));
  ASSERT_TRUE(screen_->waitUntilGone(question));
  EXPECT_TRUE(screen_->isVisible(shown));
  EXPECT_EQ(fileBytes(path), old);
  ASSERT_TRUE(screen_->activate(shown));
  ASSERT_NO_FATAL_FAILURE(chooseFile(path));
  ASSERT_NO_FATAL_FAILURE(replaceExisting());
  ASSERT_TRUE(screen_->waitUntilGone(shown));
  ASSERT_NO_FATAL_FAILURE(expectTitle("take.wav"));
  expectHolds(path, orvo_->recorded());
  EXPECT_EQ(names(documents_), std::vector<std::string>{"take.wav"});
}

TEST_F(Saving, NameMayBeLongAndInAnyLanguage) {
  const std::string foreign = "100% %1 %s Ünlü Проба 録音.wav";
  const std::string lengthy = "[*] 100% %1 " + std::string(220, 'x') + ".wav";
  const Samples old = signalOfSeconds(0.2, 26);
  ASSERT_TRUE(writeWav(document(foreign), old));
  ASSERT_NO_FATAL_FAILURE(startWith({document(foreign)}, old.size() / kChannels));
  ASSERT_NO_FATAL_FAILURE(expectTitle(foreign));
  ASSERT_NO_FATAL_FAILURE(saveAs(document(lengthy), Kind::wav));
  expectHolds(document(lengthy), old);

  // The virtual keyboard cannot type the other name, but the panel suggests it.
  orvo_.reset();
  ASSERT_NO_FATAL_FAILURE(startWith({document(foreign)}, old.size() / kChannels));
  const Window shown = openPanel("ctrl+shift+s", "Save As");
  ASSERT_FALSE(shown.empty());
  ASSERT_NO_FATAL_FAILURE(chooseKind(Kind::caf));
  ASSERT_TRUE(screen_->pressKey("alt+s"));
  ASSERT_TRUE(screen_->waitUntilGone(shown));
  const std::string other = foreign.substr(0, foreign.size() - 3) + "caf";
  ASSERT_NO_FATAL_FAILURE(expectTitle(other));
  expectHolds(document(other), old);
  EXPECT_EQ(names(documents_).size(), 3U);
  EXPECT_TRUE(alerts().empty());
}

TEST_F(Saving, NameMayHoldQuotes) {
  const std::string name = "say \"hi\" 'there'.wav";
  ASSERT_NO_FATAL_FAILURE(recordSome(27));
  ASSERT_NO_FATAL_FAILURE(saveAs(document(name), Kind::wav));
  expectHolds(document(name), orvo_->recorded());
  EXPECT_EQ(names(documents_), std::vector<std::string>{name});
}

TEST_F(Saving, NameThatIsTooLongIsToldAndAnotherOneCanBeGiven) {
  ASSERT_NO_FATAL_FAILURE(recordSome(28));
  const Window shown = openPanel("ctrl+shift+s", "Save As");
  ASSERT_FALSE(shown.empty());
  ASSERT_NO_FATAL_FAILURE(chooseFile(document(std::string(255, 'x'))));
  ASSERT_NO_FATAL_FAILURE(expectOneAlertAndDismissIt());
  ASSERT_NO_FATAL_FAILURE(expectTitle("Unnamed*"));
  EXPECT_TRUE(names(documents_).empty());
  ASSERT_NO_FATAL_FAILURE(saveAs(document("short.wav"), Kind::wav));
  expectHolds(document("short.wav"), orvo_->recorded());
}

TEST_F(Saving, DiskThatCanOnlyBeReadIsToldAndAnotherPlaceCanBeChosen) {
  const std::string disk = folder_.makeFolder("disk");
  RunningOrvo::Options options;
  options.wrapper = LimitedDisk::readOnly(disk).wrapper();
  ASSERT_NO_FATAL_FAILURE(startOrvo(options));
  ASSERT_NO_FATAL_FAILURE(record(signalOfSeconds(0.3, 29)));
  const Window shown = openPanel("ctrl+shift+s", "Save As");
  ASSERT_FALSE(shown.empty());
  ASSERT_NO_FATAL_FAILURE(chooseFile(disk + "/take.wav"));
  ASSERT_NO_FATAL_FAILURE(expectOneAlertAndDismissIt());
  ASSERT_NO_FATAL_FAILURE(expectTitle("Unnamed*"));
  ASSERT_NO_FATAL_FAILURE(saveAs(document("take.wav"), Kind::wav));
  expectHolds(document("take.wav"), orvo_->recorded());
}

}  // namespace
