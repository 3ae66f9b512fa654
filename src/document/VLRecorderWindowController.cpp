#include "document/VLRecorderWindowController.h"

#include <algorithm>
#include <array>
#include <utility>

#include "audio/OVAQPlayer.h"
#include "audio/OVAQRecorder.h"
#include "controls/OVRecorderWindow.h"
#include "controls/buttons/OVTransportButton.h"
#include "displays/OVCircularVUView.h"
#include "document/files/OVWaveformPicture.h"
#include "document/transport/recordingBuffer.h"
#include "platform/base/ApplicationServices.h"
#include "platform/mainloop/MainQueue.h"
#include "storage/OVAudioBuffer.h"
#include "storage/OVBlockBuffer.h"
#include "ui_VNRecorderWindow.h"
#include "waveform/OVWaveformSummary.h"

using platform::textKey;

namespace {

// An audio thread may drop the last reference. The controller owns timers and objects tied to
// views, so it is always destroyed on the main thread.
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
    : parts_({.menuCommand = [this](Button button) { menuCommand(button); },
              .loading = {.loaded = [this] { fileLoadingComplete(); },
                          .drawn = [this] { fileLoadingReallyComplete(); },
                          .ended = [this] { parts_.loadEnded(); }},
              .fileSavingComplete = [this] { fileSavingComplete(); },
              .saveFile = [this] { return parts_.saving.save(); },
              .alertDidEnd = [this](int returnCode) { alertDidEnd(returnCode); }}),
      window_(window) {}

std::shared_ptr<VLRecorderWindowController> VLRecorderWindowController::initWithWindow(
    OVRecorderWindow* window) {
  std::shared_ptr<VLRecorderWindowController> controller(new VLRecorderWindowController(window),
                                                         deleteOnMainThread);
  controller->selfretaining_reference_ = controller;
  controller->parts_.life.begin(controller);
  return controller;
}

std::shared_ptr<VLRecorderWindowController> VLRecorderWindowController::initWithWindowNibName(
    const std::string& name) {
  if (name != "VNRecorderWindow") {
    return nullptr;
  }
  auto* window = new OVRecorderWindow;  // deletes itself when it has closed
  Ui::VNRecorderWindow().setupUi(window);
  auto controller = initWithWindow(window);
  controller->windowDidLoad();
  return controller;
}

VLRecorderWindowController::~VLRecorderWindowController() {
  if (vuView_) {
    vuView_->setDatasource({});
  }
}

void VLRecorderWindowController::windowDidLoad() {
  connectViews();
  parts_.history.open(
      weak_from_this(), [this] { undo(nullptr); }, [this] { redo(nullptr); });
  parts_.transport.setDelegate(weak_from_this());
  parts_.transport.setChangeHandler([this] { transportChanged(); });
  parts_.transport.setCutHandler([this] { refreshCompleteUI(true); });
  parts_.operation.setChangeHandler([this] { operationChanged(); });
  parts_.progress.show(false);
  const auto makeBuffer = [this] {
    const platform::PostedAlertsScope afterwards;  // alerts appear after the window
    if (auto blocks = makeRecordingBuffer()) {
      setBuffer(std::move(blocks));
    }
  };
  makeBuffer();
  parts_.transport.setBufferMaker(makeBuffer);
  parts_.displayLoop.start();
  parts_.progress.end();
}

void VLRecorderWindowController::connectViews() {
  if (!window_) {
    return;
  }
  window_->setDelegate(weak_from_this());
  wfView_ = window_->findChild<OVWaveFormView*>("wfView");
  vuView_ = window_->findChild<OVCircularVUView*>("vuView");
  parts_.connect(window_);
  parts_.controls.connect(
      window_, weak_from_this(),
      [this](Button button, OVTransportButton* sender) { press(button, sender); });
  parts_.spectrum.connect(window_, weak_from_this(), [this] { toggleFFT(nullptr); });
  if (wfView_) {
    wfView_->setDelegate(weak_from_this());
    wfView_->setTimeLineText([this, life = weak_from_this()] {
      return life.lock() ? parts_.markerAndTime.text() : QString();
    });
  }
}

void VLRecorderWindowController::setBuffer(const std::shared_ptr<OVAudioBufferInterface>& buffer) {
  if (const auto former = parts_.audio.buffer()) {
    former->setDelegate({});
    parts_.transport.prepareForNewBuffer();
  }
  parts_.audio.setBuffer(buffer);
  buffer->setDelegate(weak_from_this());
  parts_.transport.bufferChanged();
  parts_.summaries->setBuffer(buffer);
  if (vuView_) {
    vuView_->setDatasource(weak_from_this());
  }
  showTransport();
}

OVRecorderWindow* VLRecorderWindowController::window() const {
  return window_;
}

void VLRecorderWindowController::showWindow() {
  if (window_) {
    window_->show();
  }
}

void VLRecorderWindowController::windowWillClose(OVRecorderWindow*) {
  parts_.loading.cancel();
  parts_.summaries->cancelWork();
  parts_.displayLoop.end();
  parts_.spectrum.close();
  parts_.transport.close();
  parts_.history.close();
  const auto self = std::move(selfretaining_reference_);  // released when this call returns
}

// Transport -------------------------------------------------------------------------------------

void VLRecorderWindowController::press(Button button, OVTransportButton* sender) {
  using Action = void (VLRecorderWindowController::*)(OVTransportButton*);
  static constexpr std::array<Action, OVTransportControls::kButtonCount> kActions{
      &VLRecorderWindowController::recButton,  &VLRecorderWindowController::playButton,
      &VLRecorderWindowController::prevButton, &VLRecorderWindowController::nextButton,
      &VLRecorderWindowController::stopButton, &VLRecorderWindowController::pauseButton};
  (this->*kActions[static_cast<std::size_t>(button)])(sender);
}

void VLRecorderWindowController::turn(OVTransportButton* sender, void (OVTransport::*begin)()) {
  if (sender != nullptr && sender->isOn()) {
    (parts_.transport.*begin)();
  } else {
    pauseButton(sender);
  }
}

// Disabled while a file operation runs.
void VLRecorderWindowController::move(void (OVTransport::*command)()) {
  if (!isFileIOActive()) {
    (parts_.transport.*command)();
  }
}

void VLRecorderWindowController::menuCommand(Button button) {
  if (!parts_.controls.isEnabled(button)) {
    return;
  }
  if (button == Button::rec || button == Button::play) {
    parts_.controls.setOn(button, parts_.transport.state() == OVTransportState::resting);
  }
  press(button, parts_.controls.view(button));
}

void VLRecorderWindowController::playMenu(QObject*) {
  const bool endsRecording =
      parts_.controls.isEnabled(Button::rec) && parts_.transport.isRecording();
  menuCommand(endsRecording ? Button::rec : Button::play);
}

void VLRecorderWindowController::windowDidReceiveKeyDown(OVRecorderWindow*, std::uint16_t keyCode) {
  parts_.keys.keyDown(keyCode);
}

void VLRecorderWindowController::windowDidReceiveKeyUp(OVRecorderWindow*, std::uint16_t keyCode) {
  parts_.keys.keyUp(keyCode);
}

void VLRecorderWindowController::windowDidCancelKey(OVRecorderWindow*, std::uint16_t keyCode) {
  parts_.keys.cancel(keyCode);
}

void VLRecorderWindowController::transportChanged() {
  const OVTransportState state = parts_.transport.state();
  if (std::exchange(shownState_, state) == OVTransportState::recording) {
    parts_.markerAndTime.invalidate();  // the next tick moves it off the recording position
  }
  if (state != OVTransportState::recording) {
    parts_.markerAndTime.setIsRecordingMarker(false);
  }
  if (wfView_) {
    wfView_->setScrollBack(state == OVTransportState::recording);
  }
  showTransport();
}

void VLRecorderWindowController::showTransport() {
  parts_.controls.show(parts_.transport.state(), !parts_.operation.isActive());
  if (commandsChanged_) {
    commandsChanged_();
  }
}

// Editing ---------------------------------------------------------------------------------------

void VLRecorderWindowController::removeAfterMarker(QObject*) {
  cut(&OVAudioBufferInterface::cutoffBufferAfterPosition, textKey("Remove After Marker"));
}

void VLRecorderWindowController::removeBeforeMarker(QObject*) {
  cut(&OVAudioBufferInterface::cutoffBufferBeforePosition, textKey("Remove Before Marker"));
}

void VLRecorderWindowController::cut(void (OVAudioBufferInterface::*cutoff)(std::uint64_t),
                                     platform::TextKey actionName) {
  const auto audio = buffer();
  if (isFileIOActive() || !audio) {
    return;
  }
  parts_.transport.pause();
  parts_.history.beginStep(actionName);
  // An undo may have left the marker past the end.
  ((*audio).*cutoff)(std::min(playbackPosition(), audio->bufferSizeInFrames()));
  setDocumentEdited(true);
  parts_.transport.setPlaybackPosition(0);
  parts_.transport.setRecordingPosition(audio->bufferSizeInFrames());
  refreshCompleteUI(true);
}

// Reversing is its own inverse, so it registers itself as the undo.
void VLRecorderWindowController::reverseBuffer(QObject*) {
  if (isFileIOActive() || !buffer()) {
    return;
  }
  buffer()->reverseBuffer();
  refreshCompleteUI(true);
  parts_.history.registerInverse([this] { reverseBuffer(nullptr); }, textKey("Reverse Audio"));
}

void VLRecorderWindowController::exchangeHistory(bool (OVEditHistory::*operation)()) {
  if (!isFileIOActive()) {
    refreshCompleteUI((parts_.history.*operation)());
  }
}

void VLRecorderWindowController::undoCommand() {
  if (validateMenuItem(MenuAction::undo)) {
    runHistoryCommand(&platform::UndoManager::undo);
  }
}

void VLRecorderWindowController::redoCommand() {
  if (validateMenuItem(MenuAction::redo)) {
    runHistoryCommand(&platform::UndoManager::redo);
  }
}

void VLRecorderWindowController::runHistoryCommand(void (platform::UndoManager::*command)()) {
  if (parts_.transport.isRecording() || player()) {
    parts_.transport.pause();
  }
  ((*windowWillReturnUndoManager()).*command)();
}

bool VLRecorderWindowController::validateMenuItem(MenuAction action) const {
  const bool idle = !isFileIOActive();
  switch (action) {
    case MenuAction::reverseBuffer:
      return idle && std::dynamic_pointer_cast<OVAudioBuffer>(buffer()) != nullptr;
    case MenuAction::undo:
      return idle && parts_.history.canUndo();
    case MenuAction::redo:
      return idle && parts_.history.canRedo();
    case MenuAction::transport:
    case MenuAction::open:  // opens its own window, independent of this document
      return idle;
    case MenuAction::edit:
      return idle && buffer() != nullptr && !parts_.transport.isRecording();
    case MenuAction::file:
      return idle && buffer() != nullptr;
    case MenuAction::other:
      return true;
  }
  return true;
}

void VLRecorderWindowController::setCommandsChangedHandler(std::function<void()> handler) {
  commandsChanged_ = std::move(handler);
}

// Display loop ----------------------------------------------------------------------------------

void VLRecorderWindowController::recreateIndicator(bool indeterminate) {
  parts_.progress.recreate(indeterminate, platform::textKey("Progress"));
}

void VLRecorderWindowController::waveFormViewReceivedClick(OVWaveFormView* view, QPointF atPosition,
                                                           double timeLinePosition) {
  waveFormViewReceivedDrag(view, atPosition, timeLinePosition);
}

double VLRecorderWindowController::waveFormViewTimeLinePosition(OVWaveFormView*) {
  return parts_.markerMovement.fraction();
}

void VLRecorderWindowController::waveFormViewReceivedDrag(OVWaveFormView*, QPointF,
                                                          double timeLinePosition) {
  parts_.markerMovement.moveToFraction(timeLinePosition);
}

std::optional<std::vector<float>> VLRecorderWindowController::dataForVUView(QWidget*) {
  return parts_.transport.powerLevels(OVTransportState::playing);
}

// Spectrum --------------------------------------------------------------------------------------

void VLRecorderWindowController::toggleFFT(QObject*) {
  parts_.spectrum.toggle(parts_.life.guarded([this] { fireFFT(); }));
}

void VLRecorderWindowController::fireFFT() {
  if (parts_.transport.isPlaying()) {
    doFFT();
  }
  if (parts_.transport.isRecording()) {
    const auto quarter = parts_.fft_data.nextQuarter();
    doFFTwithData(quarter.data(), static_cast<std::uint32_t>(quarter.size()));
  }
}

void VLRecorderWindowController::doFFT() {
  parts_.spectrum.show(buffer().get(), playbackPosition());
}

// Files -----------------------------------------------------------------------------------------

void VLRecorderWindowController::fileSavingComplete() {
  const bool saved = parts_.operation.state() != OVFileOperation::State::exporting;
  parts_.saving.complete();
  parts_.unsavedChanges.written(saved);
}

void VLRecorderWindowController::dumpWaveform(QObject*) {
  exportWaveformPicture(wfView_, parts_.panels, parts_.file);
}

// The waveform and the meter are not updated during a load.
void VLRecorderWindowController::operationChanged() {
  const bool loading = parts_.operation.isLoading();
  if (wfView_) {
    if (loading) {
      wfView_->setWaveForm(nullptr);
    }
    wfView_->setOverrideRegenerationCheck(loading);
  }
  if (vuView_) {
    vuView_->setDatasource(loading ? std::weak_ptr<OVVUViewDataSource>() : weak_from_this());
  }
  showTransport();
}

// Audio -----------------------------------------------------------------------------------------

void VLRecorderWindowController::audioBufferDidWriteData(const void* data,
                                                         std::uint64_t atByteOffset,
                                                         std::uint32_t withSize) {
  const auto recorder = parts_.transport.runningRecorder();
  if (!recorder) {
    return;
  }
  const std::uint64_t frameSize = parts_.audio.bytesPerFrame();
  const std::uint64_t position = (atByteOffset + withSize) / frameSize;
  parts_.fft_data.capture(data, withSize);
  parts_.transport.recordedUpTo(position);
  parts_.displayLoop.chunkWritten(withSize / frameSize);
  parts_.clipping.chunkWritten(data, atByteOffset, withSize);
  parts_.summaries->chunkWritten(static_cast<const float*>(data), withSize, position);
  parts_.transport.writeFailures()->chunkWritten(recorder, atByteOffset, withSize);
}

std::shared_ptr<platform::UndoManager> VLRecorderWindowController::windowWillReturnUndoManager()
    const {
  return parts_.history.undoManager();
}

std::uint64_t VLRecorderWindowController::lastPlaybackPosition() const {
  return parts_.markerAndTime.lastPlaybackPosition();
}

void VLRecorderWindowController::setLastPlaybackPosition(std::uint64_t frames) {
  parts_.markerAndTime.setLastPlaybackPosition(frames);
}

QProgressBar* VLRecorderWindowController::loadingIndicator() const {
  return parts_.progress.loadingIndicator();
}

bool VLRecorderWindowController::shouldCloseAfterSave() const {
  return parts_.unsavedChanges.state() == OVUnsavedChanges::State::savePending;
}

std::shared_ptr<OVAudioBufferInterface> VLRecorderWindowController::buffer() const {
  return parts_.audio.buffer();
}

std::shared_ptr<OVAQRecorder> VLRecorderWindowController::recorder() const {
  return parts_.transport.recorder();
}

std::shared_ptr<OVWaveformSummary> VLRecorderWindowController::waveForm() const {
  return parts_.summaries->waveForm();
}

std::shared_ptr<OVWaveformSummary> VLRecorderWindowController::prevWaveform() const {
  return parts_.summaries->prevWaveform();
}

void VLRecorderWindowController::playerStoppedPlayback(OVAQPlayer* player) {
  parts_.transport.playbackEnded(player);
}
