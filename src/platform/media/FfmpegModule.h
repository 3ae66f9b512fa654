#pragma once

#include <atomic>
#include <memory>
#include <string>

#include "platform/files/UserAudioFiles.h"
#include "platform/media/ExtAudioFileInput.h"
#include "platform/media/ExtAudioFileOutput.h"
#include "platform/media/FourierTransform.h"

namespace platform {

/// Interface of the module orvo-ffmpeg. Files to read are opened through `files`.
///
/// Threads: any. Real-time: not safe.
struct FfmpegModule {
  /// ExtAudioFileInput::openURL()
  ExtAudioFileInput::Opened (*openInput)(UserAudioFiles& files, const std::string& path,
                                         std::shared_ptr<const std::atomic<bool>> cancelled);
  /// ExtAudioFileOutput::createWithFile(), or its failure to create the file
  ExtAudioFileOutput::Created (*createOutput)(UserAudioFiles::Opened file, AudioFileKind kind,
                                              const AudioFileTags& tags);
  /// FourierTransform::create()
  std::unique_ptr<FourierTransform> (*createTransform)(int log2Length);
  /// FFmpeg's version, as the library tells it
  const char* (*version)();
};

/// The module; always null when it or FFmpeg is missing, which is logged once. The first call loads
/// it with a hundred other libraries; linked with the program, they would delay every start by more
/// than the window itself takes.
///
/// Threads: any; calls wait while it loads. Real-time: not safe.
[[nodiscard]] const FfmpegModule* ffmpegModule();

}  // namespace platform
