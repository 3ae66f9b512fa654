#include "document/files/loadFile.h"

#include <cerrno>
#include <new>
#include <utility>

#include "audio/OVAudioFileReader.h"

namespace {

// The share of the whole that each chunk is.
class Steps {
 public:
  explicit Steps(const OVAudioFileReader& reader)
      : reader_(reader), followsBytes_(reader.isFileSizeEstimated()) {
    const auto length = reader.fileSizeInFrames();
    if (length > 0) {
      ofKnownLength_ = static_cast<double>(kLoadChunkFrames) / static_cast<double>(length);
    }
  }

  // That of the chunk read last.
  double next() {
    if (!followsBytes_) {
      return ofKnownLength_;
    }
    const double share = reader_.shareRead();
    return share - std::exchange(share_, share);
  }

 private:
  const OVAudioFileReader& reader_;
  const bool followsBytes_;
  double ofKnownLength_ = 1.0;
  double share_ = 0.0;
};

void copyChunks(OVAudioFileReader& reader, const LoadRequest& request, LoadOutcome& outcome) try {
  Steps steps(reader);
  while (!*request.cancelled) {
    const std::uint32_t frames = reader.readFrameChunkWithSize(kLoadChunkFrames);
    if (frames == 0 || *request.cancelled) {
      break;
    }
    const auto size = static_cast<std::uint32_t>(frames * platform::kWorkingFrameBytes);
    request.buffer->writeData(reader.exposeBuffer(), outcome.endOffset, size);
    outcome.writeError = request.takeWriteError();
    if (outcome.writeError != 0) {
      break;
    }
    outcome.endOffset += size;
    request.progress(outcome.endOffset, steps.next());
  }
} catch (const std::bad_alloc&) {
  outcome.writeError = ENOMEM;
}

}  // namespace

LoadOutcome loadFile(OVAudioFileReader& reader, const LoadRequest& request) {
  LoadOutcome outcome{.endOffset = request.atByteOffset};
  copyChunks(reader, request, outcome);
  reader.close();
  return outcome;
}
