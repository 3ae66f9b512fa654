#include "document/files/loadFile.h"

#include <new>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include "audio/OVAudioFileReader.h"
#include "storage/OVAudioBuffer.h"
#include "support/TemporaryFolder.h"
#include "support/fakes/RecordingServices.h"
#include "support/fakes/TestUserAudioFiles.h"
#include "support/programs/AudioFileTools.h"

namespace {

using testing::DoubleNear;
using testing::ElementsAre;
using testing::IsEmpty;

class loadFileTest : public testing::Test {
 protected:
  std::shared_ptr<OVAudioFileReader> reader(std::size_t frames) {
    storage_.setBytes(support::wavBytes(44100, 2, 16, std::string(4 * frames, 'x')));
    auto opened = OVAudioFileReader::initWithFile("a.wav", cancelled_);
    EXPECT_NE(opened, nullptr);
    return opened;
  }

  LoadOutcome run(std::size_t frames) { return run(*reader(frames)); }

  LoadOutcome run(OVAudioFileReader& reader) {
    return loadFile(reader, {.buffer = buffer_,
                             .atByteOffset = 80,
                             .cancelled = cancelled_,
                             .takeWriteError = [this] { return writeError_; },
                             .progress =
                                 [this](std::uint64_t byteOffset, double step) {
                                   offsets_.push_back(byteOffset);
                                   steps_.push_back(step);
                                   if (offsets_.size() == cancelAfter_) {
                                     cancelled_->store(true);
                                   }
                                   if (offsets_.size() == noMemoryAfter_) {
                                     throw std::bad_alloc();
                                   }
                                 }});
  }

  support::InstalledRecordingServices services_;
  support::TestUserAudioFiles storage_;
  platform::Installed<platform::UserAudioFiles>::Scope installation_{storage_};
  std::shared_ptr<OVAudioBufferInterface> buffer_ = OVAudioBuffer::init();
  std::shared_ptr<std::atomic<bool>> cancelled_ = std::make_shared<std::atomic<bool>>(false);
  int writeError_ = 0;
  std::size_t cancelAfter_ = 0;
  std::size_t noMemoryAfter_ = 0;
  std::vector<std::uint64_t> offsets_;
  std::vector<double> steps_;
};

TEST_F(loadFileTest, AFileShorterThanAChunkIsOneStepOfMoreThanTheWholeBar) {
  EXPECT_EQ(run(1000).endOffset, 80 + 8 * 1000U);
  EXPECT_THAT(offsets_, ElementsAre(80 + 8 * 1000U));
  EXPECT_THAT(steps_, ElementsAre(DoubleNear(264.6, 1e-9)));
}

TEST_F(loadFileTest, AnEmptyFileIsNoStep) {
  EXPECT_EQ(run(0).endOffset, 80U);
  EXPECT_THAT(steps_, IsEmpty());
}

TEST_F(loadFileTest, WhereTheLengthIsOnlyEstimatedTheStepsFollowTheBytesRead) {
  const support::TemporaryFolder folder;
  for (const auto& [name, options] : std::vector<std::pair<std::string, std::vector<std::string>>>{
           {"a.aac", {"-c:a", "aac"}}, {"a.mp3", {"-c:a", "libmp3lame", "-write_xing", "0"}}}) {
    const std::string path = folder.file(name);
    std::vector<std::string> command{"-f", "lavfi", "-i", "anoisesrc=d=40", "-b:a", "256k"};
    command.insert(command.end(), options.begin(), options.end());
    command.push_back(path);
    ASSERT_EQ(support::ffmpeg(command), "");
    storage_.setBytes(support::fileBytes(path));
    const auto opened = OVAudioFileReader::initWithFile(name, cancelled_);
    ASSERT_NE(opened, nullptr);
    EXPECT_GT(run(*opened).endOffset, 80 + 6 * 8 * kLoadChunkFrames);
    EXPECT_THAT(steps_, testing::SizeIs(7)) << name;
    EXPECT_THAT(steps_, testing::Each(testing::AllOf(testing::Gt(0.05), testing::Lt(0.3)))) << name;
    EXPECT_NEAR(std::accumulate(steps_.begin(), steps_.end(), 0.0), 1.0, 0.05) << name;
    steps_.clear();
  }
}

TEST_F(loadFileTest, ACancelEndsItBehindTheChunkThatIsStored) {
  cancelAfter_ = 1;
  EXPECT_EQ(run(3 * kLoadChunkFrames).endOffset, 80 + 8 * kLoadChunkFrames);
  EXPECT_THAT(services_->alerts(), IsEmpty());
}

TEST_F(loadFileTest, AChunkThatStorageDidNotTakeIsNotCounted) {
  writeError_ = ENOSPC;
  const auto outcome = run(2 * kLoadChunkFrames);
  EXPECT_EQ(outcome.endOffset, 80U);
  EXPECT_EQ(outcome.writeError, ENOSPC);
  EXPECT_THAT(offsets_, IsEmpty());
}

TEST_F(loadFileTest, WhenMemoryRunsOutTheChunksBeforeCount) {
  noMemoryAfter_ = 2;
  const auto outcome = run(3 * kLoadChunkFrames);
  EXPECT_EQ(outcome.endOffset, 80 + 2 * 8 * kLoadChunkFrames);
  EXPECT_EQ(outcome.writeError, ENOMEM);
}

}  // namespace
