#pragma once

#include "platform/media/FfmpegModule.h"

/// The functions of the module, see FfmpegModule.
namespace platform {

[[nodiscard]] ExtAudioFileInput::Opened openInput(
    UserAudioFiles& files, const std::string& path,
    std::shared_ptr<const std::atomic<bool>> cancelled);
[[nodiscard]] ExtAudioFileOutput::Created createOutput(UserAudioFiles::Opened file,
                                                       AudioFileKind kind,
                                                       const AudioFileTags& tags);
[[nodiscard]] std::unique_ptr<FourierTransform> createTransform(int log2Length);

}  // namespace platform
