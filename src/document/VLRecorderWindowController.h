#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <QComboBox>
#include <QPointer>
#include <QProgressBar>
#include <QRectF>
#include <QWidget>

#include "audio/OVAQPlayerDelegate.h"
#include "controls/OVFocusKeeper.h"
#include "controls/OVRecorderWindowDelegate.h"
#include "displays/OVVUViewDataSource.h"
#include "document/files/OVSaveJob.h"
#include "document/files/OVWriteFailures.h"
#include "document/spectrum/OVRecordedChunk.h"
#include "document/summaries/OVDocumentSummaries.h"
#include "platform/base/AudioTypes.h"
#include "platform/base/UndoManager.h"
#include "platform/mainloop/Localization.h"
#include "platform/mainloop/MainQueue.h"
#include "platform/mainloop/Timer.h"
#include "platform/views/ViewRedraw.h"
#include "storage/OVAudioBufferInterface.h"
#include "waveform/views/OVWaveFormView.h"

class OVAQPlayer;
class OVAQRecorder;
class OVAudioFileReader;
class OVCircularVUView;
class OVFFTView;
class OVHoverButton;
class OVLoadingPanel;
class OVPlaybackMarkerView;
class OVRecorderWindow;
class OVSpectrumAnalyser;
class OVSpectrumStrip;
class OVTimeView;
class OVTransportBackgroundView;
class OVTransportButton;
class OVWaveformSummary;

/// One document: a recorder window with its own audio buffer, recorder, player, waveform summary,
/// displays, transport and undo manager.
///
/// Positions are unsigned 64-bit frame counts; offsets handed to the buffer, the recorder and the
/// player are bytes (frames times the format's mBytesPerFrame); views receive positions as
/// fractions 0 to 1 of the whole length and times in seconds.
///
/// Every view may be missing, the window included: an operation on a missing view does nothing,
/// so the document's logic runs without any.
///
/// The controller keeps itself alive from its creation until windowWillClose().
///
/// Sources, by concern: VLRecorderWindowController.cpp (set-up, tear-down, callbacks), …Transport
/// (buttons, menus, keys), …Display (the 25 Hz loop, positions, clicks), …Editing (cuts, undo),
/// …Spectrum (the spectrum below the transport bar), …Loading (open, import), …Saving,
/// …Exporting (ringtone, picture), …Closing (the question about unsaved changes).
///
/// Threads: main, except the buffer's and the player's callbacks, the positions, isRendering-
/// Waveform and the redraw requests, which any thread may call.
/// Real-time: not safe.
class VLRecorderWindowController : public OVAudioBufferDelegate,
                                   public OVAQPlayerDelegate,
                                   public OVWaveFormViewDelegate,
                                   public OVVUViewDataSource,
                                   public OVRecorderWindowDelegate,
                                   public std::enable_shared_from_this<VLRecorderWindowController> {
 public:
  /// A controller for a window, or for none. Set-up follows with windowDidLoad().
  static std::shared_ptr<VLRecorderWindowController> initWithWindow(OVRecorderWindow* window);

  /// A controller with a new window from the interface file of this name, set up and not yet
  /// shown. The only name is "VNRecorderWindow"; null for any other.
  static std::shared_ptr<VLRecorderWindowController> initWithWindowNibName(const std::string& name);

  ~VLRecorderWindowController() override;
  VLRecorderWindowController(const VLRecorderWindowController&) = delete;
  VLRecorderWindowController& operator=(const VLRecorderWindowController&) = delete;

  // Window life ---------------------------------------------------------------------------------

  /// Sets everything up: queues, undo manager, transport buttons, buffer, recorder, summary and
  /// the display timer.
  void windowDidLoad();
  void showWindow();
  [[nodiscard]] OVRecorderWindow* window() const;
  /// The edited flag of the document, kept by the window where there is one.
  [[nodiscard]] bool isDocumentEdited() const;
  void setDocumentEdited(bool edited);

  // Transport -----------------------------------------------------------------------------------

  /// Actions of the six buttons. recButton and playButton read the new state from the sender; a
  /// missing sender counts as off.
  void recButton(OVTransportButton* sender);
  void playButton(OVTransportButton* sender);
  void pauseButton(OVTransportButton* sender);
  void stopButton(OVTransportButton* sender);
  void prevButton(OVTransportButton* sender);
  void nextButton(OVTransportButton* sender);

  /// Menu commands: the buttons' actions where the buttons are enabled. pauseMenu does nothing.
  void recMenu(QObject* sender);
  void playMenu(QObject* sender);
  void pauseMenu(QObject* sender);
  void stopMenu(QObject* sender);
  void prevMenu(QObject* sender);
  void nextMenu(QObject* sender);

  // Editing -------------------------------------------------------------------------------------

  void removeAfterMarker(QObject* sender);
  void removeBeforeMarker(QObject* sender);
  void reverseBuffer(QObject* sender);

  /// What the undo manager calls: restores the buffer, exchanges edited flag and summary.
  void undo(QObject* sender);
  void redo(QObject* sender);

  /// The Undo and Redo commands of menu and keys: pause what runs, then ask the undo manager.
  void undoCommand();
  void redoCommand();

  /// The commands of a menu that are not always possible.
  enum class MenuAction { reverseBuffer, undo, redo, edit, transport, open, file, other };
  [[nodiscard]] bool validateMenuItem(MenuAction action) const;
  /// Called whenever validateMenuItem() may answer otherwise because a file operation began or
  /// ended; the undo manager tells of its own changes.
  void setCommandsChangedHandler(std::function<void()> handler) {
    commandsChanged_ = std::move(handler);
  }

  [[nodiscard]] std::shared_ptr<platform::UndoManager> windowWillReturnUndoManager() const;

  // Display loop --------------------------------------------------------------------------------

  /// The display timer's tick.
  void updatePlaybackMarkerView();
  /// From windowDidLoad() to windowWillClose().
  [[nodiscard]] bool isDisplayTimerRunning() const { return pollTimer_ != nullptr; }

  /// Rebuilds the displays after an edit; with `regenerate` the summary starts from scratch.
  void refreshCompleteUI(bool regenerate);

  /// Any thread.
  [[nodiscard]] std::uint64_t playbackPosition() const;
  void setPlaybackPosition(std::uint64_t frames);
  [[nodiscard]] std::uint64_t recordingPosition() const;
  void setRecordingPosition(std::uint64_t frames);

  /// Any thread: the view, if it is still there, is asked to redraw from the main queue.
  template <typename View>
  static void setViewNeedsDisplay(const QPointer<View>& view) {
    requestRedraw(view);
  }
  template <typename View>
  static void setViewNeedsDisplay(const QPointer<View>& view, const QRectF& inRect) {
    requestRedraw(view, inRect);
  }

  [[nodiscard]] std::uint64_t lastPlaybackPosition() const { return lastPlaybackPosition_; }
  void setLastPlaybackPosition(std::uint64_t position) { lastPlaybackPosition_ = position; }
  /// Any thread.
  [[nodiscard]] bool isRenderingWaveform() const { return isRenderingWaveform_; }
  void setIsRenderingWaveform(bool rendering) { isRenderingWaveform_ = rendering; }

  // Spectrum ------------------------------------------------------------------------------------

  /// Action of the spectrum button and its menu item: shows or hides the spectrum and starts or
  /// ends its timer, 30 ticks a second. The sender does not matter.
  void toggleFFT(QObject* sender);
  /// Whether the spectrum is shown, which is while its timer runs.
  [[nodiscard]] bool isSpectrumShown() const { return fftTimer_ != nullptr; }

  /// The spectrum timer's tick: analyses what plays, then what was recorded last. Neither: the view
  /// keeps its curve.
  void fireFFT();
  /// Shows the spectrum of the stored audio at the playback position: 2048 bins.
  void doFFT();
  /// Shows the spectrum of `size` bytes of freshly recorded floats: 512 bins. Nothing for fewer
  /// than 4 bytes.
  void doFFTwithData(const void* data, std::uint32_t size);

  // Opening and importing -----------------------------------------------------------------------

  /// Fills the document with a file, at the recording position, on a background queue. One file
  /// operation at a time: nothing happens while another runs.
  void openFileNamed(const std::string& path);
  /// Asks for a file and writes it into the document at the recording position, undoably. A file
  /// that cannot be read changes nothing.
  void importFile(QObject* sender);
  /// Main thread, after the last chunk: the waveform is built on a background queue.
  void fileLoadingComplete();
  /// Main thread, after the waveform: the document is stopped again.
  void fileLoadingReallyComplete();

  // Saving and exporting ------------------------------------------------------------------------

  /// Saves to the document's file in its kind; asks where for a document that has none.
  void saveFile(QObject* sender);
  void saveFileAs(QObject* sender);
  /// Writes the whole document to `path` on a background queue, beside the target first.
  /// `withType` is a kind of the file writer, 0 to 3.
  void saveFileNamed(const std::string& path, std::int32_t withType);
  /// Main thread, after a save or an export that wrote everything.
  void fileSavingComplete();

  /// Longest ringtone, in seconds: phones take no longer ones.
  static constexpr double kRingtoneSeconds = 40.0;
  /// Asks where and writes at most kRingtoneSeconds from the marker, or from the start when the
  /// marker is at the end, as AAC in an .m4r file; then opens it with the desktop's program.
  void exportRingtone(QObject* sender);
  /// Asks where and writes the waveform's picture as PNG, in the screen's own pixels.
  void dumpWaveform(QObject* sender);
  /// Part of the document's commands; does nothing.
  void revealTempFile(QObject* sender);

  /// Answers of the question about unsaved changes.
  enum UnsavedChangesAnswer : int { kCancelClosing = -1, kDontSave = 0, kSave = 1 };
  /// The end of that question. Any other code is a programming error and ends the program.
  void alertDidEnd(int returnCode);

  /// A load, save or export is running.
  [[nodiscard]] bool isFileIOActive() const { return isFileIOActive_; }
  [[nodiscard]] bool isImport() const { return isImport_; }
  /// A save or export is running.
  [[nodiscard]] bool isSaving() const { return isSaving_; }

  // Document ------------------------------------------------------------------------------------

  /// The title of a document of this name: the product's name and it.
  [[nodiscard]] static QString titleWithName(const QString& name);

  /// Path of the opened file, empty for a new recording.
  [[nodiscard]] const std::string& currentFilename() const { return currentFilename_; }
  void setCurrentFilename(std::string path) { currentFilename_ = std::move(path); }
  /// Kind of file of the document, -1 for none or unknown.
  [[nodiscard]] std::int32_t currentFiletype() const { return currentFiletype_; }
  void setCurrentFiletype(std::int32_t type) { currentFiletype_ = type; }

  [[nodiscard]] std::shared_ptr<OVAudioBufferInterface> buffer() const { return buffer_; }
  [[nodiscard]] std::shared_ptr<OVAQRecorder> recorder() const { return recorder_; }
  [[nodiscard]] std::shared_ptr<OVAQPlayer> player() const { return player_; }
  [[nodiscard]] std::shared_ptr<OVWaveformSummary> waveForm() const {
    return summaries_->waveForm();
  }
  [[nodiscard]] std::shared_ptr<OVWaveformSummary> prevWaveform() const {
    return summaries_->prevWaveform();
  }
  [[nodiscard]] bool waveformIsChanging() const { return summaries_->isChanging(); }
  [[nodiscard]] QProgressBar* loadingIndicator() const { return loadingIndicator_; }
  /// Copy of the chunk recorded last, for the spectrum. Any thread.
  [[nodiscard]] std::vector<std::byte> fft_data() const;

  /// Replaces the document's audio by another kind of storage. For a document that has not
  /// recorded yet.
  void setBuffer(std::shared_ptr<OVAudioBufferInterface> buffer);

  /// A fresh path in the user's temporary directory that begins with "velmar_"; the file is not
  /// made.
  [[nodiscard]] static std::string createTempFile();
  /// Deletes a file; nothing for an empty path, errors are ignored.
  static void removeTempFile(const std::string& path);

  /// Replaces the progress bar by a fresh one in the same place. `activity` is what it is for: the
  /// words beside it and its name.
  void recreateIndicator(bool indeterminate,
                         platform::TextKey activity = platform::textKey("Progress"));

  // Callbacks -----------------------------------------------------------------------------------

  void audioBufferDidWriteData(const void* data, std::uint64_t atByteOffset,
                               std::uint32_t withSize) override;
  void audioBufferFailedToWrite(int error) override;
  void audioBufferFailedToRead(int error) override;
  void playerAdvancedToFrame(std::uint64_t frame) override;
  void playerStoppedPlayback(OVAQPlayer* player) override;
  std::optional<std::vector<float>> dataForVUView(QWidget* view) override;
  void waveFormViewReceivedClick(OVWaveFormView* view, QPointF atPosition,
                                 double timeLinePosition) override;
  void waveFormViewReceivedDrag(OVWaveFormView* view, QPointF atPosition,
                                double timeLinePosition) override;
  void windowDidReceiveKeyDown(OVRecorderWindow* window, std::uint16_t keyCode) override;
  void windowDidReceiveKeyUp(OVRecorderWindow* window, std::uint16_t keyCode) override;
  void windowDidCancelKey(OVRecorderWindow* window, std::uint16_t keyCode) override;
  bool windowShouldClose(OVRecorderWindow* window) override;
  void windowWillClose(OVRecorderWindow* window) override;

 private:
  explicit VLRecorderWindowController(OVRecorderWindow* window);

  using ButtonAction = void (VLRecorderWindowController::*)(OVTransportButton*);

  // Set-up
  void connectViews();
  void setupTransportButtons();
  void setupTransportButton(OVTransportButton* button, const char* withOnImage,
                            const char* offImage, ButtonAction action);
  void initBuffer();
  void windowIsReady();
  std::shared_ptr<OVAQRecorder> makeRecorder();
  void setRecorder(std::shared_ptr<OVAQRecorder> recorder);
  void advanceIndicator(double by);
  void setIndicatorValue(double value);
  void showIndicator(bool shown);
  void tellActivity(platform::TextKey activity);

  // Transport
  void beginRecording();
  void beginPlaying();
  void endRecording();
  void restTransportButtons();
  void replaceRecorder();
  void pressKey(std::uint16_t keyCode, OVTransportButton* button, bool toggles);
  bool releaseKey(std::uint16_t keyCode, OVTransportButton* button, bool toggles);
  void takeBackKey(std::uint16_t keyCode);
  static void takeBackPress(OVTransportButton* button, bool isOn = false);
  [[nodiscard]] bool isRecording() const;
  [[nodiscard]] bool isPlaying() const;
  void inputFailed(const std::weak_ptr<OVAQRecorder>& recorder);
  void takeRecordingBack(std::uint64_t marker);
  static void tellReadingFailed(int error);
  void writingFailed(const OVWriteFailures::Failure& failure);
  void dropLostEnd(std::uint64_t atByteOffset, std::uint32_t withSize);
  void setReadingPosition(std::uint64_t frames);
  void setWritingPosition(std::uint64_t frames);

  // Display loop
  void updateRendering();
  void updatePlayback();
  void updateRecording();
  void moveMarker(double toFraction);
  void updateMarkerLevel();
  void showTime(std::uint64_t currentFrames, bool always);
  [[nodiscard]] double fractionOfBuffer(std::uint64_t frames) const;
  [[nodiscard]] double secondsOfFrames(std::uint64_t frames) const;
  void moveToTimeLinePosition(double fraction);

  // Spectrum
  void setupSpectrum();
  [[nodiscard]] OVSpectrumAnalyser* spectrumAnalyser();
  void showMagnitudes(std::span<const float> magnitudes);

  // Editing
  void cut(void (OVAudioBufferInterface::*cutoff)(std::uint64_t), platform::TextKey actionName);
  void exchangeHistory();
  void runHistoryCommand(void (platform::UndoManager::*command)());
  void registerUndo(void (VLRecorderWindowController::*operation)(QObject*),
                    std::optional<platform::TextKey> actionName = std::nullopt);
  void finishRefresh();
  void bringRecordingPositionInside();
  void keepHistory();

  // Loading
  struct LoadingRequest;
  struct LoadingOutcome;
  static void load(const LoadingRequest& request);
  void openForImport(const std::string& path);
  void beginImport(const std::string& path, const std::shared_ptr<OVAudioFileReader>& reader);
  void startLoading(const std::string& path, std::shared_ptr<OVAudioFileReader> reader);
  void loadedChunk(std::uint64_t byteOffset, double step);
  void loadingEnded(const LoadingRequest& request, const LoadingOutcome& outcome);
  void keepWhatWasLoaded(std::uint64_t endOffset);
  static void tellNotStored(const std::string& path, int error, bool imported);
  void forgetFileName();
  void takeImportBack();
  void beginFileIO(platform::TextKey activity, bool indeterminate = false);
  void endFileIO();
  void setFileIOActive(bool active);
  void saveIfClosing();
  [[nodiscard]] std::array<QWidget*, 7> transportControls() const;
  void setTransportEnabled(bool enabled);

  // Saving
  struct SavingRequest;
  [[nodiscard]] static std::int32_t chosenType(const QPointer<QComboBox>& fileTypeButton);
  void makeSaveAccessory(std::int32_t type);
  [[nodiscard]] std::string suggestedName() const;
  [[nodiscard]] std::int32_t suggestedType() const;
  void startSaving(SavingRequest request);
  [[nodiscard]] static std::optional<std::string> refusalOf(const SavingRequest& request);
  void savingEnded(const SavingRequest& request, const OVSaveJob::Outcome& outcome);
  void takeFileName(const SavingRequest& request);
  static void tellGaps(const std::string& path, double seconds, bool saved);
  void openSavedFile();
  void saveFailed();
  static void tellSaveFailed(const std::string& path, const std::string& reason);
  void exportRingtoneTo(const std::string& path);
  void writeWaveformPicture(const std::string& path);

  // Closing
  void bringToFront();
  void askToSave();

  [[nodiscard]] std::uint64_t bytesPerFrame() const;
  [[nodiscard]] std::uint64_t bufferSizeInFrames() const;

  // Fixed after construction.
  std::shared_ptr<VLRecorderWindowController> selfretaining_reference_;  // until windowWillClose
  std::shared_ptr<OVDocumentSummaries> summaries_;
  mutable platform::SerialQueue playbackPosQueue_{"playback queue"};
  mutable platform::SerialQueue recordingPosQueue_{"recording queue"};

  // Written on the main thread under sharedObjects_, read there without it and elsewhere with it.
  mutable std::mutex sharedObjects_;
  std::shared_ptr<OVAQRecorder> recorder_;
  std::shared_ptr<OVAudioBufferInterface> buffer_;

  // Main thread only.
  std::shared_ptr<OVAQPlayer> player_;
  QPointer<OVRecorderWindow> window_;
  QPointer<OVWaveFormView> wfView_;
  QPointer<OVPlaybackMarkerView> playbackMarkerView_;
  QPointer<OVCircularVUView> vuView_;
  QPointer<OVTimeView> timeView_;
  QPointer<OVTransportButton> prevButton_;
  QPointer<OVTransportButton> nextButton_;
  QPointer<OVTransportButton> stopButton_;
  QPointer<OVTransportButton> playButton_;
  QPointer<OVTransportButton> recButton_;
  QPointer<OVTransportButton> pauseButton_;
  QPointer<OVHoverButton> fftButton_;
  QPointer<OVTransportBackgroundView> transportBackView_;
  QPointer<OVFFTView> fftView_;
  QPointer<OVLoadingPanel> loadingPanel_;
  QPointer<QProgressBar> loadingIndicator_;
  struct KeyPress {
    QPointer<OVTransportButton> button;
    bool wasOn = false;  // what the button shows again if the key is cancelled
  };
  std::map<std::uint16_t, KeyPress> keyPresses_;  // by key: what its key-down highlighted
  double indicatorValue_ = 0.0;                   // of the progress bar, finer than it shows
  std::string currentFilename_;
  std::int32_t currentFiletype_ = -1;
  std::unique_ptr<platform::Timer> pollTimer_;
  std::unique_ptr<platform::Timer> fftTimer_;             // while the spectrum is shown
  std::unique_ptr<OVSpectrumAnalyser> spectrumAnalyser_;  // from the first spectrum on
  std::unique_ptr<OVSpectrumStrip> spectrumStrip_;
  std::uint64_t lastPlaybackPosition_ = 0;
  std::shared_ptr<platform::UndoManager> undoManager_;
  bool prevSaveState_ = false;
  bool documentEdited_ = false;  // the flag of a document without a window
  bool isFileIOActive_ = false;
  bool isSaving_ = false;  // a save or export is running: the window stays until it is complete
  bool isExport_ = false;  // the save that runs touches neither the edited flag nor the file name
  bool isOpeningImport_ = false;  // a file operation that does not touch the audio yet
  bool isImport_ = false;
  bool importTakenBack_ = false;  // the import that runs could not be stored
  bool isPanelShown_ = false;     // a panel or a question is attached to the window
  bool isQuestionShown_ = false;  // the one about unsaved changes
  bool windowShouldCloseAfterSaveSheet_ = false;
  bool shouldCloseAfterSave_ = false;
  bool shell_open_file_after_save_ = false;
  std::string last_saved_file_path_;
  QPointer<QWidget> fileSaveAccessoryView_;
  QPointer<QComboBox> fileTypeButton_;
  OVFocusKeeper focusKeeper_;  // for the controls that a file operation disables
  // Set when the window closes: a load ends at its next chunk, a summary with its batch.
  std::shared_ptr<std::atomic<bool>> fileJobCancelled_ = std::make_shared<std::atomic<bool>>(false);
  std::function<void()> commandsChanged_;
  std::function<void()> afterLoading_;  // what is still to be told when the load has ended

  // Guarded by their queues.
  std::uint64_t _playbackPosition = 0;
  std::uint64_t _recordingPosition = 0;

  // The writer's thread writes, the main thread reads: each stands for itself, so relaxed order
  // would do.
  std::atomic<std::uint64_t> _lastNumberOfFramesWritten = 0;
  std::atomic<bool> isRenderingWaveform_ = false;
  std::atomic<bool> writtenSincePress_ = false;  // the recording has something to keep
  // errno of the last read that failed since Play was pressed; any reader's thread writes.
  std::atomic<int> readError_ = 0;

  // Guard themselves: the writer's thread fills, the main thread takes.
  OVRecordedChunk fft_data_;
  OVWriteFailures writeFailures_;
};
