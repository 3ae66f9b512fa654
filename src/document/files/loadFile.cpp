#include "document/files/loadFile.h"

#include <cerrno>
#include <new>

#include "audio/OVAudioFileReader.h"

namespace {

void copyChunks(OVAudioFileReader& reader, const LoadRequest& request, LoadOutcome& outcome) try {
  const auto length = reader.fileSizeInFrames();
  const double step =
      length > 0 ? static_cast<double>(kLoadChunkFrames) / static_cast<double>(length) : 1.0;
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
    request.progress(outcome.endOffset, step);
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
