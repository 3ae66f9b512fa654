#pragma once

#include <cstdint>
#include <memory>

#include "platform/base/Installed.h"

/// Keeps the recordings of documents beyond the end of the program, however it ends. None is
/// installed by default: nothing is kept then.
///
/// Threads: main. Real-time: not safe.
class RecordingKeeper {
 public:
  virtual ~RecordingKeeper() = default;
  static std::shared_ptr<RecordingKeeper> whenNoneIsInstalled();

  /// Descriptors, open until letGo().
  struct Recording {
    int audio = -1;    ///< the temporary file of a block buffer
    int journal = -1;  ///< its journal, which also says whether the recording would be missed
  };

  /// Whether recordings are kept.
  [[nodiscard]] virtual bool isAvailable() const = 0;
  /// Keeps the recording of a document under a number that no other document has had.
  virtual void keep(std::uint64_t document, const Recording& recording) = 0;
  /// The document is closed.
  virtual void letGo(std::uint64_t document) = 0;
};

inline std::shared_ptr<RecordingKeeper> recordingKeeper() {
  return platform::Installed<RecordingKeeper>::get();
}
