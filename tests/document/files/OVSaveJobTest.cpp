#include "document/files/OVSaveJob.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <new>

#include <gmock/gmock.h>

#include "document/FileFixture.h"
#include "platform/files/TemporaryFiles.h"
#include "support/ClosedFolder.h"
#include "support/fakes/MemoryTestBuffer.h"
#include "support/fakes/ScriptedFreeSpace.h"

namespace {

using testing::ElementsAre;
namespace fs = std::filesystem;

constexpr std::uint64_t kBytesPerFrame = 8;
constexpr std::uint64_t kPageFrames = 512;  // the least that a disk loses: 4 KiB

class OVSaveJobTest : public DocumentFileFixture {
 protected:
  OVSaveJob::Outcome save(std::uint64_t frames) {
    return OVSaveJob::run({.buffer = audio_,
                           .fromFrame = 0,
                           .frameCount = frames,
                           .path = at("take.wav"),
                           .outputFormat = OVAudioFileWriter::kWave},
                          [this](double fraction) { progress_.push_back(fraction); });
  }

  void lose(std::uint64_t firstFrame, std::uint64_t frames) {
    audio_->addHole(firstFrame * kBytesPerFrame, (firstFrame + frames) * kBytesPerFrame);
  }

  /// `samples` with some frames replaced by silence.
  static Samples silenced(Samples samples, std::uint64_t firstFrame, std::uint64_t frames) {
    const auto begin = samples.begin() + static_cast<std::ptrdiff_t>(2 * firstFrame);
    std::fill(begin, begin + static_cast<std::ptrdiff_t>(2 * frames), 0.0F);
    return samples;
  }

  const std::shared_ptr<MemoryTestBuffer> audio_ = std::make_shared<MemoryTestBuffer>();
  std::vector<double> progress_;
};

TEST_F(OVSaveJobTest, ProgressGrowsFromChunkToChunkUpToTheWhole) {
  const std::uint64_t frames = 2 * OVSaveJob::kChunkFrames + OVSaveJob::kChunkFrames / 2;
  audio_->append(Samples(2 * frames));
  EXPECT_TRUE(save(frames).complete);
  EXPECT_THAT(progress_, ElementsAre(0.4, 0.8, 1.0));
}

// What storage does not give back ----------------------------------------------------------------

TEST_F(OVSaveJobTest, ABadPageCostsAFewReadsAndNothingBesideItself) {
  const Samples samples = ramp(20'000);
  audio_->append(samples);
  lose(3000, kPageFrames);  // does not begin where a page of the recording would
  const auto outcome = save(20'000);
  EXPECT_TRUE(outcome.complete);
  EXPECT_EQ(outcome.unreadableFrames, kPageFrames);
  EXPECT_LT(audio_->readCount(), 20U);
  EXPECT_EQ(readFile(at("take.wav")), silenced(samples, 3000, kPageFrames));
}

TEST_F(OVSaveJobTest, ALongLossCostsAFewReadsAndEndsAtItsLastFrame) {
  const std::uint64_t frames = 3 * OVSaveJob::kChunkFrames;
  const std::uint64_t lost = 2 * OVSaveJob::kChunkFrames - 300;
  const Samples samples = ramp(frames);
  audio_->append(samples);
  lose(100, lost);
  const auto outcome = save(frames);
  EXPECT_TRUE(outcome.complete);
  EXPECT_EQ(outcome.unreadableFrames, lost);
  EXPECT_LT(audio_->readCount(), 80U);
  EXPECT_EQ(readFile(at("take.wav")), silenced(samples, 100, lost));
}

TEST_F(OVSaveJobTest, ALossAtTheEndIsSilentUpToTheEnd) {
  const Samples samples = ramp(1000);
  audio_->append(samples);
  lose(990, 10);
  const auto outcome = save(1000);
  EXPECT_EQ(outcome.unreadableFrames, 10U);
  EXPECT_EQ(readFile(at("take.wav")), silenced(samples, 990, 10));
}

TEST_F(OVSaveJobTest, WhatIsReadAtTheSecondTryIsNotLost) {
  const Samples samples = ramp(20'000);
  audio_->append(samples);
  lose(0, 20'000);
  int reads = 0;
  audio_->beforeRead = [&](std::uint64_t) {
    if (++reads == 2) {
      audio_->clearHoles();
    }
  };
  const auto outcome = save(20'000);
  EXPECT_TRUE(outcome.complete);
  EXPECT_EQ(outcome.unreadableFrames, 0U);
  EXPECT_EQ(readFile(at("take.wav")), samples);
}

TEST_F(OVSaveJobTest, SeveralBadPagesAreEachFoundAndTheGoodOnesBetweenKept) {
  Samples samples = ramp(60'000);
  audio_->append(samples);
  for (std::uint64_t frame = 2048; frame < 50'000; frame += 6 * kPageFrames) {
    lose(frame, kPageFrames);
    samples = silenced(samples, frame, kPageFrames);
  }
  EXPECT_TRUE(save(60'000).complete);
  EXPECT_EQ(readFile(at("take.wav")), samples);
}

TEST_F(OVSaveJobTest, AWholeRecordingThatIsLostIsSilentAndCostsAFewReads) {
  const std::uint64_t frames = 4 * OVSaveJob::kChunkFrames;
  audio_->append(Samples(2 * frames, 0.5F));
  lose(0, frames);
  const auto outcome = save(frames);
  EXPECT_EQ(outcome.unreadableFrames, frames);
  EXPECT_LT(audio_->readCount(), 40U);
  EXPECT_EQ(readFile(at("take.wav")), Samples(2 * frames, 0.0F));
}

// No exception may leave a job: it would end the program and every recording ---------------------

TEST_F(OVSaveJobTest, WithoutMemoryItFailsAndLeavesNothing) {
  audio_->append(ramp(1000));
  audio_->beforeRead = [](std::uint64_t) { throw std::bad_alloc(); };
  OVSaveJob::Outcome outcome;
  ASSERT_NO_THROW(outcome = save(1000));
  EXPECT_FALSE(outcome.complete);
  EXPECT_FALSE(outcome.told);
  EXPECT_EQ(outcome.error, ENOMEM);
  EXPECT_EQ(filesInFolder(), 0U);
}

TEST_F(OVSaveJobTest, ATargetThatCannotBeLookedAtAnyMoreIsKept) {
  audio_->append(ramp(1000));
  lose(500, 10);
  audio_->beforeRead = [this](std::uint64_t) {
    std::error_code there;
    fs::create_symlink("take.wav", at("take.wav"), there);  // a link to itself
  };
  OVSaveJob::Outcome outcome;
  ASSERT_NO_THROW(outcome = save(1000));
  EXPECT_FALSE(outcome.complete);
  EXPECT_EQ(outcome.unreadableFrames, 10U);
  EXPECT_TRUE(fs::is_symlink(at("take.wav")));
  EXPECT_EQ(filesInFolder(), 1U);
}

TEST_F(OVSaveJobTest, ALinkThatTakesTheNewFilesNameMeanwhileLeadsToNoOtherFile) {
  audio_->append(ramp(1000));
  std::ofstream(at("victim")) << "secret";
  bool swapped = false;
  audio_->beforeRead = [&](std::uint64_t) {
    for (const auto& entry : fs::directory_iterator(folder_.path())) {
      if (!swapped && entry.path().filename().string().starts_with(".orvo-")) {
        swapped = true;
        fs::remove(entry.path());
        fs::create_symlink("victim", entry.path());
        break;
      }
    }
  };
  const auto outcome = save(1000);
  EXPECT_TRUE(swapped);
  EXPECT_EQ(outcome.error, ESTALE);
  EXPECT_EQ(bytesOf(at("victim")), "secret");
}

TEST_F(OVSaveJobTest, AFolderInWhichNothingMayBeMadeIsNamed) {
  audio_->append(ramp(1000));
  ASSERT_EQ(::chmod(folder_.path().c_str(), 0755), 0);
  const support::ClosedFolder closed(folder_.path());
  const auto refused = save(1000);
  EXPECT_EQ(refused.error, EACCES);
  EXPECT_EQ(refused.closedFolder, folder_.path());
}

TEST_F(OVSaveJobTest, AnotherErrorInAClosedFolderIsToldAsItIs) {
  audio_->append(ramp(1000));
  fs::create_directory(at("take.wav"));
  ASSERT_EQ(::chmod(folder_.path().c_str(), 0755), 0);
  const support::ClosedFolder closed(folder_.path());
  const auto refused = save(1000);
  EXPECT_EQ(refused.error, EISDIR);
  EXPECT_EQ(refused.closedFolder, "");
}

// In place ---------------------------------------------------------------------------------------

/// The user's own file in a folder in which the user may make none.
class OVSaveJobInPlaceTest : public OVSaveJobTest {
 protected:
  static constexpr uid_t kNobody = 65534;

  OVSaveJobInPlaceTest() {
    std::ofstream(at("take.wav")) << "old";
    if (::geteuid() == 0) {
      EXPECT_EQ(::chown(at("take.wav").c_str(), kNobody, kNobody), 0);
    }
    EXPECT_EQ(::chmod(folder_.path().c_str(), 0555), 0);
    if (::geteuid() == 0) {
      EXPECT_EQ(::seteuid(kNobody), 0);
      dropped_ = true;
    }
  }
  ~OVSaveJobInPlaceTest() override {
    if (dropped_) {
      EXPECT_EQ(::seteuid(0), 0);
    }
    EXPECT_EQ(::chmod(folder_.path().c_str(), 0700), 0);
  }

  OVSaveJob::Outcome saveInPlace(std::uint64_t frames) {
    return OVSaveJob::run({.buffer = audio_,
                           .fromFrame = 0,
                           .frameCount = frames,
                           .path = at("take.wav"),
                           .outputFormat = OVAudioFileWriter::kWave,
                           .way = OVSaveJob::Request::Way::inPlace},
                          [](double) {});
  }

  bool dropped_ = false;
};

TEST_F(OVSaveJobInPlaceTest, IsOfferedWhereNothingCanBeMadeBeside) {
  audio_->append(ramp(1000));
  const auto outcome = save(1000);
  EXPECT_FALSE(outcome.complete);
  EXPECT_TRUE(outcome.canBeInPlace);
  EXPECT_EQ(outcome.error, EACCES);
  EXPECT_EQ(bytesOf(at("take.wav")), "old");
}

TEST_F(OVSaveJobInPlaceTest, WritesTheWholeRangeAndLeavesNoCopy) {
  const Samples samples = ramp(20'000);
  audio_->append(samples);
  const auto outcome = saveInPlace(20'000);
  EXPECT_TRUE(outcome.complete);
  EXPECT_EQ(outcome.copyOfOldFile, "");
  EXPECT_EQ(readFile(at("take.wav")), samples);
}

TEST_F(OVSaveJobInPlaceTest, TouchesNothingWhereTheAudioHasGaps) {
  audio_->append(ramp(1000));
  lose(500, 10);
  const auto outcome = saveInPlace(1000);
  EXPECT_FALSE(outcome.complete);
  EXPECT_EQ(outcome.unreadableFrames, 10U);
  EXPECT_EQ(bytesOf(at("take.wav")), "old");
}

TEST_F(OVSaveJobInPlaceTest, RoomIsLookedForWhereTheNewContentAndTheCopyStand) {
  const support::InstalledFreeSpace space;
  audio_->append(ramp(20'000));
  OVSaveJob::Request request{.buffer = audio_,
                             .fromFrame = 0,
                             .frameCount = 20'000,
                             .path = at("take.wav"),
                             .outputFormat = OVAudioFileWriter::kWave};
  EXPECT_FALSE(OVSaveJob::lookForRoom(request).get());
  EXPECT_TRUE(space->folders().empty()) << "nothing is written beside it";

  request.way = OVSaveJob::Request::Way::inPlace;
  const std::uint64_t bytes =
      OVAudioFileWriter::estimatedBytes(OVAudioFileWriter::kWave, request.frameCount);
  constexpr std::uint64_t kOld = 3;
  space->set(bytes + kOld - 1);
  const auto shortage = OVSaveJob::lookForRoom(request).get();
  ASSERT_TRUE(shortage);
  EXPECT_EQ(shortage->folder, platform::temporaryFiles()->directory());
  EXPECT_EQ(shortage->neededBytes, bytes + kOld);
  space->set(bytes + kOld);
  EXPECT_FALSE(OVSaveJob::lookForRoom(request).get());
  EXPECT_EQ(space->folders().back(), folder_.path()) << "for what it grows";
}

}  // namespace
