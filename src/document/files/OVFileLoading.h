#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "document/files/OVDiskShortage.h"
#include "document/files/OVImportPlace.h"
#include "document/files/loadFile.h"

class OVAudioFileReader;
class OVDisplayLoop;
class OVDocumentAudio;
class OVDocumentFile;
class OVDocumentLife;
class OVDocumentPanels;
class OVDocumentSummaries;
class OVEditHistory;
class OVFileOperation;
class OVFramePositions;
class OVMarkerAndTime;
class OVProgressDisplay;
class OVTransport;

/// Opens a file into the document, or imports one at the recording position as an undoable step.
/// The file is read on the global queue; then the whole waveform is generated, and the document is
/// stopped again. A file that promises to be too long for the disk is refused before its first
/// chunk.
///
/// Threads: main. Real-time: not safe.
class OVFileLoading {
 public:
  /// The parts of the document that it uses; they outlive it.
  struct Parts {
    const OVDocumentLife& life;
    OVDocumentAudio& audio;
    OVFramePositions& positions;
    OVDocumentSummaries& summaries;
    OVEditHistory& history;
    OVFileOperation& operation;
    OVTransport& transport;
    OVDocumentFile& file;
    OVDocumentPanels& panels;
    OVProgressDisplay& progress;
    OVMarkerAndTime& markerAndTime;
    OVDisplayLoop& displayLoop;
  };

  struct Callbacks {
    std::function<void()> loaded;  ///< after the last chunk: drawWaveform() follows
    std::function<void()> drawn;   ///< when the waveform has been generated: complete() follows
    std::function<void()> ended;   ///< when the file operation has ended
  };

  OVFileLoading(const Parts& parts, Callbacks callbacks);

  /// Does nothing while another file operation runs.
  void open(const std::string& path);
  /// Asks for the file. A file that cannot be read, or for which there is no room, changes nothing.
  void chooseImport();

  /// Generates the waveform of what was loaded.
  void drawWaveform();
  /// Ends the file operation.
  void complete();

  /// Whether the load that has just ended was to open a file and got nothing out of it, a failure
  /// that the user was told of. True once for each.
  [[nodiscard]] bool takeOpenedNothing() { return std::exchange(openedNothing_, false); }

  /// The window closes: a load ends at its next chunk, and its result is discarded.
  void cancel() { *cancelled_ = true; }
  [[nodiscard]] bool isCancelled() const { return *cancelled_; }

 private:
  struct Outcome;

  [[nodiscard]] OVImportPlace importPlace() const;
  void openForImport(const std::string& path);
  void beginImport(const std::string& path, const std::shared_ptr<OVAudioFileReader>& reader,
                   const std::optional<OVDiskShortage>& shortage);
  void load(const std::string& path, std::shared_ptr<OVAudioFileReader> reader);
  [[nodiscard]] static Outcome read(const std::string& path,
                                    std::shared_ptr<OVAudioFileReader> opened,
                                    const LoadRequest& request, const std::string& folder);
  [[nodiscard]] std::function<void(std::uint64_t, double)> progressReport() const;
  void loadingEnded(const std::string& path, const Outcome& outcome);

  const Parts parts_;
  const Callbacks callbacks_;
  // Set when the window closes; shared with background work.
  std::shared_ptr<std::atomic<bool>> cancelled_ = std::make_shared<std::atomic<bool>>(false);
  bool rolledBack_ = false;  // the import could not be stored
  bool openedNothing_ = false;
  std::function<void()> afterLoading_;  // an alert to show after the load
};
