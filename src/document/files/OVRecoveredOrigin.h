#pragma once

#include <functional>
#include <optional>
#include <string>

#include "document/files/recoveredFiles.h"

class OVDocumentAudio;
class OVDocumentFile;
class OVEditHistory;
class OVFileLoading;
class OVFileOperation;

/// The recovered file from which a document was opened. The file is kept until everything in the
/// document was saved or the user discarded it; until then this object holds the file's lock. The
/// document has no file of its own, is edited and has nothing to undo.
///
///   none --open()--> loading --loaded whole--> standing --saved or discarded--> none (file
///   deleted)
///                    loading --not loaded whole--> none (file kept)
///
/// Threads: main. Real-time: not safe.
class OVRecoveredOrigin {
 public:
  /// The parts of the document that it uses; they outlive it.
  struct Parts {
    const OVDocumentAudio& audio;
    const OVFileOperation& operation;
    OVEditHistory& history;
    OVDocumentFile& file;
    OVFileLoading& loading;
  };

  explicit OVRecoveredOrigin(const Parts& parts) : parts_(parts) {}

  /// Loads the file into the document, which must be new.
  void open(const OVRecoveredFile& file);

  /// Path of the file that the document stands for: whatever keeps the document's sound from here
  /// on replaces that file. Empty before everything was loaded, and once the file was given up.
  [[nodiscard]] std::string path() const;
  /// Called after every change of path(); when a load has ended, before the document is edited.
  void setChangeHandler(std::function<void()> handler) { changed_ = std::move(handler); }

  /// A load of the document has ended.
  void loadEnded();
  /// Everything was saved: deletes the file.
  void saved() { deleteFile(); }
  /// The user does not want to save: deletes the file.
  void discarded() { deleteFile(); }

 private:
  enum class State { none, loading, standing };

  [[nodiscard]] bool isLoadedWhole() const;
  void change(State state);
  void deleteFile();

  const Parts parts_;
  std::function<void()> changed_;
  std::optional<OVRecoveredFile> file_;  // unless the state is none
  State state_ = State::none;
};
