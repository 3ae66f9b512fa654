#include "document/OVSaveJob.h"

#include <algorithm>
#include <filesystem>
#include <vector>

#include "audio/OVAudioFileWriter.h"
#include "document/OVFileKinds.h"
#include "platform/ReplacementFile.h"

namespace {

// Reads a whole chunk. What storage does not give back becomes silence, so that everything behind
// it stays in its place; the frames that were missing are counted.
std::uint64_t readChunk(OVAudioBufferInterface& buffer, std::uint64_t fromFrame,
                        std::uint64_t frames, std::vector<float>& samples) {
  const std::uint64_t frameBytes = buffer.format().mBytesPerFrame;
  const std::uint64_t channels = buffer.format().mChannelsPerFrame;
  samples.assign(frames * channels, 0.0F);
  std::uint64_t missing = 0;
  for (std::uint64_t done = 0; done < frames;) {
    const auto read =
        buffer.readDataInto(samples.data() + done * channels, (frames - done) * frameBytes,
                            (fromFrame + done) * frameBytes);
    const std::uint64_t got = read.byteCount / frameBytes;
    if (got == 0) {
      ++missing;
    }
    done += std::max<std::uint64_t>(got, 1);
  }
  return missing;
}

bool writeAll(const OVSaveJob::Request& request, const OVSaveJob::Progress& progress,
              OVAudioFileWriter& writer, std::uint64_t& unreadable) {
  const std::uint64_t frameBytes = request.buffer->format().mBytesPerFrame;
  std::vector<float> samples;
  for (std::uint64_t done = 0; done < request.frameCount;) {
    const std::uint64_t frames = std::min(OVSaveJob::kChunkFrames, request.frameCount - done);
    unreadable += readChunk(*request.buffer, request.fromFrame + done, frames, samples);
    if (writer.sinkData(samples.data(), frames * frameBytes) != frames * frameBytes) {
      return false;
    }
    done += frames;
    progress(static_cast<double>(done) / static_cast<double>(request.frameCount));
  }
  return true;
}

}  // namespace

OVSaveJob::Outcome OVSaveJob::run(const Request& request, const Progress& progress) {
  Outcome outcome;
  const auto replacement = platform::ReplacementFile::beside(request.path);
  if (!replacement.file) {
    outcome.error = replacement.error;
    return outcome;
  }
  const auto writer = OVAudioFileWriter::initWithFile(
      replacement.file->path(), request.outputFormat, lastPathComponent(request.path));
  // The writer has told what it could not do.
  outcome.told = !writer || !writeAll(request, progress, *writer, outcome.unreadableFrames) ||
                 !writer->close();
  if (outcome.told) {
    return outcome;
  }
  // A file with gaps is better than none, but not than one that is there.
  if (outcome.unreadableFrames > 0 && std::filesystem::exists(request.path)) {
    return outcome;
  }
  outcome.error = replacement.file->commit();
  outcome.complete = outcome.error == 0;
  return outcome;
}
