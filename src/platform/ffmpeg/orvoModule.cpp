#include "platform/base/LateModule.h"
#include "platform/ffmpeg/Ffmpeg.h"
#include "platform/ffmpeg/FfmpegLog.h"
#include "platform/ffmpeg/FfmpegMakers.h"

extern "C" ORVO_MODULE_FACTORY const platform::FfmpegModule* orvoModule(
    platform::ModuleConsole* consoleLog) {
  static constexpr platform::FfmpegModule kModule{platform::openInput, platform::createOutput,
                                                  platform::createTransform, av_version_info};
  platform::FfmpegLog::install(consoleLog);
  return &kModule;
}
