#include "platform/media/FfmpegModule.h"

#include <utility>

#include "platform/base/LateModule.h"
#include "platform/media/AudioFileStatus.h"

namespace platform {

const FfmpegModule* ffmpegModule() {
  static const auto* const module = makeFromModule<const FfmpegModule>("orvo-ffmpeg");
  return module;
}

ExtAudioFileInput::Opened ExtAudioFileInput::openURL(
    const std::string& path, std::shared_ptr<const std::atomic<bool>> cancelled) {
  const FfmpegModule* const module = ffmpegModule();
  if (module == nullptr) {
    return {.file = nullptr, .status = kFfmpegMissingStatus};
  }
  return module->openInput(*userAudioFiles(), path, std::move(cancelled));
}

ExtAudioFileOutput::Created ExtAudioFileOutput::createWithURL(const std::string& path,
                                                              AudioFileKind kind) {
  const FfmpegModule* const module = ffmpegModule();
  if (module == nullptr) {
    return {.file = nullptr, .status = kFfmpegMissingStatus};
  }
  return module->createOutput(userAudioFiles()->createForWriting(path), kind, {});
}

ExtAudioFileOutput::Created ExtAudioFileOutput::createWithFile(Result<std::unique_ptr<File>> file,
                                                               AudioFileKind kind,
                                                               const AudioFileTags& tags) {
  const FfmpegModule* const module = ffmpegModule();
  if (module == nullptr) {
    return {.file = nullptr, .status = kFfmpegMissingStatus};
  }
  return module->createOutput(std::move(file), kind, tags);
}

std::unique_ptr<FourierTransform> FourierTransform::create(int log2Length) {
  const FfmpegModule* const module = ffmpegModule();
  return module != nullptr ? module->createTransform(log2Length) : nullptr;
}

}  // namespace platform
