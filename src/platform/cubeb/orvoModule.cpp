#include "platform/base/LateModule.h"
#include "platform/cubeb/CubebAudioDevice.h"

extern "C" ORVO_MODULE_FACTORY platform::AudioDevice* orvoModule(
    platform::ModuleConsole* consoleLog) {
  return new platform::CubebAudioDevice(consoleLog);
}
