#include "document/transport/OVTransport.h"

#include <algorithm>
#include <utility>

#include "audio/OVAQPlayer.h"
#include "document/editing/OVDocumentAudio.h"
#include "document/editing/OVDocumentLife.h"
#include "document/editing/OVEditHistory.h"
#include "document/editing/OVFileOperation.h"
#include "document/editing/OVFramePositions.h"
#include "document/summaries/OVDocumentSummaries.h"
#include "platform/base/ApplicationServices.h"
#include "platform/mainloop/FailureReason.h"
#include "platform/mainloop/Localization.h"
#include "platform/mainloop/MainQueue.h"
#include "storage/OVBlockBuffer.h"

namespace {

void tellReadingFailed(int error) {
  ShowModalAlert(platform::localizedUtf8("Playing was stopped"),
                 platform::localized("The audio could not be read from the temporary file. %1")
                     .arg(QString::fromStdString(platform::failureReason(error)))
                     .toStdString());
}

}  // namespace

OVTransport::OVTransport(const Parts& parts)
    : parts_(parts),
      writeFailures_(
          std::make_shared<OVWriteFailures>([this](const OVWriteFailures::Failure& failure) {
            platform::mainQueue().async(
                parts_.life.guarded([this, failure] { writingFailed(failure); }));
          })) {}

OVTransport::~OVTransport() {
  const platform::PostedAlertsScope afterwards;
  if (player_) {
    player_->stop();
    player_.reset();
  }
  if (const auto last = recorder()) {
    last->pause();
    last->prepareForDestruction();
  }
}

// State -----------------------------------------------------------------------------------------

bool OVTransport::isRecording() const {
  const auto current = recorder();
  return current && current->isRecording();
}

bool OVTransport::isPlaying() const {
  return player_ && player_->isPlaying();
}

OVTransportState OVTransport::state() const {
  if (isRecording()) {
    return OVTransportState::recording;
  }
  return isPlaying() ? OVTransportState::playing : OVTransportState::resting;
}

std::optional<std::vector<float>> OVTransport::powerLevels(OVTransportState first) const {
  const platform::PostedAlertsScope afterwards;  // no main loop runs in the middle of a tick
  if (isRecording() && (first == OVTransportState::recording || !isPlaying())) {
    return recorder()->powerLevels();
  }
  return isPlaying() ? player_->powerLevels() : std::nullopt;
}

std::vector<OVRecordingLoss> OVTransport::losses() const {
  const auto running = runningRecorder();
  return running ? running->losses() : losses_;
}

std::size_t OVTransport::lossCount() const {
  const auto running = runningRecorder();
  return running ? running->lossCount() : losses_.size();
}

void OVTransport::changed() {
  const OVTransportState now = state();
  keepAwake(now == OVTransportState::recording);
  if (changed_) {
    changed_();
  }
  if (std::exchange(lastState_, now) != now) {
    for (const auto& handler : stateHandlers_) {
      handler(now);
    }
  }
}

void OVTransport::keepAwake(bool awake) {
  if (!awake) {
    awake_.reset();
  } else if (!awake_) {
    awake_ = platform::sleepInhibitor()->hold(platform::localized("Orvo is recording"));
  }
}

// Record and play -------------------------------------------------------------------------------

void OVTransport::record() {
  if (parts_.operation.isActive() || isRecording() || isPlaying()) {
    changed();
    return;
  }
  if (!parts_.audio.buffer() && makeBuffer_) {
    makeBuffer_();  // otherwise the user is alerted again
  }
  if (player_) {
    endPlaying();  // playback has ended; its late report would end the recording
  }
  if (const auto former = recorder(); !former || former->failure() != platform::kAudioStatusOk) {
    replaceRecorder(OVAQRecorder::DeviceAlerts::shown);
  }
  if (const auto input = recorder()) {  // otherwise nothing has changed, and the user was alerted
    bringRecordingPositionInside();
    parts_.history.beginStep(platform::textKey("Record"));
    parts_.history.kept().recordingBegins();
    writeFailures_->recordingBegins(parts_.history.revision());
    if (recording_) {
      recording_();
    }
    writtenSincePress_ = false;
    losses_.clear();
    ++recordings_;
    input->record();
    parts_.history.setEdited(true);
  }
  changed();
}

void OVTransport::play() {
  const platform::PostedAlertsScope afterwards;  // no main loop runs in the middle of a command
  const auto buffer = parts_.audio.buffer();
  if (parts_.operation.isActive() || isRecording() || !buffer) {
    changed();
    return;
  }
  readError_ = 0;
  if (!player_) {
    const std::uint64_t frameSize = parts_.audio.bytesPerFrame();
    player_ = OVAQPlayer::initWithBuffer(buffer, parts_.positions.playback() * frameSize);
    if (player_) {
      parts_.positions.setPlayback(player_->readingPosition() / frameSize);
      player_->setDelegate(delegate_);
    }
  }
  if (player_) {  // otherwise there is no output device, and the user was alerted
    player_->play();
  }
  changed();
}

// Pause and stop --------------------------------------------------------------------------------

void OVTransport::pause() {
  const platform::PostedAlertsScope afterwards;  // no main loop runs in the middle of a command
  if (isRecording()) {
    endRecording();
  }
  if (player_) {
    endPlaying();
  }
  changed();
  replaceRecorder(OVAQRecorder::DeviceAlerts::heldBack);
}

void OVTransport::pauseIfRunning() {
  if (isRecording() || player_) {
    pause();
  }
}

void OVTransport::endRecording() {
  const auto input = recorder();
  input->pause();  // from here on writingPosition is constant
  losses_ = input->losses();
  const auto buffer = parts_.audio.buffer();
  const std::uint64_t end = input->writingPosition() / parts_.audio.bytesPerFrame();
  parts_.positions.setRecording(end);
  parts_.positions.setPlayback(end >= buffer->bufferFillSizeInFrames() ? 0 : end);
  if (const auto blocks = std::dynamic_pointer_cast<OVBlockBuffer>(buffer)) {
    blocks->optimize();
  }
  parts_.summaries.extend();  // includes the last chunk
}

// The position is read once it is constant, so that the marker and the next recording begin at the
// same frame.
void OVTransport::endPlaying() {
  const auto player = std::exchange(player_, nullptr);
  player->stop();
  const std::uint64_t place = player->readingPosition() / parts_.audio.bytesPerFrame();
  parts_.positions.setPlayback(place);
  setRecordingPosition(place);
}

void OVTransport::stop() {
  pause();
  parts_.positions.setPlayback(0);
  setRecordingPosition(parts_.audio.sizeInFrames());
}

// Positions -------------------------------------------------------------------------------------

void OVTransport::toStart() {
  moveTo(0);
}

void OVTransport::toEnd() {
  moveTo(parts_.audio.sizeInFrames());
}

void OVTransport::moveTo(std::uint64_t frames) {
  setPlaybackPosition(frames);
  setRecordingPosition(frames);
}

// The player first, so that it reports the new position from here on.
void OVTransport::setPlaybackPosition(std::uint64_t frames) {
  if (player_) {
    player_->setReadingPosition(frames * parts_.audio.bytesPerFrame());
  }
  parts_.positions.setPlayback(frames);
}

void OVTransport::setRecordingPosition(std::uint64_t frames) {
  parts_.positions.setRecording(frames);
  if (const auto input = recorder()) {
    input->setWritingPosition(frames * parts_.audio.bytesPerFrame());
  }
}

void OVTransport::bringRecordingPositionInside() {
  const std::uint64_t size = parts_.audio.sizeInFrames();
  if (parts_.positions.recording() > size) {
    setRecordingPosition(size);
  }
}

// Recorder --------------------------------------------------------------------------------------

void OVTransport::prepareForNewBuffer() {
  if (const auto former = recorder()) {
    former->prepareForDestruction();
  }
}

void OVTransport::bufferChanged() {
  recorder_.set(makeRecorder(OVAQRecorder::DeviceAlerts::heldBack));
}

void OVTransport::close() {
  if (player_) {
    player_->setDelegate({});
  }
  keepAwake(false);
}

std::shared_ptr<OVAQRecorder> OVTransport::makeRecorder(OVAQRecorder::DeviceAlerts alerts) {
  const auto buffer = parts_.audio.buffer();
  if (!buffer) {
    return nullptr;  // no temporary file; the user was alerted
  }
  const platform::PostedAlertsScope afterwards;  // no main loop runs in the middle of a command
  auto recorder = OVAQRecorder::initWithBuffer(buffer, alerts);
  if (recorder) {
    recorder->setWritingPosition(parts_.positions.recording() * parts_.audio.bytesPerFrame());
    recorder->setFailureHandler(
        [inputFailed = parts_.life.guarded([this, failed = std::weak_ptr(recorder)] {
          inputFailed(failed);
        })](platform::AudioStatus) { platform::mainQueue().async(inputFailed); });
  }
  return recorder;
}

void OVTransport::replaceRecorder(OVAQRecorder::DeviceAlerts alerts) {
  if (const auto former = recorder()) {
    former->pause();
    former->prepareForDestruction();
  }
  recorder_.set(makeRecorder(alerts));
}

// Reports ---------------------------------------------------------------------------------------

void OVTransport::playbackEnded(const OVAQPlayer* player) {
  const bool isCurrent = player != nullptr && player == player_.get();
  const bool isLate = player != nullptr && !isCurrent && (isRecording() || player_);
  if (parts_.operation.isActive() || isLate) {
    return;  // the report of a playback that has already been ended
  }
  // Its last advance may have been reported before To End set both positions.
  const std::uint64_t place =
      isCurrent ? player->readingPosition() / parts_.audio.bytesPerFrame() : 0;
  if (std::max(place, parts_.positions.playback()) >= parts_.audio.sizeInFrames()) {
    stop();
  } else if (isCurrent) {
    const bool deviceFailed = player->failure() != platform::kAudioStatusOk;
    const int error = readError_.exchange(0);
    pause();  // the marker stays where playback broke off
    if (error != 0 && !deviceFailed) {
      tellReadingFailed(error);
    }
  }
}

std::shared_ptr<OVAQRecorder> OVTransport::runningRecorder() const {
  auto current = recorder();
  return current && current->isRecording() ? current : nullptr;
}

void OVTransport::recordedUpTo(std::uint64_t frames) {
  writtenSincePress_ = true;
  parts_.positions.setRecording(frames);
}

void OVTransport::failedToWrite(int error) {
  writeFailures_->failedToWrite(error, recorder());
}

void OVTransport::inputFailed(const std::weak_ptr<OVAQRecorder>& recorder) {
  const auto failed = recorder.lock();
  if (!failed || failed != this->recorder()) {
    return;
  }
  if (!isRecording()) {
    recorder_.set(nullptr);
    failed->prepareForDestruction();
    return;
  }
  const std::uint64_t marker = parts_.positions.playback();
  pause();
  if (!writtenSincePress_) {
    // The report that there is no input came after the press: as if Record had not been pressed.
    parts_.history.rollBackStep();
    parts_.history.kept().recordingTakenBack();
    parts_.positions.setPlayback(marker);
  }
}

void OVTransport::writingFailed(const OVWriteFailures::Failure& failure) {
  const auto failed = failure.recorder.lock();
  if (failed && failed == recorder()) {
    pause();
  }
  // Otherwise an edit, undo or another recording came first, and the range now holds other audio.
  if (parts_.history.revision() == failure.revision) {
    dropLostEnd(failure.atByteOffset, failure.withSize);
  }
  OVWriteFailures::tellRecordingStopped(failure.error);
}

// A lost chunk at the end of the recording is removed, so that the recording plays to its end. One
// in the middle stays: undo restores the former audio.
void OVTransport::dropLostEnd(std::uint64_t atByteOffset, std::uint32_t withSize) {
  const std::uint64_t frameSize = parts_.audio.bytesPerFrame();
  const std::uint64_t lost = atByteOffset / frameSize;
  if (isRecording() || parts_.operation.isLoading() || parts_.operation.isWriting() ||
      parts_.audio.sizeInFrames() != (atByteOffset + withSize) / frameSize) {
    return;
  }
  parts_.audio.buffer()->cutoffBufferAfterPosition(lost);
  if (parts_.positions.recording() > lost) {
    setRecordingPosition(lost);
  }
  if (parts_.positions.playback() > lost) {
    setPlaybackPosition(lost);
  }
  if (cut_) {
    cut_();
  }
}
