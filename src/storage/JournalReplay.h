#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/base/Result.h"
#include "platform/files/File.h"
#include "storage/BlockList.h"
#include "storage/JournalLayout.h"
#include "storage/OVBufferState.h"

/// What a journal says about its document.
struct JournalOrigin {
  journal::State state = journal::State::saved;
  std::int64_t begun = 0;     ///< of the first recording, else of the first change; UTC, since 1970
  std::string recoveredFrom;  ///< name of the recovered file the recording came from, or empty
  std::uint64_t recoveredFile = 0;  ///< the system's number of that file; 0 if unknown
};

/// EBADMSG if it is no journal, or the errno of a failed read.
///
/// Threads: one at a time. Real-time: not safe.
[[nodiscard]] platform::Result<JournalOrigin> readJournalOrigin(platform::File& journal);

/// Replays a journal on the classes that made it, record by record: afterwards list and length are
/// those of the buffer when the last record was published. A record that makes no sense ends the
/// replay; what came before it counts.
///
/// Threads: one at a time. Real-time: not safe.
class JournalReplay {
 public:
  /// Restores the journal's state. Fails like readJournalOrigin(), also when there is no state yet.
  [[nodiscard]] static platform::Result<JournalReplay> begin(platform::File& journal);

  /// Applies the next record; false when there is none.
  [[nodiscard]] bool step();
  /// Applies all records.
  void run();

  [[nodiscard]] const BlockList& list() const { return list_; }
  /// Bytes.
  [[nodiscard]] std::uint64_t fillSize() const { return fillSize_; }

 private:
  explicit JournalReplay(std::vector<std::byte> area) : area_(std::move(area)) {}

  template <typename T>
  [[nodiscard]] bool take(T& value);
  [[nodiscard]] bool takeState();
  [[nodiscard]] bool apply(const journal::Record& record);

  std::vector<std::byte> area_;  // up to the end published
  std::size_t at_ = 0;
  BlockList list_;
  std::uint64_t fillSize_ = 0;
  std::map<std::uint64_t, std::shared_ptr<const OVBufferState>> kept_;  // by number
};
