#include "document/files/OVSaveJob.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <new>
#include <system_error>
#include <utility>
#include <vector>

#include "audio/OVAudioFileWriter.h"
#include "audio/OVFileKinds.h"
#include "platform/base/GlobalQueue.h"
#include "platform/files/InPlaceFile.h"
#include "platform/files/ReplacementFile.h"
#include "platform/files/TemporaryFiles.h"
#include "platform/files/UserAudioFiles.h"

namespace {

// Initial guess of the smallest gap: a disk loses at least a page of 4 KiB.
constexpr std::uint64_t kPageFrames = 512;

// Reads a whole range of a buffer. Unreadable frames are counted and become silence, so that
// everything after them stays in place. A failing disk is slow: the end of a gap is searched in
// growing steps, then by bisection of the last step.
class StretchReader {
 public:
  explicit StretchReader(OVAudioBufferInterface& buffer)
      : buffer_(buffer), frameBytes_(buffer.format().mBytesPerFrame) {}

  void read(std::uint64_t fromFrame, std::uint64_t frames, std::vector<float>& samples) {
    const std::uint64_t channels = buffer_.format().mChannelsPerFrame;
    samples.assign(frames * channels, 0.0F);
    bool isSecondTry = false;
    for (std::uint64_t done = 0; done < frames;) {
      const std::uint64_t got =
          framesRead(samples.data() + done * channels, fromFrame + done, frames - done);
      if (got > 0) {
        done += got;
        step_ = kPageFrames;
        isSecondTry = false;
      } else if (!std::exchange(isSecondTry, true)) {
        continue;  // it may pass
      } else {
        isSecondTry = false;
        const std::uint64_t next = endOfGap(fromFrame + done, fromFrame + frames) - fromFrame;
        missing_ += next - done;
        done = next;
      }
    }
  }

  [[nodiscard]] std::uint64_t missing() const { return missing_; }

 private:
  std::uint64_t framesRead(float* samples, std::uint64_t fromFrame, std::uint64_t frames) {
    return buffer_.readDataInto(samples, frames * frameBytes_, fromFrame * frameBytes_).byteCount /
           frameBytes_;
  }

  bool canBeRead(std::uint64_t frame) {
    frame_.resize(buffer_.format().mChannelsPerFrame);
    return framesRead(frame_.data(), frame, 1) > 0;
  }

  // The frame after a gap that contains `lost`, or `end` if the gap extends to it.
  std::uint64_t endOfGap(std::uint64_t lost, std::uint64_t end) {
    std::uint64_t found = std::min(lost + step_, end - 1);
    while (!canBeRead(found)) {
      lost = found;
      if (found == end - 1) {
        return end;
      }
      step_ = std::min(2 * step_, OVSaveJob::kChunkFrames);
      found = std::min(lost + step_, end - 1);
    }
    while (found - lost > 1) {
      const std::uint64_t middle = lost + (found - lost) / 2;
      (canBeRead(middle) ? found : lost) = middle;
    }
    return found;
  }

  OVAudioBufferInterface& buffer_;
  const std::uint64_t frameBytes_;
  std::vector<float> frame_;
  std::uint64_t step_ = kPageFrames;  // grows while a gap continues, even across chunks
  std::uint64_t missing_ = 0;
};

bool writeAll(const OVSaveJob::Request& request, const OVSaveJob::Progress& progress,
              OVAudioFileWriter& writer, std::uint64_t& unreadable) {
  const std::uint64_t frameBytes = request.buffer->format().mBytesPerFrame;
  StretchReader reader(*request.buffer);
  std::vector<float> samples;
  for (std::uint64_t done = 0; done < request.frameCount;) {
    const std::uint64_t frames = std::min(OVSaveJob::kChunkFrames, request.frameCount - done);
    reader.read(request.fromFrame + done, frames, samples);
    unreadable = reader.missing();
    if (writer.sinkData(samples.data(), frames * frameBytes) != frames * frameBytes) {
      return false;
    }
    done += frames;
    progress(static_cast<double>(done) / static_cast<double>(request.frameCount));
  }
  return true;
}

// Whether a file exists; true if unknown.
bool mayExist(const std::string& path) {
  std::error_code error;
  return std::filesystem::exists(path, error) || error;
}

// Whether the whole range was encoded to the file, without gaps where a file is to be replaced: a
// file with gaps is better than none, but not better than an existing one.
bool encode(const OVSaveJob::Request& request, const OVSaveJob::Progress& progress,
            platform::UserAudioFiles::Opened file, OVSaveJob::Outcome& outcome) {
  const auto writer = OVAudioFileWriter::initWithOpenFile(
      std::move(file), request.outputFormat, lastPathComponent(request.path), *request.tags);
  // The writer has reported its failure.
  outcome.told = !writer || !writeAll(request, progress, *writer, outcome.unreadableFrames) ||
                 !writer->close();
  return !outcome.told && (outcome.unreadableFrames == 0 || !mayExist(request.path));
}

void writeBeside(const OVSaveJob::Request& request, const OVSaveJob::Progress& progress,
                 OVSaveJob::Outcome& outcome) {
  const auto replacement = platform::ReplacementFile::beside(request.path);
  if (!replacement) {
    outcome.error = replacement.error();
    outcome.canBeInPlace = platform::InPlaceFile::isTheOnlyWay(request.path, outcome.error);
    outcome.closedFolder =
        platform::ReplacementFile::closedFolderBeside(request.path, outcome.error);
    return;
  }
  if (encode(request, progress, platform::userAudioFiles()->writeTo(replacement->descriptor()),
             outcome)) {
    outcome.error = replacement->commit();
    outcome.complete = outcome.error == 0;
  }
}

// The writer's view of a file that outlives it.
class SharedFile : public platform::File {
 public:
  explicit SharedFile(std::shared_ptr<platform::File> file) : file_(std::move(file)) {}

  [[nodiscard]] platform::FileTransfer readAt(void* destination, std::uint64_t byteCount,
                                              std::uint64_t offset) override {
    return file_->readAt(destination, byteCount, offset);
  }
  [[nodiscard]] platform::FileTransfer writeAt(const void* data, std::uint64_t byteCount,
                                               std::uint64_t offset) override {
    return file_->writeAt(data, byteCount, offset);
  }
  [[nodiscard]] std::uint64_t size() override { return file_->size(); }
  [[nodiscard]] int setSize(std::uint64_t byteCount) override { return file_->setSize(byteCount); }

 private:
  const std::shared_ptr<platform::File> file_;
};

// The target is touched last, when everything else has succeeded.
void writeInPlace(const OVSaveJob::Request& request, const OVSaveJob::Progress& progress,
                  OVSaveJob::Outcome& outcome) {
  const auto target = platform::InPlaceFile::at(request.path);
  if (!target) {
    outcome.error = target.error();
    return;
  }
  auto created = platform::temporaryFiles()->createUnlinked(
      platform::temporaryFiles()->directory() + "velmar_XXXXXX");
  if (!created) {
    outcome.error = created.error().error;
    return;
  }
  const std::shared_ptr<platform::File> content = std::move(created->file);
  if (!encode(request, progress, std::make_unique<SharedFile>(content), outcome)) {
    return;
  }
  outcome.error = target->keepCopy();
  if (outcome.error == 0) {
    outcome.error = target->replaceWith(*content);
  }
  outcome.complete = outcome.error == 0;
  outcome.copyOfOldFile = target->copyLeft();
}

std::optional<OVDiskShortage> shortageBeside(const std::string& path, std::uint64_t bytes) {
  // Where no file can be made beside it, the user is asked before anything is written.
  return platform::InPlaceFile::isTheOnlyWay(path, EACCES)
             ? std::nullopt
             : shortageOf(platform::ReplacementFile::folderBeside(path), bytes);
}

// The new content and a copy of the old one stand in the temporary directory before the file grows.
std::optional<OVDiskShortage> shortageInPlace(const std::string& path, std::uint64_t bytes) {
  std::error_code unknown;
  const std::uintmax_t size = std::filesystem::file_size(path, unknown);
  const std::uint64_t old = unknown ? 0 : size;
  const auto shortage = shortageOf(platform::temporaryFiles()->directory(), bytes + old);
  return shortage || bytes <= old
             ? shortage
             : shortageOf(platform::ReplacementFile::folderBeside(path), bytes - old);
}

void write(const OVSaveJob::Request& request, const OVSaveJob::Progress& progress,
           OVSaveJob::Outcome& outcome) {
  if (request.shortage.valid()) {
    outcome.shortage = request.shortage.get();
  }
  if (!outcome.shortage) {
    (request.way == OVSaveJob::Request::Way::inPlace ? writeInPlace : writeBeside)(
        request, progress, outcome);
  }
}

}  // namespace

std::shared_future<std::optional<OVDiskShortage>> OVSaveJob::lookForRoom(const Request& request) {
  const auto found = std::make_shared<std::promise<std::optional<OVDiskShortage>>>();
  const std::uint64_t bytes =
      OVAudioFileWriter::estimatedBytes(request.outputFormat, request.frameCount) +
      (OVAudioFileWriter::holdsCover(request.outputFormat) ? request.tags->cover.size() : 0);
  platform::globalQueue().async([found, way = request.way, path = request.path, bytes] {
    std::optional<OVDiskShortage> shortage;
    try {
      shortage =
          way == Request::Way::inPlace ? shortageInPlace(path, bytes) : shortageBeside(path, bytes);
    } catch (const std::bad_alloc&) {  // the save itself will report it
    }
    found->set_value(shortage);
  });
  return found->get_future().share();
}

OVSaveJob::Outcome OVSaveJob::run(const Request& request, const Progress& progress) {
  Outcome outcome;
  try {
    write(request, progress, outcome);
  } catch (const std::bad_alloc&) {
    outcome.error = ENOMEM;
  } catch (const std::system_error& failure) {
    outcome.error = failure.code().value();
  }
  return outcome;
}
