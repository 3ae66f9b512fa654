#include "document/files/OVImportPlaceLabel.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <map>
#include <mutex>

#include <gmock/gmock.h>

#include "support/Gate.h"
#include "support/MainLoop.h"
#include "support/TemporaryFolder.h"
#include "support/fakes/RecordingServices.h"
#include "support/fakes/TestUserAudioFiles.h"
#include "support/programs/AudioFileTools.h"

namespace {

const std::string kPlaceOnly = "Goes in at 00:00:04.00.";

std::string replacing(int seconds) {
  return "Goes in at 00:00:04.00 and replaces " + std::to_string(seconds) + " s.";
}

/// Files of silence, named by their length in seconds: WAV, or MP3 that does not say how long it
/// is. The ones whose name begins with "slow" do not answer until the gate is open.
class NamedFiles : public platform::UserAudioFiles {
 public:
  explicit NamedFiles(support::Gate& gate) : gate_(gate) {}

  int opened() const { return opened_; }

  Opened openForReading(const std::string& path) override {
    ++opened_;
    const std::string name = path.substr(path.rfind('/') + 1);
    if (name.starts_with("slow")) {
      gate_.pass();
    }
    const int seconds = std::atoi(name.c_str() + name.find_first_of("0123456789"));
    const std::lock_guard lock(mutex_);
    auto& file = files_[name];
    if (!file) {
      file = std::make_unique<support::TestUserAudioFiles>();
      const std::size_t bytes = static_cast<std::size_t>(seconds) * 44100 * 4;
      const std::string wav = support::wavBytes(44100, 2, 16, std::string(bytes, '\0'));
      file->setBytes(name.ends_with(".mp3") ? mp3WithoutALength(wav) : wav);
    }
    return file->openForReading(path);
  }
  Opened createForWriting(const std::string&) override { return EROFS; }
  Opened writeTo(int) override { return EROFS; }

 private:
  static std::string mp3WithoutALength(const std::string& wav) {
    const support::TemporaryFolder folder;
    EXPECT_TRUE(support::writeBytes(folder.file("a.wav"), wav));
    EXPECT_EQ(support::ffmpeg({"-i", folder.file("a.wav"), "-b:a", "128k", "-write_xing", "0",
                               folder.file("a.mp3")}),
              "");
    return support::fileBytes(folder.file("a.mp3"));
  }

  support::Gate& gate_;
  std::atomic<int> opened_ = 0;
  std::mutex mutex_;
  std::map<std::string, std::unique_ptr<support::TestUserAudioFiles>> files_;
};

class OVImportPlaceLabelTest : public testing::Test {
 protected:
  ~OVImportPlaceLabelTest() override {
    gate_.open();
    settle();
  }

  static void settle() {
    EXPECT_TRUE(awaitGlobalQueue());
    EXPECT_TRUE(drainMainQueue());
  }

  std::string text() const { return label_->text().toStdString(); }

  support::InstalledRecordingServices services_;
  support::Gate gate_;
  NamedFiles files_{gate_};
  platform::Installed<platform::UserAudioFiles>::Scope installation_{files_};
  OVImportPlace place_{.atSecond = 4.0, .endSecond = 3600.0};
  std::unique_ptr<OVImportPlaceLabel> label_ =
      std::make_unique<OVImportPlaceLabel>([this] { return place_; });
};

TEST_F(OVImportPlaceLabelTest, SaysThePlaceUntilAFileIsChosen) {
  EXPECT_EQ(text(), kPlaceOnly);
  label_->choose("");
  EXPECT_EQ(text(), kPlaceOnly);
}

TEST_F(OVImportPlaceLabelTest, SaysWhatTheChosenFileReplaces) {
  label_->choose("/music/8.wav");
  EXPECT_EQ(text(), kPlaceOnly) << "the length is not waited for";
  ASSERT_TRUE(runMainLoopUntil([this] { return text() == replacing(8); }));
  label_->choose("/music/3.wav");
  EXPECT_EQ(text(), kPlaceOnly) << "the length of another file does not stay";
  ASSERT_TRUE(runMainLoopUntil([this] { return text() == replacing(3); }));
  label_->choose("");
  EXPECT_EQ(text(), kPlaceOnly);
}

TEST_F(OVImportPlaceLabelTest, SaysAboutWhereTheFilesLengthIsOnlyEstimated) {
  label_->choose("/music/8.mp3");
  ASSERT_TRUE(runMainLoopUntil([this] { return text() != kPlaceOnly; }));
  EXPECT_EQ(text(), "Goes in at 00:00:04.00 and replaces about 8 s.");
  label_->choose("/music/8.wav");
  ASSERT_TRUE(runMainLoopUntil([this] { return text() == replacing(8); }));
}

TEST_F(OVImportPlaceLabelTest, AFileThatCannotBeReadIsNoAlertHere) {
  label_->choose("/music/0.wav");  // a header without sound
  settle();
  EXPECT_EQ(text(), kPlaceOnly);
  EXPECT_TRUE(services_->alerts().empty());
  EXPECT_TRUE(services_->postedAlerts().empty());
}

TEST_F(OVImportPlaceLabelTest, AMediumThatDoesNotAnswerHoldsUpNeitherTheLabelNorTheNextFile) {
  label_->choose("/net/slow9.wav");
  ASSERT_TRUE(gate_.awaitArrival());
  EXPECT_EQ(text(), kPlaceOnly);
  label_->choose("/music/3.wav");
  ASSERT_TRUE(runMainLoopUntil([this] { return text() == replacing(3); }));
  gate_.open();
  settle();
  EXPECT_EQ(text(), replacing(3)) << "a late answer for another file is dropped";
}

TEST_F(OVImportPlaceLabelTest, ALateAnswerForAFileThatIsChosenAgainIsDroppedToo) {
  label_->choose("/net/slow9.wav");
  ASSERT_TRUE(gate_.awaitArrival());
  label_->choose("/music/3.wav");
  label_->choose("/net/slow9.wav");
  gate_.open();
  ASSERT_TRUE(runMainLoopUntil([this] { return text() == replacing(9); }));
  settle();
  EXPECT_EQ(text(), replacing(9));
}

TEST_F(OVImportPlaceLabelTest, MediaThatDoNotAnswerPileUpToALimit) {
  for (int i = 0; i < 10; ++i) {
    label_->choose("/net/slow" + std::to_string(10 + i) + ".wav");
    ASSERT_TRUE(gate_.awaitArrival(std::min(i + 1, OVImportPlaceLabel::kMaxReads)));
  }
  EXPECT_EQ(files_.opened(), OVImportPlaceLabel::kMaxReads);
  EXPECT_EQ(text(), kPlaceOnly);
  gate_.open();
  ASSERT_TRUE(runMainLoopUntil([this] { return text() == replacing(19); }))
      << "the chosen file is read once others have answered";
}

TEST_F(OVImportPlaceLabelTest, FollowsThePlaceWhileThePanelIsOpen) {
  label_->choose("/music/8.wav");
  ASSERT_TRUE(runMainLoopUntil([this] { return text() == replacing(8); }));
  place_.atSecond = 5.0;
  ASSERT_TRUE(
      runMainLoopUntil([this] { return text() == "Goes in at 00:00:05.00 and replaces 8 s."; }));
}

TEST_F(OVImportPlaceLabelTest, AnAnswerAfterThePanelHasClosedFindsNothing) {
  label_->choose("/net/slow9.wav");
  ASSERT_TRUE(gate_.awaitArrival());
  label_.reset();
  gate_.open();
  settle();
}

}  // namespace
