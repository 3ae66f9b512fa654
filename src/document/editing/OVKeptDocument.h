#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

class OVBlockBuffer;
class OVDocumentAudio;
class RecordingKeeper;

/// Has the keeper keep the document's recording, from its first change until it is closed, so that
/// it survives an unexpected end of the program. Does nothing without a keeper.
///
/// Threads: main. Real-time: not safe.
class OVKeptDocument {
 public:
  explicit OVKeptDocument(const OVDocumentAudio& audio);
  ~OVKeptDocument();  ///< as close()
  OVKeptDocument(const OVKeptDocument&) = delete;
  OVKeptDocument& operator=(const OVKeptDocument&) = delete;

  /// The document came from a file in the folder of recovered recordings: if it is recovered again,
  /// the new file replaces that one and says that it was recorded when that one was. `name` is the
  /// file's, without a folder, `file` the system's number of it, which tells it from another one of
  /// that name; `firstRecording` is when its first recording began, in seconds since 1970, UTC.
  /// Call before the first change.
  void setRecoveredFrom(std::string name, std::uint64_t file, std::int64_t firstRecording) {
    recoveredFrom_ = std::move(name);
    recoveredFile_ = file;
    firstRecording_ = firstRecording;
  }

  /// Whether there is something that no file has. Call it with true before the change.
  void setEdited(bool edited);
  /// Record was pressed.
  void recordingBegins();
  /// Record was pressed in vain: as if it had not been.
  void recordingTakenBack();
  /// The document is closed: what was not saved was discarded.
  void close();

 private:
  void begin();

  const OVDocumentAudio& audio_;
  const std::uint64_t number_;
  std::string recoveredFrom_;
  std::uint64_t recoveredFile_ = 0;
  std::int64_t firstRecording_ = 0;  // before it was recovered; 0 for none
  bool isClosed_ = false;
  // While it is kept.
  std::shared_ptr<OVBlockBuffer> buffer_;
  std::shared_ptr<RecordingKeeper> keeper_;
  bool isFirstRecording_ = false;  // the last one that began
};
