#pragma once

#include <atomic>
#include <memory>
#include <string>

#include "platform/files/UserAudioFiles.h"
#include "platform/media/ExtAudioFileInput.h"
#include "platform/media/ExtAudioFileOutput.h"
#include "platform/media/FourierTransform.h"

namespace platform {

/// What the module orvo-ffmpeg makes. Files are opened through `files`.
///
/// Threads: any. Real-time: not safe.
struct FfmpegModule {
  /// ExtAudioFileInput::openURL()
  ExtAudioFileInput::Opened (*openInput)(UserAudioFiles& files, const std::string& path,
                                         std::shared_ptr<const std::atomic<bool>> cancelled);
  /// ExtAudioFileOutput::createWithURL()
  ExtAudioFileOutput::Created (*createOutput)(UserAudioFiles& files, const std::string& path,
                                              AudioFileKind kind);
  /// FourierTransform::create()
  std::unique_ptr<FourierTransform> (*createTransform)(int log2Length);
};

/// The module; null when it or FFmpeg is missing, every time, which is logged once. The first call
/// loads it, with a hundred other libraries: linked with the program, they would cost every start
/// more time than the whole window does.
///
/// Threads: any; a call during the loading waits for its end. Real-time: not safe.
[[nodiscard]] const FfmpegModule* ffmpegModule();

}  // namespace platform
