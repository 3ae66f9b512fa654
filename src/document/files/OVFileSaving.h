#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "document/files/OVSaveJob.h"

class OVDisplayLoop;
class OVDocumentAudio;
class OVDocumentFile;
class OVDocumentLife;
class OVDocumentPanels;
class OVEditHistory;
class OVFileOperation;
class OVFramePositions;
class OVProgressDisplay;
class OVTransport;

/// Saves the document, and exports a range of it as a ringtone, on the global queue.
///
/// Threads: main. Real-time: not safe.
class OVFileSaving {
 public:
  /// The parts of the document that it uses; they outlive it.
  struct Parts {
    const OVDocumentLife& life;
    OVDocumentAudio& audio;
    OVFramePositions& positions;
    OVEditHistory& history;
    OVFileOperation& operation;
    OVTransport& transport;
    OVDocumentFile& file;
    OVDocumentPanels& panels;
    OVProgressDisplay& progress;
    OVDisplayLoop& displayLoop;
  };

  /// Maximum length of a ringtone, in seconds: phones accept no longer ones.
  static constexpr double kRingtoneSeconds = 40.0;

  /// `written` is called when everything was written, `failed` when a save or an export failed or
  /// was cancelled.
  OVFileSaving(const Parts& parts, std::function<void()> written, std::function<void()> failed);

  /// Saves to the document's file in its kind, or asks for a path if it has none. Like saveAs() and
  /// exportRingtone(), does nothing while a file operation runs or a panel is shown. False if
  /// nothing was begun.
  bool save();
  bool saveAs();
  /// `withType` is a kind of the file writer, 0 to 3.
  void saveNamed(const std::string& path, std::int32_t withType);
  /// Asks for a path and writes at most kRingtoneSeconds from the marker, or from the start if the
  /// marker is at the end, as AAC in an .m4r file; complete() then opens it with the desktop's
  /// default program.
  void exportRingtone();

  /// Ends the file operation after everything was written. After a save, the transport is stopped
  /// and the document no longer edited; an export changes neither.
  void complete();

 private:
  struct Request {
    OVSaveJob::Request job;
    std::int32_t type = -1;
    bool isExport = false;
  };

  [[nodiscard]] bool mayAsk() const;
  void exportRingtoneTo(const std::string& path);
  [[nodiscard]] static std::optional<std::string> refusalOf(const Request& request);
  void chooseStretch(Request& request) const;
  void start(Request request);
  void ended(const Request& request, const OVSaveJob::Outcome& outcome);
  void askToWriteInPlace(const Request& request);
  void openSavedFile() const;

  const Parts parts_;
  const std::function<void()> written_;
  const std::function<void()> failed_;
  bool shell_open_file_after_save_ = false;
  std::string last_saved_file_path_;
};

/// Alerts the user that a file could not be written; `reason` is a sentence.
void tellSaveFailed(const std::string& path, const std::string& reason);
