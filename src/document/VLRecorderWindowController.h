#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <QPointer>
#include <QRectF>

#include "audio/OVAQPlayerDelegate.h"
#include "controls/OVRecorderWindowDelegate.h"
#include "displays/OVVUViewDataSource.h"
#include "document/OVDocumentParts.h"
#include "document/files/temporaryPath.h"
#include "platform/files/TemporaryFiles.h"
#include "platform/views/ViewRedraw.h"
#include "storage/OVAudioBufferInterface.h"
#include "waveform/views/OVWaveFormView.h"

class OVCircularVUView;

/// One document: a recorder window with its own audio, transport, waveform, displays and undo.
///
/// The operations below delegate to the controller's parts. Positions are in frames. Any view may
/// be missing, also the window: an operation on a missing view does nothing. The controller keeps
/// itself alive until windowWillClose(), and is always destroyed on the main thread.
///
/// Threads: main, unless stated otherwise. Real-time: not safe.
class VLRecorderWindowController : public OVAudioBufferDelegate,
                                   public OVAQPlayerDelegate,
                                   public OVWaveFormViewDelegate,
                                   public OVVUViewDataSource,
                                   public OVRecorderWindowDelegate,
                                   public std::enable_shared_from_this<VLRecorderWindowController> {
 public:
  /// A controller for a window, which may be null. windowDidLoad() completes the set-up.
  static std::shared_ptr<VLRecorderWindowController> initWithWindow(OVRecorderWindow* window);
  /// A controller with a new window from the interface file of this name, set up and not yet
  /// shown. The only name is "VNRecorderWindow"; null for any other.
  static std::shared_ptr<VLRecorderWindowController> initWithWindowNibName(const std::string& name);
  ~VLRecorderWindowController() override;
  VLRecorderWindowController(const VLRecorderWindowController&) = delete;
  VLRecorderWindowController& operator=(const VLRecorderWindowController&) = delete;

  // Window --------------------------------------------------------------------------------------

  void setEvents(OVDocumentEvents events) { parts_.events = std::move(events); }
  void windowDidLoad();
  void showWindow();
  [[nodiscard]] OVRecorderWindow* window() const;
  [[nodiscard]] bool isDocumentEdited() const { return parts_.history.isEdited(); }
  void setDocumentEdited(bool edited) { parts_.history.setEdited(edited); }
  [[nodiscard]] static QString titleWithName(const QString& name) {
    return OVDocumentFile::titleWithName(name);
  }

  // Transport -----------------------------------------------------------------------------------

  /// Actions of the six buttons. recButton and playButton read the sender's state; null is off.
  void recButton(OVTransportButton* sender) { turn(sender, &OVTransport::record); }
  void playButton(OVTransportButton* sender) { turn(sender, &OVTransport::play); }
  void pauseButton(OVTransportButton*) { parts_.transport.pause(); }
  void stopButton(OVTransportButton*) { move(&OVTransport::stop); }
  void prevButton(OVTransportButton*) { move(&OVTransport::toStart); }
  void nextButton(OVTransportButton*) { move(&OVTransport::toEnd); }

  /// Menu commands: the buttons' actions, if the button is enabled. pauseMenu does nothing.
  void recMenu(QObject*) { menuCommand(Button::rec); }
  void playMenu(QObject* sender);
  void pauseMenu(QObject*) {}
  void stopMenu(QObject*) { menuCommand(Button::stop); }
  void prevMenu(QObject*) { menuCommand(Button::prev); }
  void nextMenu(QObject*) { menuCommand(Button::next); }

  // Editing -------------------------------------------------------------------------------------

  void removeAfterMarker(QObject* sender);
  void removeBeforeMarker(QObject* sender);
  void reverseBuffer(QObject* sender);
  /// Called by the undo manager.
  void undo(QObject*) { exchangeHistory(&OVEditHistory::undo); }
  void redo(QObject*) { exchangeHistory(&OVEditHistory::redo); }
  /// The menu's Undo and Redo: pause recording and playback, then call the undo manager.
  void undoCommand();
  void redoCommand();
  [[nodiscard]] std::shared_ptr<platform::UndoManager> windowWillReturnUndoManager() const;

  /// Groups of menu commands that are enabled together.
  enum class MenuAction { reverseBuffer, undo, redo, edit, transport, open, file, other };
  [[nodiscard]] bool validateMenuItem(MenuAction action) const;
  /// Called when validateMenuItem() may have changed; the undo manager reports its own changes.
  void setCommandsChangedHandler(std::function<void()> handler);

  // Display loop --------------------------------------------------------------------------------

  /// Tick of the display timer, 25 times a second.
  void updatePlaybackMarkerView() { parts_.displayLoop.tick(); }
  [[nodiscard]] bool isDisplayTimerRunning() const { return parts_.displayLoop.isRunning(); }
  /// Rebuilds the displays after an edit; with `regenerate`, generates the summary from scratch.
  void refreshCompleteUI(bool regenerate) { parts_.displayLoop.refresh(regenerate); }

  /// Threads: any.
  [[nodiscard]] std::uint64_t playbackPosition() const { return parts_.positions.playback(); }
  void setPlaybackPosition(std::uint64_t frames) { parts_.positions.setPlayback(frames); }
  [[nodiscard]] std::uint64_t recordingPosition() const { return parts_.positions.recording(); }
  void setRecordingPosition(std::uint64_t frames) { parts_.positions.setRecording(frames); }

  /// Requests a redraw on the main queue if the view still exists. Threads: any.
  template <typename View>
  static void setViewNeedsDisplay(const QPointer<View>& view) {
    requestRedraw(view);
  }
  template <typename View>
  static void setViewNeedsDisplay(const QPointer<View>& view, const QRectF& inRect) {
    requestRedraw(view, inRect);
  }

  [[nodiscard]] std::uint64_t lastPlaybackPosition() const;
  void setLastPlaybackPosition(std::uint64_t frames);
  [[nodiscard]] bool isRenderingWaveform() const {
    return parts_.displayLoop.isRenderingWaveform();
  }
  void setIsRenderingWaveform(bool rendering) {
    parts_.displayLoop.setIsRenderingWaveform(rendering);
  }
  [[nodiscard]] QProgressBar* loadingIndicator() const;
  void recreateIndicator(bool indeterminate);

  // Spectrum ------------------------------------------------------------------------------------

  /// Action of the spectrum button and its menu item. The sender is ignored.
  void toggleFFT(QObject* sender);
  [[nodiscard]] bool isSpectrumShown() const { return parts_.spectrum.isShown(); }
  /// Tick of the spectrum timer, 30 times a second: analyses the audio being played, then the last
  /// recorded chunk.
  void fireFFT();
  void doFFT();
  void doFFTwithData(const void* data, std::uint32_t size) { parts_.spectrum.show(data, size); }
  /// Copy of the last recorded chunk. Threads: any.
  [[nodiscard]] std::vector<std::byte> fft_data() const { return parts_.fft_data.fft_data(); }

  // Files ---------------------------------------------------------------------------------------

  /// Loads a file into the document, at the recording position. This and the commands below do
  /// nothing while another file operation runs.
  void openFileNamed(const std::string& path) { parts_.loading.open(path); }
  /// The same for a recovered file in a new document, which then has no file of its own.
  void openRecovered(const OVRecoveredFile& file) { parts_.recovered.open(file); }
  /// Asks for a file and imports it at the recording position, as an undoable step.
  void importFile(QObject*) { parts_.loading.chooseImport(); }
  void fileLoadingComplete() { parts_.loading.drawWaveform(); }    ///< after the last chunk
  void fileLoadingReallyComplete() { parts_.loading.complete(); }  ///< after the waveform

  void saveFile(QObject*) { parts_.saving.save(); }
  void saveFileAs(QObject*) { parts_.saving.saveAs(); }
  /// `withType` is a kind of the file writer, 0 to 3.
  void saveFileNamed(const std::string& path, std::int32_t withType) {
    parts_.saving.saveNamed(path, withType);
  }
  void fileSavingComplete();  ///< after a save or an export that wrote everything
  void exportRingtone(QObject*) { parts_.saving.exportRingtone(); }
  void dumpWaveform(QObject* sender);
  void revealTempFile(QObject*) {}  ///< does nothing

  static constexpr auto kCancelClosing = OVUnsavedChanges::kCancelClosing;
  static constexpr auto kDontSave = OVUnsavedChanges::kDontSave;
  static constexpr auto kSave = OVUnsavedChanges::kSave;
  /// Handles the answer to the question about unsaved changes.
  void alertDidEnd(int returnCode) { parts_.unsavedChanges.answer(returnCode); }

  [[nodiscard]] bool isFileIOActive() const { return parts_.operation.isActive(); }
  [[nodiscard]] bool isImport() const { return parts_.operation.isImport(); }
  [[nodiscard]] bool isSaving() const { return parts_.operation.isWriting(); }  ///< or exporting
  [[nodiscard]] bool shouldCloseAfterSave() const;
  /// True, after an alert, if a panel stands in the way of a quit's question.
  [[nodiscard]] bool refusesQuit() { return parts_.unsavedChanges.refusesQuit(); }
  /// The window stays open after a save that runs, and a save that waits for a load is not begun.
  void cancelClosing() { parts_.unsavedChanges.cancelClosing(); }
  /// Path of the document's file, empty for a new recording.
  [[nodiscard]] const std::string& currentFilename() const { return parts_.file.name(); }
  void setCurrentFilename(std::string path) { parts_.file.setName(std::move(path)); }
  /// Kind of the document's file; -1 if there is none or it is unknown.
  [[nodiscard]] std::int32_t currentFiletype() const { return parts_.file.type(); }
  void setCurrentFiletype(std::int32_t type) { parts_.file.setType(type); }

  // Audio ---------------------------------------------------------------------------------------

  [[nodiscard]] std::shared_ptr<OVAudioBufferInterface> buffer() const;
  /// Replaces the document's buffer. Only before the first recording.
  void setBuffer(const std::shared_ptr<OVAudioBufferInterface>& buffer);
  [[nodiscard]] std::shared_ptr<OVAQRecorder> recorder() const;
  [[nodiscard]] std::shared_ptr<OVAQPlayer> player() const { return parts_.transport.player(); }
  [[nodiscard]] std::shared_ptr<OVWaveformSummary> waveForm() const;
  [[nodiscard]] std::shared_ptr<OVWaveformSummary> prevWaveform() const;
  [[nodiscard]] bool waveformIsChanging() const { return parts_.summaries->isChanging(); }
  /// A fresh path, named "velmar_…", in the user's temporary directory. Creates no file.
  [[nodiscard]] static std::string createTempFile() { return freshTemporaryPath(); }
  /// Deletes a file. Ignores errors and an empty path.
  static void removeTempFile(const std::string& path) { platform::deleteFile(path); }

  // Callbacks -----------------------------------------------------------------------------------

  void audioBufferDidWriteData(const void* data, std::uint64_t atByteOffset,
                               std::uint32_t withSize) override;
  void audioBufferFailedToWrite(int error) override { parts_.transport.failedToWrite(error); }
  void audioBufferFailedToRead(int error) override { parts_.transport.failedToRead(error); }
  void playerAdvancedToFrame(std::uint64_t frame) override { parts_.positions.setPlayback(frame); }
  void playerStoppedPlayback(OVAQPlayer* player) override;
  std::optional<std::vector<float>> dataForVUView(QWidget* view) override;
  void waveFormViewReceivedClick(OVWaveFormView* view, QPointF atPosition,
                                 double timeLinePosition) override;
  void waveFormViewReceivedDrag(OVWaveFormView* view, QPointF atPosition,
                                double timeLinePosition) override;
  double waveFormViewTimeLinePosition(OVWaveFormView* view) override;
  void windowDidReceiveKeyDown(OVRecorderWindow* window, std::uint16_t keyCode) override;
  void windowDidReceiveKeyUp(OVRecorderWindow* window, std::uint16_t keyCode) override;
  void windowDidCancelKey(OVRecorderWindow* window, std::uint16_t keyCode) override;
  bool windowShouldClose(OVRecorderWindow*) override { return parts_.unsavedChanges.mayClose(); }
  void windowWillClose(OVRecorderWindow* window) override;

 private:
  using Button = OVTransportControls::Button;

  explicit VLRecorderWindowController(OVRecorderWindow* window);

  void connectViews();
  void press(Button button, OVTransportButton* sender);
  void turn(OVTransportButton* sender, void (OVTransport::*begin)());
  void menuCommand(Button button);
  void move(void (OVTransport::*command)());
  void exchangeHistory(bool (OVEditHistory::*operation)());
  void transportChanged();
  void operationChanged();
  void showTransport();
  void cut(void (OVAudioBufferInterface::*cutoff)(std::uint64_t), platform::TextKey actionName);
  void runHistoryCommand(void (platform::UndoManager::*command)());

  std::shared_ptr<VLRecorderWindowController> selfretaining_reference_;  // until windowWillClose
  OVDocumentParts parts_;

  QPointer<OVRecorderWindow> window_;
  QPointer<OVWaveFormView> wfView_;
  QPointer<OVCircularVUView> vuView_;
  std::function<void()> commandsChanged_;
  OVTransportState shownState_ = OVTransportState::resting;
};
