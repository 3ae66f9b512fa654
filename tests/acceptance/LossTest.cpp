// After the program is killed or the disk is full: old files are intact, and no stray ones remain.

#include <csignal>
#include <filesystem>

#include "acceptance/DocumentTest.h"
#include "support/programs/AudioFileTools.h"
#include "support/programs/LimitedDisk.h"

using namespace support;

namespace {

class Loss : public DocumentTest {};

TEST_F(Loss, KilledWhileRecordingItLeavesNoFile) {
  RunningOrvo::Options options;
  options.temporaryFolder = folder_.makeFolder("temporary");
  ASSERT_NO_FATAL_FAILURE(startOrvo(options));
  ASSERT_NO_FATAL_FAILURE(beginRecording());
  ASSERT_TRUE(orvo_->waitUntilRecorded(kFramesPerSecond / 2));
  orvo_->process().signal(SIGKILL);
  EXPECT_EQ(orvo_->process().waitForExit(), (ExitStatus{0, SIGKILL}));
  EXPECT_EQ(names(options.temporaryFolder), std::vector<std::string>());
}

TEST_F(Loss, KilledWhileSavingItLeavesTheOldFileWhole) {
  // Five minutes, whose encoding takes seconds.
  constexpr std::size_t kMinutes = 5;
  constexpr std::uint32_t kRate = 44100;
  const Samples minute = noise(kRate * 60 / kChannels, 61);
  std::string data;
  for (std::size_t i = 0; i < kMinutes; ++i) {
    for (const float sample : minute) {
      data.push_back(static_cast<char>(static_cast<int>(sample * 255.0F)));
    }
  }
  ASSERT_TRUE(writeBytes(document("long.wav"), wavBytes(kRate, 1, 8, data)));
  const std::string old = "the old file, which is not to be lost";
  ASSERT_TRUE(writeBytes(document("old.m4a"), old));
  ASSERT_NO_FATAL_FAILURE(startWith({document("long.wav")}, data.size()));
  const Window shown = openPanel("ctrl+shift+s", "Save As");
  ASSERT_FALSE(shown.empty());
  ASSERT_NO_FATAL_FAILURE(chooseKind(Kind::aac));
  ASSERT_NO_FATAL_FAILURE(chooseFile(document("old.m4a")));
  ASSERT_NO_FATAL_FAILURE(replaceExisting());
  // The new file grows beside the old one.
  std::string beside;
  ASSERT_TRUE(eventually([&] {
    std::error_code gone;
    for (const std::string& name : names(documents_)) {
      beside = name.starts_with(".orvo-") ? name : beside;
    }
    return !beside.empty() && std::filesystem::file_size(document(beside), gone) > 100000 && !gone;
  }));
  orvo_->process().signal(SIGKILL);
  EXPECT_EQ(orvo_->process().waitForExit(), (ExitStatus{0, SIGKILL}));
  ASSERT_EQ(names(documents_), (std::vector<std::string>{beside, "long.wav", "old.m4a"}))
      << "it was killed too late";
  EXPECT_EQ(fileBytes(document("old.m4a")), old);
}

TEST_F(Loss, FullDiskWhileSavingIsToldOnceAndLeavesTheOldFileWhole) {
  const std::string old(600000, 'o');
  const Samples audio = signalOfSeconds(5.0, 62);  // 880 KB in 16 bits
  ASSERT_TRUE(writeBytes(folder_.file("old"), old));
  ASSERT_TRUE(writeWav(folder_.file("long.wav"), audio));
  // A disk of one mebibyte that holds the old file, for this program alone.
  RunningOrvo::Options options;
  const LimitedDisk limited =
      LimitedDisk::ofSize(documents_, 1 << 20, folder_.file("old"), "old.wav");
  options.wrapper = limited.wrapper();
  options.files = {folder_.file("long.wav")};
  ASSERT_NO_FATAL_FAILURE(startOrvo(options));
  ASSERT_TRUE(orvo_->waitUntilRecorded(audio.size() / kChannels));
  ASSERT_TRUE(screen_->screenshotAtRest(orvo_->window(), folder_.file("loaded.png")));
  ASSERT_NO_FATAL_FAILURE(record(signalOfSeconds(0.3, 63)));
  ASSERT_NO_FATAL_FAILURE(expectTitle("long.wav*"));

  const Window shown = openPanel("ctrl+shift+s", "Save As");
  ASSERT_FALSE(shown.empty());
  ASSERT_NO_FATAL_FAILURE(chooseFile(document("old.wav")));
  ASSERT_NO_FATAL_FAILURE(replaceExisting());
  ASSERT_NO_FATAL_FAILURE(expectOneAlertAndDismissIt());
  ASSERT_NO_FATAL_FAILURE(expectTitle("long.wav*"));
  const std::string disk = limited.seenBy(orvo_->pid());
  EXPECT_EQ(names(disk), std::vector<std::string>{"old.wav"});
  EXPECT_EQ(fileBytes(disk + "/old.wav"), old);

  // Another folder has space.
  ASSERT_NO_FATAL_FAILURE(saveAs(folder_.file("rescued.wav"), Kind::wav));
  EXPECT_GE(decoded16ByFfmpeg(folder_.file("rescued.wav")).size(), audio.size());
  EXPECT_TRUE(alerts().empty());
}

}  // namespace
