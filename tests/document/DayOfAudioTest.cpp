// A document records from the scripted device for as long as a day, as fast as it goes, in
// callbacks of 1 to 1,102 frames, with edits, undos and saves between the recordings. Each frame
// carries its number, and all that the document holds is compared with a plain model.
//
// A few minutes usually; with ORVO_TEST_AUDIO_HOURS in the environment, so many hours
// (scripts/test --day).
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include <unistd.h>

#include <gtest/gtest.h>

#include "audio/OVAQRecorder.h"
#include "audio/OVAudioFileReader.h"
#include "controls/buttons/OVTransportButton.h"
#include "document/RecordedStretches.h"
#include "document/VLRecorderWindowController.h"
#include "document/files/OVSaveJob.h"
#include "platform/files/PosixFile.h"
#include "platform/sound/DeviceAudioQueues.h"
#include "storage/JournalReplay.h"
#include "storage/OVBlockBuffer.h"
#include "support/MainLoop.h"
#include "support/NumberedFrames.h"
#include "support/ProcessMemory.h"
#include "support/Sanitizers.h"
#include "support/TemporaryFolder.h"
#include "support/fakes/ComputedTemporaryFiles.h"
#include "support/fakes/ManualAudioClock.h"
#include "support/fakes/RecordingServices.h"
#include "support/fakes/RecordingSleepInhibitor.h"
#include "support/fakes/RememberingKeeper.h"
#include "support/fakes/ScriptedAudioDevice.h"
#include "support/fakes/ScriptedFileDialogs.h"
#include "support/fakes/ScriptedFreeSpace.h"
#include "waveform/OVWaveformSummary.h"

namespace {

constexpr std::uint64_t kFramesPerSecond = 44100;
constexpr std::uint64_t kFrameBytes = 8;
constexpr std::uint64_t kMostInACallback = 1102;  // 25 ms
constexpr std::uint64_t kDeliveredAtOnce = std::uint64_t{16} * platform::kRecordingChunkFrames;
constexpr std::uint64_t kComparedAtOnce = std::uint64_t{1} << 18;  // frames
constexpr std::uint64_t kShortSave = 2 * kFramesPerSecond;
constexpr std::uint64_t kMegabyte = std::uint64_t{1} << 20;

// How much is recorded and edited.
struct Amount {
  std::uint64_t frames;
  std::uint64_t edits;
};

std::optional<std::uint64_t> hoursAskedFor() {
  const char* const hours = std::getenv("ORVO_TEST_AUDIO_HOURS");  // NOLINT(concurrency-mt-unsafe)
  return hours == nullptr ? std::nullopt : std::make_optional(std::strtoull(hours, nullptr, 10));
}

// 125 edits an hour; usually ten minutes and 60 edits, a fifth of that under sanitizers.
Amount amount() {
  if (const auto hours = hoursAskedFor()) {
    return {.frames = *hours * 3600 * kFramesPerSecond, .edits = *hours * 125};
  }
  const std::uint64_t share = support::kAnySanitizer ? 5 : 1;
  return {.frames = 600 * kFramesPerSecond / share, .edits = 60 / share};
}

class DayOfAudioTest : public testing::Test {
 protected:
  DayOfAudioTest() {
    panels_->answerEverySheetWith(VLRecorderWindowController::kDontSave);
    document_ = VLRecorderWindowController::initWithWindow(nullptr);
    document_->windowDidLoad();
  }
  ~DayOfAudioTest() override {
    document_->windowWillClose(nullptr);
    document_.reset();
    settle();
  }

  static void settle() {
    EXPECT_TRUE(awaitGlobalQueue());
    EXPECT_TRUE(drainMainQueue());
    EXPECT_TRUE(awaitGlobalQueue());
    EXPECT_TRUE(drainMainQueue());
  }

  std::uint64_t below(std::uint64_t end) {
    return std::uniform_int_distribution<std::uint64_t>(0, end - 1)(random_);
  }

  // Recording -------------------------------------------------------------------------------------

  // The clock moves as fast as the frames arrive, so that nothing looks lost.
  void feed(std::uint64_t frames) {
    for (std::uint64_t left = frames; left > 0;) {
      const std::uint64_t count = std::min(left, 1 + below(kMostInACallback));
      support::makeNumbered(samples_.data(), fed_, count);
      fed_ += count;
      left -= count;
      ++callbacks_;
      const auto due = std::chrono::nanoseconds(fed_ * 1'000'000'000 / kFramesPerSecond);
      clock_->advance(due - std::exchange(clockMoved_, due));
      ASSERT_TRUE(device_->feed(samples_.data(), static_cast<std::uint32_t>(count)));
      if (fed_ - delivered_ >= kDeliveredAtOnce) {
        letDeliver();
      }
    }
  }

  // A device's callback never waits; here it does, so that the ring is never full.
  void letDeliver() {
    const auto recorder = document_->recorder();
    ASSERT_NE(recorder, nullptr);
    recorder->queue()->waitUntilDelivered(recorder->queue()->capturedFrames());
    delivered_ = fed_;
    QCoreApplication::processEvents();
  }

  // The recorder of this moment has heard nothing before it was made.
  void noticeNewRecorder() {
    const auto current = document_->recorder();
    ASSERT_NE(current, nullptr);
    if (recorder_.lock() != current) {
      recorder_ = current;
      heardSince_ = fed_;
    }
  }

  // Whole queue buffers only: the first may have begun before the press.
  [[nodiscard]] std::uint64_t wholeBuffers() const {
    const std::uint64_t heard = fed_ - heardSince_;
    return heardSince_ + heard - heard % platform::kRecordingChunkFrames;
  }

  void record(std::uint64_t frames) {
    noticeNewRecorder();
    const std::uint64_t from = wholeBuffers();
    before_ = now_;
    redoable_.reset();
    record_.setIsOn(true);
    document_->recButton(&record_);
    ASSERT_TRUE(document_->recorder()->isRecording());
    ASSERT_NO_FATAL_FAILURE(feed(frames));
    document_->pauseButton(nullptr);
    position_ = std::min(position_, now_.length());
    const RecordedStretches::Stretch recorded{.number = from, .frames = wholeBuffers() - from};
    now_.record(position_, recorded);
    position_ += recorded.frames;
    recorded_ += recorded.frames;
    ++recordings_;
    noticeNewRecorder();
    compare("recording");
  }

  // Editing ---------------------------------------------------------------------------------------

  // A click; a place in a day of frames is rounded.
  void moveMarker(std::uint64_t frame) {
    const std::uint64_t length = now_.length();
    if (length == 0) {
      return;
    }
    const double fraction = (static_cast<double>(frame) + 0.5) / static_cast<double>(length);
    document_->waveFormViewReceivedClick(nullptr, {}, fraction);
    position_ = document_->recordingPosition();
    EXPECT_LE(position_, frame + 1);
    EXPECT_GE(position_ + 1, frame);
  }

  void cutAfter(std::uint64_t frame) {
    moveMarker(frame);
    before_ = now_;
    redoable_.reset();
    now_.cutAfter(position_);
    document_->removeAfterMarker(nullptr);
    edited("cut after the marker");
  }

  void cutBefore(std::uint64_t frame) {
    moveMarker(frame);
    before_ = now_;
    redoable_.reset();
    now_.cutBefore(position_);
    document_->removeBeforeMarker(nullptr);
    edited("cut before the marker");
  }

  void edited(const char* what) {
    position_ = now_.length();
    noticeNewRecorder();
    ++edits_;
    compare(what);
  }

  void undo() {
    if (before_) {
      redoable_ = std::exchange(now_, *before_);
      before_.reset();
      document_->undoCommand();
      ++edits_;
      compare("undo");
    }
  }

  void redo() {
    if (redoable_) {
      now_ = *redoable_;
      redoable_.reset();
      document_->redoCommand();
      ++edits_;
      compare("redo");
    }
  }

  // The document's own save while it is short; later the same job, for two seconds of it.
  void save() {
    const std::uint64_t length = now_.length();
    const std::string path = folder_.file("a.wav");
    if (length <= 60 * kFramesPerSecond) {
      document_->saveFileNamed(path, 0);
      EXPECT_TRUE(runMainLoopUntil([&] { return !document_->isFileIOActive(); }));
      position_ = length;
      noticeNewRecorder();
      compareFile(path, 0, length);
    } else {
      const std::uint64_t from = below(length - kShortSave);
      const auto outcome = OVSaveJob::run({.buffer = document_->buffer(),
                                           .fromFrame = from,
                                           .frameCount = kShortSave,
                                           .path = path},
                                          [](double) {});
      EXPECT_TRUE(outcome.complete);
      EXPECT_EQ(outcome.unreadableFrames, 0U);
      compareFile(path, from, kShortSave);
    }
    ++edits_;
    ++saves_;
    compare("save");
  }

  void edit() {
    const std::uint64_t length = now_.length();
    const std::uint64_t choice = length == 0 ? 0 : below(100);
    if (choice < 20) {
      undo();
      if (choice < 10) {
        redo();
      }
    } else if (choice < 40) {
      cutAfter(length - below(std::min(length, 20 * kFramesPerSecond)));
    } else if (choice < 48) {
      cutBefore(below(std::min(length, 10 * kFramesPerSecond)));
    } else if (choice < 60) {
      cutAfter(below(length));
      undo();
    } else if (choice < 70) {
      cutBefore(below(length));
      undo();
    } else {
      save();
    }
  }

  // Where the next recording goes: at the end, where the last step left it, or over the middle.
  void choosePlace() {
    const std::uint64_t choice = below(10);
    if (choice < 6) {
      document_->nextButton(nullptr);
      position_ = now_.length();
    } else if (choice < 8) {
      moveMarker(below(now_.length() + 1));
    }
  }

  // Comparing -------------------------------------------------------------------------------------

  void compare(const char* after) {
    const std::uint64_t length = now_.length();
    EXPECT_EQ(document_->buffer()->bufferSizeInFrames(), length) << after;
    EXPECT_EQ(document_->recordingPosition(), position_) << after;
    if (length > 0) {
      compareFrames(0, 100);
      compareFrames(below(length), platform::kRecordingChunkFrames);
      compareFrames(length - std::min<std::uint64_t>(length, 100), 200);
    }
    EXPECT_EQ(files_.faults(), 0U) << after;
    EXPECT_EQ(alertCount(), 0U) << after;
  }

  void compareFrames(std::uint64_t from, std::uint64_t frames) {
    const std::uint64_t expected = std::min(frames, now_.length() - from);
    std::vector<float> samples(2 * frames);
    const auto read =
        document_->buffer()->readDataInto(samples.data(), frames * kFrameBytes, from * kFrameBytes);
    ASSERT_EQ(read.frameCount, expected) << "from frame " << from;
    compareSamples(samples.data(), from, expected);
  }

  void compareSamples(const float* samples, std::uint64_t from, std::uint64_t frames) {
    std::uint64_t at = from;
    for (const auto& stretch : now_.between(from, from + frames)) {
      const std::uint64_t equal = support::equalNumbered(samples, stretch.number, stretch.frames);
      wrong_ += stretch.frames - equal;
      ASSERT_EQ(equal, stretch.frames) << "wrong at frame " << at + equal;
      samples += 2 * stretch.frames;
      at += stretch.frames;
    }
    EXPECT_EQ(at, from + frames);
  }

  void compareFile(const std::string& path, std::uint64_t from, std::uint64_t frames) {
    const auto reader = OVAudioFileReader::initWithFile(path);
    ASSERT_NE(reader, nullptr);
    const std::uint64_t end = from + frames;
    while (const std::uint32_t count = reader->readFrameChunkWithSize(kComparedAtOnce)) {
      ASSERT_LE(from + count, end);
      compareSamples(reinterpret_cast<const float*>(reader->exposeBuffer()), from, count);
      from += count;
    }
    EXPECT_EQ(from, end);
  }

  // Every frame, and what the keeper would recover.
  void compareAll() {
    for (std::uint64_t at = 0; at < now_.length() && !HasFatalFailure(); at += kComparedAtOnce) {
      compareFrames(at, kComparedAtOnce);
      compared_ += std::min(kComparedAtOnce, now_.length() - at);
    }
    const auto blocks = std::dynamic_pointer_cast<OVBlockBuffer>(document_->buffer());
    ASSERT_NE(blocks->journal(), nullptr);
    platform::PosixFile journal(::dup(blocks->journal()->descriptor()));
    auto replay = JournalReplay::begin(journal);
    ASSERT_TRUE(replay);
    replay->run();
    EXPECT_EQ(replay->list().blocks(), blocks->blocklist());
    EXPECT_EQ(replay->fillSize(), blocks->bufferFillSize());
  }

  void awaitSummary() {
    EXPECT_TRUE(platform::globalQueue().waitUntilIdle(300));
    settle();
    EXPECT_TRUE(runMainLoopUntil([&] { return !document_->waveForm()->isRegenerating(); }));
  }

  std::size_t alertCount() { return services_->alerts().size() + services_->postedAlerts().size(); }

  // Records and edits until this share of the amount is done.
  void go(std::uint64_t frames, std::uint64_t edits) {
    const std::uint64_t usual = amount().frames / amount().edits;  // for each recording
    while ((fed_ < frames || edits_ < edits) && !HasFailure()) {
      choosePlace();
      if (fed_ < frames) {
        record(std::min(frames - fed_, 1 + below(2 * usual)));
      }
      while (edits_ < edits && edits_ * frames <= edits * fed_ && !HasFailure()) {
        edit();
      }
    }
    compareAll();
  }

  void tell(const char* when) const {
    std::printf(
        "%s: %.2f h through the device in %llu callbacks, %.2f h recorded in %llu "
        "recordings, %llu edits (%llu saves), %.2f h and %zu stretches in the document, "
        "%.2f h compared, %llu wrong, resident %.1f MB\n",
        when, hours(fed_), n(callbacks_), hours(recorded_), n(recordings_), n(edits_), n(saves_),
        hours(now_.length()), now_.count(), hours(compared_), n(wrong_),
        static_cast<double>(support::residentMemory()) / static_cast<double>(kMegabyte));
    static_cast<void>(std::fflush(stdout));
  }
  static unsigned long long n(std::uint64_t count) { return count; }
  static double hours(std::uint64_t frames) {
    return static_cast<double>(frames) / (3600.0 * static_cast<double>(kFramesPerSecond));
  }

  support::InstalledRecordingServices services_;
  support::InstalledScriptedPanels panels_;
  support::InstalledFreeSpace freeSpace_;
  support::RecordingSleepInhibitor sleep_;
  support::RememberingKeeper keeper_;
  platform::Installed<RecordingKeeper>::Scope keeperInstallation_{keeper_};
  support::ComputedTemporaryFiles files_;
  platform::Installed<platform::TemporaryFiles>::Scope filesInstallation_{files_};
  support::TemporaryFolder folder_;
  std::shared_ptr<platform::ManualAudioClock> clock_ =
      std::make_shared<platform::ManualAudioClock>();
  std::shared_ptr<platform::ScriptedAudioDevice> device_ =
      std::make_shared<platform::ScriptedAudioDevice>();
  platform::Installed<platform::AudioQueues>::Scope queuesInstallation_{
      std::make_shared<platform::DeviceAudioQueues>(device_, clock_)};
  OVTransportButton record_;
  std::shared_ptr<VLRecorderWindowController> document_;

  std::mt19937_64 random_{20261123};
  std::array<float, 2 * kMostInACallback> samples_{};
  std::uint64_t fed_ = 0;  // frames
  std::uint64_t delivered_ = 0;
  std::chrono::nanoseconds clockMoved_{0};
  std::weak_ptr<OVAQRecorder> recorder_;
  std::uint64_t heardSince_ = 0;

  RecordedStretches now_;
  std::optional<RecordedStretches> before_;    // the last step
  std::optional<RecordedStretches> redoable_;  // the last undo
  std::uint64_t position_ = 0;                 // of the next recording

  std::uint64_t callbacks_ = 0;
  std::uint64_t recorded_ = 0;  // frames
  std::uint64_t recordings_ = 0;
  std::uint64_t edits_ = 0;
  std::uint64_t saves_ = 0;
  std::uint64_t compared_ = 0;
  std::uint64_t wrong_ = 0;
};

TEST_F(DayOfAudioTest, IsRecordedAndEditedWithoutALostFrameOrMoreMemory) {
  ASSERT_TRUE(device_->awaitInputOpen());
  const Amount all = amount();
  go(all.frames / 10, all.edits / 10);
  const std::uint64_t early = support::residentMemory();
  tell("a tenth");
  const support::MemoryGrowth growth;
  go(all.frames / 2, all.edits / 2);
  tell("half");
  go(all.frames, all.edits);
  tell("all");

  EXPECT_EQ(wrong_, 0U);
  EXPECT_EQ(files_.faults(), 0U);
  EXPECT_EQ(files_.framesWritten(), recorded_);
  EXPECT_EQ(services_->consoleLines(), std::vector<std::string>{});
  awaitSummary();
  EXPECT_LT(growth.atMost(), (support::kAnySanitizer ? 512 : 48) * kMegabyte) << "since " << early;
  std::printf("at its peak %.1f MB more than after a tenth\n",
              static_cast<double>(growth.atMost()) / static_cast<double>(kMegabyte));
}

}  // namespace
