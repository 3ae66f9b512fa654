#include "document/VLRecorderWindowController.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <random>

#include <QLayout>

#include "audio/OVAQPlayer.h"
#include "audio/OVAQRecorder.h"
#include "controls/OVLoadingIndicator.h"
#include "controls/OVLoadingPanel.h"
#include "controls/OVRecorderWindow.h"
#include "controls/OVSpectrumStrip.h"
#include "controls/OVTransportBackgroundView.h"
#include "controls/buttons/OVHoverButton.h"
#include "controls/buttons/OVRoundedTransportButton.h"
#include "displays/OVCircularVUView.h"
#include "displays/OVFFTView.h"
#include "displays/OVTimeView.h"
#include "document/spectrum/OVSpectrumAnalyser.h"
#include "platform/base/ApplicationServices.h"
#include "platform/files/TemporaryFiles.h"
#include "platform/mainloop/FailureReason.h"
#include "platform/mainloop/Localization.h"
#include "storage/OVBlockBuffer.h"
#include "ui_VNRecorderWindow.h"
#include "waveform/views/OVPlaybackMarkerView.h"
#include "waveform/views/OVWaveFormView.h"

namespace {

constexpr const char* kWindowInterface = "VNRecorderWindow";
constexpr double kDisplayInterval = 0.04;  // seconds, 25 a second
constexpr int kIndicatorSteps = 1000;      // of the progress bar, for 0.0 to 1.0

// The last reference may be dropped by a thread of the sound system; the controller owns timers
// and views' partners, so it always dies on the main thread.
void deleteOnMainThread(VLRecorderWindowController* controller) {
  if (platform::isMainThread()) {
    delete controller;
  } else {
    platform::mainQueue().async([controller] { delete controller; });
  }
}

}  // namespace

// Life ------------------------------------------------------------------------------------------

VLRecorderWindowController::VLRecorderWindowController(OVRecorderWindow* window)
    : summaries_(std::make_shared<OVDocumentSummaries>([this] {
        if (const auto self = weak_from_this().lock()) {
          finishRefresh();
        }
      })),
      window_(window),
      writeFailures_([this](const OVWriteFailures::Failure& failure) {
        platform::mainQueue().async([self = weak_from_this(), failure] {
          if (const auto controller = self.lock()) {
            controller->writingFailed(failure);
          }
        });
      }) {}

std::shared_ptr<VLRecorderWindowController> VLRecorderWindowController::initWithWindow(
    OVRecorderWindow* window) {
  std::shared_ptr<VLRecorderWindowController> controller(new VLRecorderWindowController(window),
                                                         deleteOnMainThread);
  controller->selfretaining_reference_ = controller;
  controller->currentFiletype_ = -1;
  return controller;
}

std::shared_ptr<VLRecorderWindowController> VLRecorderWindowController::initWithWindowNibName(
    const std::string& name) {
  if (name != kWindowInterface) {
    return nullptr;
  }
  auto* window = new OVRecorderWindow;  // deletes itself when it has closed
  Ui::VNRecorderWindow().setupUi(window);
  auto controller = initWithWindow(window);
  controller->windowDidLoad();
  return controller;
}

VLRecorderWindowController::~VLRecorderWindowController() {
  const platform::PostedAlertsScope afterwards;
  if (player_) {
    player_->stop();
    player_.reset();
  }
  if (recorder_) {
    if (recorder_->isRecording()) {
      recorder_->pause();
    }
    recorder_->prepareForDestruction();
    recorder_.reset();
  }
  if (vuView_) {
    vuView_->setDatasource({});
  }
}

// Set-up ----------------------------------------------------------------------------------------

void VLRecorderWindowController::windowDidLoad() {
  connectViews();
  if (window_) {
    window_->setTitle(titleWithName(platform::localized("Unnamed")));
  }
  undoManager_ = std::make_shared<platform::UndoManager>();
  undoManager_->setLevelsOfUndo(1);
  showIndicator(false);
  advanceIndicator(0.25);
  setupTransportButtons();
  setupSpectrum();
  if (wfView_) {
    wfView_->setDelegate(weak_from_this());
  }
  initBuffer();
  windowIsReady();
}

void VLRecorderWindowController::connectViews() {
  if (!window_) {
    return;
  }
  window_->setDelegate(weak_from_this());
  wfView_ = window_->findChild<OVWaveFormView*>("wfView");
  playbackMarkerView_ = window_->findChild<OVPlaybackMarkerView*>("playbackMarkerView");
  vuView_ = window_->findChild<OVCircularVUView*>("vuView");
  timeView_ = window_->findChild<OVTimeView*>("timeView");
  prevButton_ = window_->findChild<OVTransportButton*>("prevButton");
  nextButton_ = window_->findChild<OVTransportButton*>("nextButton");
  stopButton_ = window_->findChild<OVTransportButton*>("stopButton");
  playButton_ = window_->findChild<OVTransportButton*>("playButton");
  recButton_ = window_->findChild<OVTransportButton*>("recButton");
  pauseButton_ = window_->findChild<OVTransportButton*>("pauseButton");
  fftButton_ = window_->findChild<OVHoverButton*>("fftButton");
  transportBackView_ = window_->findChild<OVTransportBackgroundView*>("transportBackView");
  fftView_ = window_->findChild<OVFFTView*>("fftView");
  loadingPanel_ = window_->findChild<OVLoadingPanel*>("loadingPanel");
  loadingIndicator_ = window_->findChild<QProgressBar*>("loadingIndicator");
  summaries_->setView(wfView_);
  if (wfView_) {
    wfView_->setTimeLineText([time = timeView_] { return time ? time->text() : QString(); });
  }
}

void VLRecorderWindowController::setupTransportButtons() {
  using Controller = VLRecorderWindowController;
  setupTransportButton(recButton_, "rec_on.png", "rec_off.png", &Controller::recButton);
  setupTransportButton(playButton_, "play_on.png", "play_off.png", &Controller::playButton);
  setupTransportButton(prevButton_, "prev.png", "prev.png", &Controller::prevButton);
  setupTransportButton(nextButton_, "next.png", "next.png", &Controller::nextButton);
  setupTransportButton(stopButton_, "stop.png", "stop.png", &Controller::stopButton);
  setupTransportButton(pauseButton_, "pause.png", "pause.png", &Controller::pauseButton);
  for (const auto& button : {recButton_, playButton_}) {
    if (button) {
      button->setIsSwitch(true);
    }
  }
  if (auto* prev = qobject_cast<OVRoundedTransportButton*>(prevButton_.data())) {
    prev->setType(1);
  }
  if (auto* next = qobject_cast<OVRoundedTransportButton*>(nextButton_.data())) {
    next->setType(0);
  }
}

void VLRecorderWindowController::setupTransportButton(OVTransportButton* button,
                                                      const char* withOnImage, const char* offImage,
                                                      ButtonAction action) {
  if (button == nullptr) {
    return;
  }
  button->setOnImage(withOnImage);
  button->setOffImage(offImage);
  button->setAction([this, action, button](OVTrackingButton*) { (this->*action)(button); });
  button->setTarget(weak_from_this());
  button->setIsOn(false);
  setViewNeedsDisplay(QPointer<OVTransportButton>(button));
}

void VLRecorderWindowController::initBuffer() {
  const platform::PostedAlertsScope afterwards;  // an alert comes when the window is there
  if (auto blocks = OVBlockBuffer::init()) {
    setBuffer(std::move(blocks));
  }
}

void VLRecorderWindowController::setBuffer(std::shared_ptr<OVAudioBufferInterface> buffer) {
  if (buffer_) {
    buffer_->setDelegate({});
  }
  if (recorder_) {
    recorder_->prepareForDestruction();
  }
  {
    const std::lock_guard lock(sharedObjects_);
    buffer_.swap(buffer);
  }
  buffer_->setDelegate(weak_from_this());
  advanceIndicator(0.25);
  setRecorder(makeRecorder());
  advanceIndicator(0.25);
  summaries_->setBuffer(buffer_);
  if (vuView_) {
    vuView_->setDatasource(weak_from_this());
  }
  advanceIndicator(0.25);
  if (commandsChanged_) {
    commandsChanged_();
  }
}

void VLRecorderWindowController::windowIsReady() {
  pollTimer_ = std::make_unique<platform::Timer>(kDisplayInterval, [self = weak_from_this()] {
    if (const auto controller = self.lock()) {
      controller->updatePlaybackMarkerView();
    }
  });
  showIndicator(false);
  setIndicatorValue(0.0);
}

std::shared_ptr<OVAQRecorder> VLRecorderWindowController::makeRecorder() {
  if (!buffer_) {
    return nullptr;  // the temporary file could not be made; the user has been told
  }
  const platform::PostedAlertsScope afterwards;  // no main loop runs in the middle of a command
  auto recorder = OVAQRecorder::initWithBuffer(buffer_);
  if (recorder) {
    recorder->setWritingPosition(recordingPosition() * bytesPerFrame());
    recorder->setFailureHandler(
        [self = weak_from_this(), failed = std::weak_ptr(recorder)](platform::AudioStatus) {
          platform::mainQueue().async([self, failed] {
            if (const auto controller = self.lock()) {
              controller->inputFailed(failed);
            }
          });
        });
  }
  return recorder;
}

// The old object goes outside the lock: its end may wait for a thread that wants the lock.
void VLRecorderWindowController::setRecorder(std::shared_ptr<OVAQRecorder> recorder) {
  const std::lock_guard lock(sharedObjects_);
  recorder_.swap(recorder);
}

// Window ----------------------------------------------------------------------------------------

OVRecorderWindow* VLRecorderWindowController::window() const {
  return window_;
}

void VLRecorderWindowController::showWindow() {
  if (window_) {
    window_->show();
  }
}

// Not one arg() for both: a name may hold the placeholder of the other.
QString VLRecorderWindowController::titleWithName(const QString& name) {
  return platform::localized("Orvo") + QStringLiteral(" - ") + name;
}

bool VLRecorderWindowController::isDocumentEdited() const {
  return window_ ? window_->isDocumentEdited() : documentEdited_;
}

void VLRecorderWindowController::setDocumentEdited(bool edited) {
  documentEdited_ = edited;
  if (window_) {
    window_->setDocumentEdited(edited);
  }
}

void VLRecorderWindowController::windowWillClose(OVRecorderWindow*) {
  *fileJobCancelled_ = true;
  summaries_->cancelWork();
  pollTimer_.reset();
  fftTimer_.reset();
  if (player_) {
    player_->setDelegate({});
  }
  undoManager_.reset();
  const auto self = std::move(selfretaining_reference_);  // released when this call returns
}

std::shared_ptr<platform::UndoManager> VLRecorderWindowController::windowWillReturnUndoManager()
    const {
  return undoManager_;
}

// Progress bar ----------------------------------------------------------------------------------

void VLRecorderWindowController::recreateIndicator(bool indeterminate, platform::TextKey activity) {
  if (!loadingIndicator_) {
    return;
  }
  QProgressBar* const old = loadingIndicator_;
  auto* fresh = new OVLoadingIndicator(old->parentWidget());
  fresh->setObjectName(old->objectName());
  fresh->setGeometry(old->geometry());
  indicatorValue_ = 0.0;
  fresh->setRange(0, indeterminate ? 0 : kIndicatorSteps);
  fresh->setValue(0);
  fresh->setVisible(false);
  if (QLayout* const layout = old->parentWidget()->layout()) {
    delete layout->replaceWidget(old, fresh);
  }
  loadingIndicator_ = fresh;
  delete old;
  tellActivity(activity);
}

void VLRecorderWindowController::tellActivity(platform::TextKey activity) {
  if (loadingPanel_) {
    loadingPanel_->setActivity(platform::localized(activity));
  }
}

void VLRecorderWindowController::advanceIndicator(double by) {
  setIndicatorValue(indicatorValue_ + by);
}

void VLRecorderWindowController::setIndicatorValue(double value) {
  indicatorValue_ = value;
  if (loadingIndicator_) {
    loadingIndicator_->setRange(0, kIndicatorSteps);
    const double shown = std::clamp(value, 0.0, 1.0);
    loadingIndicator_->setValue(static_cast<int>(std::lround(shown * kIndicatorSteps)));
  }
}

void VLRecorderWindowController::showIndicator(bool shown) {
  if (loadingIndicator_) {
    loadingIndicator_->setVisible(shown);
  }
  if (loadingPanel_) {
    loadingPanel_->setVisible(shown);
  }
}

// Temporary files -------------------------------------------------------------------------------

std::string VLRecorderWindowController::createTempFile() {
  static constexpr char kLetters[] = "abcdefghijklmnopqrstuvwxyz0123456789";
  std::random_device random;
  std::uniform_int_distribution<std::size_t> letter(0, sizeof(kLetters) - 2);
  std::string path = platform::temporaryFiles()->directory() + "velmar_";
  for (int i = 0; i < 12; ++i) {
    path += kLetters[letter(random)];
  }
  return path;
}

void VLRecorderWindowController::removeTempFile(const std::string& path) {
  if (!path.empty()) {
    std::remove(path.c_str());
  }
}

// Callbacks -------------------------------------------------------------------------------------

void VLRecorderWindowController::audioBufferDidWriteData(const void* data,
                                                         std::uint64_t atByteOffset,
                                                         std::uint32_t withSize) {
  std::unique_lock objects(sharedObjects_);
  const auto recorder = recorder_;
  const auto buffer = buffer_;
  objects.unlock();
  if (!recorder || !recorder->isRecording()) {
    return;
  }
  writtenSincePress_ = true;
  fft_data_.capture(data, withSize);
  const std::uint64_t frameSize = buffer->format().mBytesPerFrame;
  const std::uint64_t frames = withSize / frameSize;
  const std::uint64_t position = (atByteOffset + withSize) / frameSize;
  setRecordingPosition(position);
  _lastNumberOfFramesWritten = frames;
  summaries_->chunkWritten(static_cast<const float*>(data), withSize, position);
  writeFailures_.chunkWritten(recorder, atByteOffset, withSize);
}

std::vector<std::byte> VLRecorderWindowController::fft_data() const {
  return fft_data_.fft_data();
}

void VLRecorderWindowController::audioBufferFailedToWrite(int error) {
  std::unique_lock objects(sharedObjects_);
  const auto recorder = recorder_;
  objects.unlock();
  writeFailures_.failedToWrite(error, recorder);
}

void VLRecorderWindowController::writingFailed(const OVWriteFailures::Failure& failure) {
  const auto failed = failure.recorder.lock();
  if (failed && failed == recorder_) {
    pauseButton(nullptr);
  }
  dropLostEnd(failure.atByteOffset, failure.withSize);
  OVWriteFailures::tellRecordingStopped(failure.error);
}

// A lost chunk at the end of the recording goes, so that it plays to its end. One in the middle
// stays: undo brings back what stood there.
void VLRecorderWindowController::dropLostEnd(std::uint64_t atByteOffset, std::uint32_t withSize) {
  if ((isFileIOActive_ && !isOpeningImport_) || !buffer_) {
    return;
  }
  const std::uint64_t frameSize = buffer_->format().mBytesPerFrame;
  const std::uint64_t lost = atByteOffset / frameSize;
  if (bufferSizeInFrames() != (atByteOffset + withSize) / frameSize) {
    return;
  }
  buffer_->cutoffBufferAfterPosition(lost);
  if (recordingPosition() > lost) {
    setRecordingPosition(lost);
    setWritingPosition(lost);
  }
  refreshCompleteUI(true);
}

void VLRecorderWindowController::inputFailed(const std::weak_ptr<OVAQRecorder>& recorder) {
  const auto failed = recorder.lock();
  if (!failed || failed != recorder_) {
    return;
  }
  if (isRecording()) {
    const std::uint64_t marker = playbackPosition();
    pauseButton(nullptr);
    if (!writtenSincePress_) {
      takeRecordingBack(marker);
    }
  } else {
    setRecorder(nullptr);
    failed->prepareForDestruction();
  }
}

// The answer that there is no input came after the press: as if Record had never been pressed. The
// step before it cannot be undone any more: there is room for one.
void VLRecorderWindowController::takeRecordingBack(std::uint64_t marker) {
  buffer_->undo();
  if (undoManager_) {
    undoManager_->discardLastUndo();
  }
  setDocumentEdited(prevSaveState_);
  setPlaybackPosition(marker);
}

// Looked at when the player has stopped: what it had read by then is heard first.
void VLRecorderWindowController::audioBufferFailedToRead(int error) {
  readError_ = error;
}

void VLRecorderWindowController::playerAdvancedToFrame(std::uint64_t frame) {
  setPlaybackPosition(frame);
}

void VLRecorderWindowController::playerStoppedPlayback(OVAQPlayer* player) {
  if (playbackPosition() >= bufferSizeInFrames()) {
    stopButton(stopButton_);
    return;
  }
  if (player == nullptr || player != player_.get()) {
    return;
  }
  if (player->failure() != platform::kAudioStatusOk) {
    pauseButton(nullptr);  // the device went away: the marker stays where playing broke off
  } else if (const int error = readError_.exchange(0)) {
    pauseButton(nullptr);
    tellReadingFailed(error);
  }
}

void VLRecorderWindowController::tellReadingFailed(int error) {
  ShowModalAlert(platform::localizedUtf8("Playing was stopped"),
                 platform::localized("The audio could not be read from the temporary file. %1")
                     .arg(QString::fromStdString(platform::failureReason(error)))
                     .toStdString());
}

std::optional<std::vector<float>> VLRecorderWindowController::dataForVUView(QWidget*) {
  const platform::PostedAlertsScope afterwards;
  if (isPlaying()) {
    return player_->powerLevels();
  }
  if (isRecording()) {
    return recorder_->powerLevels();
  }
  return std::nullopt;
}

// Units -----------------------------------------------------------------------------------------

std::uint64_t VLRecorderWindowController::bytesPerFrame() const {
  return buffer_ ? buffer_->format().mBytesPerFrame : 0;
}

std::uint64_t VLRecorderWindowController::bufferSizeInFrames() const {
  return buffer_ ? buffer_->bufferSizeInFrames() : 0;
}
