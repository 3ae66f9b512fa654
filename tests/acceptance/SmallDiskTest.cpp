// A disk that has no room for a file: the user is told, and what was taken is given back.

#include "acceptance/DocumentTest.h"
#include "support/programs/LimitedDisk.h"
#include "support/programs/Mpeg4Length.h"

using namespace support;

namespace {

class SmallDisk : public DocumentTest {
 protected:
  static constexpr std::uint64_t kDiskBytes = 1 << 20;  // 131,072 frames, three seconds

  /// Starts the program with its recordings on a small disk of their own.
  void startOnSmallDisk() {
    const std::string disk = folder_.makeFolder("disk");
    RunningOrvo::Options options;
    options.wrapper = LimitedDisk::ofSize(disk, kDiskBytes).wrapper();
    options.temporaryFolder = disk;
    ASSERT_NO_FATAL_FAILURE(startOrvo(options));
  }

  void importInVain(const std::string& path) {
    const Window shown = openPanel("ctrl+i", "Import");
    ASSERT_FALSE(shown.empty());
    ASSERT_NO_FATAL_FAILURE(chooseFile(path));
    ASSERT_TRUE(screen_->waitUntilGone(shown));
    ASSERT_NO_FATAL_FAILURE(expectOneAlertAndDismissIt());
    ASSERT_NO_FATAL_FAILURE(expectTitle("Unnamed"));
    ASSERT_TRUE(eventually([&] { return orvo_->recordedFrames() == 0; }))
        << orvo_->recordedFrames() << " frames are still on the disk";
  }

  /// Expects a recording of two seconds, for which the disk has room only while it is empty.
  void expectToRecord() {
    const Samples signal = signalOfSeconds(2.0, 21);
    ASSERT_NO_FATAL_FAILURE(record(signal));
    expectRecorded(signal);
    EXPECT_TRUE(alerts().empty());
  }

  /// Four seconds of sound, more than the disk takes.
  std::string make(const std::string& name, const std::vector<std::string>& encoding) {
    std::vector<std::string> arguments{"-f",  "lavfi", "-i",  "anoisesrc=d=4:a=0.5",
                                       "-ac", "2",     "-ar", "44100"};
    arguments.insert(arguments.end(), encoding.begin(), encoding.end());
    arguments.push_back(document(name));
    EXPECT_EQ(ffmpeg(arguments), "");
    return document(name);
  }
};

TEST_F(SmallDisk, ImportThatFillsTheDiskLeavesItToTheNextRecording) {
  // A file whose length is unknown before its end, so that it is tried.
  const std::string path = make("live.m4a", {"-c:a", "alac"});
  ASSERT_TRUE(setMpeg4Length(path, 44100, 0));
  ASSERT_NO_FATAL_FAILURE(startOnSmallDisk());
  ASSERT_NO_FATAL_FAILURE(importInVain(path));
  expectToRecord();
}

TEST_F(SmallDisk, ImportThatPromisesTooMuchIsRefusedBeforehand) {
  const std::string path = make("long.wav", {});
  ASSERT_NO_FATAL_FAILURE(startOnSmallDisk());
  ASSERT_NO_FATAL_FAILURE(importInVain(path));
  expectToRecord();
}

}  // namespace
