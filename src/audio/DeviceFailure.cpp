#include "audio/DeviceFailure.h"

#include "platform/mainloop/Localization.h"

namespace {

// The reason for a failure that does not depend on the direction; empty for none.
std::string commonFailureReason(platform::AudioStatus status) {
  return status == platform::kNoThreadStatus
             ? platform::localizedUtf8(
                   "The system allows no further thread. Close some windows or other programs, "
                   "then try again. Everything recorded so far is kept.")
             : std::string();
}

}  // namespace

bool isDeviceFailure(platform::AudioStatus status) {
  return status != platform::kAudioStatusOk && status != platform::kInvalidParameterStatus &&
         status != platform::kInvalidQueueStateStatus && status != platform::kNoThreadStatus;
}

std::string inputFailureReason(platform::AudioStatus status) {
  switch (status) {
    case platform::kDeviceUnavailableStatus:
      return platform::localizedUtf8(
          "No sound input could be opened. Connect a microphone or another input, check that "
          "sound works on this computer, then press Record again. Everything recorded so far is "
          "kept.");
    case platform::kDeviceLostStatus:
      return platform::localizedUtf8(
          "The sound input has gone: it was unplugged, or the sound system stopped. Recording has "
          "ended. Connect the input again, then press Record. Everything recorded so far is kept.");
    default:
      return commonFailureReason(status);
  }
}

std::string outputFailureReason(platform::AudioStatus status) {
  switch (status) {
    case platform::kDeviceUnavailableStatus:
      return platform::localizedUtf8(
          "No sound output could be opened. Connect loudspeakers or headphones, check that sound "
          "works on this computer, then press Play again. Everything recorded so far is kept.");
    case platform::kDeviceLostStatus:
      return platform::localizedUtf8(
          "The sound output has gone: it was unplugged, or the sound system stopped. Playback has "
          "ended. Connect the output again, then press Play. Everything recorded so far is kept.");
    default:
      return commonFailureReason(status);
  }
}
