#include "audio/OVAudioFileWriter.h"

#include <new>
#include <utility>

#include "audio/AudioFileFailure.h"
#include "audio/CheckAudioStatus.h"
#include "platform/media/AudioFileStatus.h"

namespace {

std::optional<platform::AudioFileKind> kindOf(std::uint32_t outputFormat) {
  if (outputFormat > OVAudioFileWriter::kAac) {
    return std::nullopt;
  }
  return static_cast<platform::AudioFileKind>(outputFormat);
}

}  // namespace

std::shared_ptr<OVAudioFileWriter> OVAudioFileWriter::initWithFile(const std::string& path,
                                                                   std::uint32_t outputFormat,
                                                                   std::string shownName) {
  auto writer =
      std::make_shared<OVAudioFileWriter>(Key{}, path, outputFormat, std::move(shownName));
  return writer->openFile(path) ? writer : nullptr;
}

std::shared_ptr<OVAudioFileWriter> OVAudioFileWriter::initWithOpenFile(
    platform::Result<std::unique_ptr<platform::File>> file, std::uint32_t outputFormat,
    std::string shownName, const platform::AudioFileTags& tags) {
  auto writer =
      std::make_shared<OVAudioFileWriter>(Key{}, std::string(), outputFormat, std::move(shownName));
  const bool isOpen = writer->open([&file, &tags](platform::AudioFileKind kind) {
    return platform::ExtAudioFileOutput::createWithFile(std::move(file), kind, tags);
  });
  return isOpen ? writer : nullptr;
}

std::optional<std::uint64_t> OVAudioFileWriter::maximumFrames(std::uint32_t outputFormat,
                                                              std::uint64_t tagBytes) {
  const auto kind = kindOf(outputFormat);
  return kind ? platform::ExtAudioFileOutput::maximumFrames(*kind, tagBytes) : std::nullopt;
}

bool OVAudioFileWriter::holdsCover(std::uint32_t outputFormat) {
  const auto kind = kindOf(outputFormat);
  return kind && platform::holdsCover(*kind);
}

std::uint64_t OVAudioFileWriter::estimatedBytes(std::uint32_t outputFormat, std::uint64_t frames) {
  const auto kind = kindOf(outputFormat);
  return kind ? platform::ExtAudioFileOutput::estimatedBytes(*kind, frames) : 0;
}

OVAudioFileWriter::OVAudioFileWriter(Key, std::string path, std::uint32_t outputFormat,
                                     std::string shownName)
    : fileName_(std::move(path)), outputFormat_(outputFormat), shownName_(std::move(shownName)) {}

OVAudioFileWriter::~OVAudioFileWriter() {
  static_cast<void>(close());
}

bool OVAudioFileWriter::openFile(const std::string& path) {
  return open([&path](platform::AudioFileKind kind) {
    return platform::ExtAudioFileOutput::createWithURL(path, kind);
  });
}

template <typename Create>
bool OVAudioFileWriter::open(Create create) {
  const auto kind = kindOf(outputFormat_);
  if (!kind) {
    return check(platform::kUnsupportedDataFormatStatus, "ExtAudioFileOpen");
  }
  try {
    auto created = create(*kind);
    if (!check(created.status, "ExtAudioFileOpen")) {
      return false;
    }
    xafref_ = std::move(created.file);
    format_ = platform::kWorkingFormat;
    return check(xafref_->setClientDataFormat(format_), "kExtAudioFileProperty_ClientDataFormat");
  } catch (const std::bad_alloc&) {
    return check(platform::kOutOfMemoryStatus, "ExtAudioFileOpen");
  }
}

std::uint64_t OVAudioFileWriter::sinkData(const void* data, std::uint64_t dataSize) {
  const std::uint64_t frames = dataSize / platform::kWorkingFrameBytes;
  if (frames == 0 || xafref_ == nullptr || isClosed_ || hasFailed_) {
    return 0;
  }
  return check(xafref_->write(static_cast<const float*>(data), frames), "file write")
             ? frames * platform::kWorkingFrameBytes
             : 0;
}

bool OVAudioFileWriter::close() {
  if (!isClosed_ && xafref_ != nullptr) {
    isClosed_ = true;
    static_cast<void>(check(xafref_->dispose(), "file write"));
  }
  return xafref_ != nullptr && !hasFailed_;
}

bool OVAudioFileWriter::check(platform::AudioStatus status, const std::string& label) {
  if (status == platform::kAudioStatusOk) {
    return true;
  }
  if (!hasFailed_) {
    hasFailed_ = true;
    CheckAudioStatus(status, label,
                     writingFailureReason(status, shownName_.empty() ? fileName_ : shownName_));
  }
  return false;
}
