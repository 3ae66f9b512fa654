#include "audio/DeviceFailure.h"

#include <QString>

#include "audio/InputName.h"
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

QString withName(const QString& sentence, const QString& name) {
  return sentence.arg(name);
}

QString lostInputReason(const QString& name) {
  return name.isEmpty()
             ? platform::localized(
                   "The sound input has gone: it was unplugged, or the sound system stopped. "
                   "Connect it again before you press Record. Everything recorded so far is kept.")
             : withName(platform::localized("The sound input “%1” has gone: it was unplugged, or "
                                            "the sound system stopped. Connect it again before you "
                                            "press Record. Everything recorded so far is kept."),
                        name);
}

QString endedRecordingReason(const QString& name) {
  return name.isEmpty()
             ? platform::localized(
                   "The sound input has gone: it was unplugged, or the sound system stopped. "
                   "Recording has ended. Connect the input again, then press Record. Everything "
                   "recorded so far is kept.")
             : withName(platform::localized(
                            "The sound input “%1” has gone: it was unplugged, or the sound system "
                            "stopped. Recording has ended. Connect the input again, then press "
                            "Record. Everything recorded so far is kept."),
                        name);
}

QString stalledRecordingReason(const QString& name) {
  return name.isEmpty()
             ? platform::localized(
                   "Nothing more came from the sound input: it stands still, or the sound system "
                   "does not answer. Recording has ended. Check the input, then press Record. "
                   "Everything recorded so far is kept.")
             : withName(platform::localized(
                            "Nothing more came from the sound input “%1”: it stands still, or the "
                            "sound system does not answer. Recording has ended. Check the input, "
                            "then press Record. Everything recorded so far is kept."),
                        name);
}

QString endedPlaybackReason(bool isStalled) {
  return isStalled
             ? platform::localized(
                   "The sound output stands still, or the sound system does not answer. Playback "
                   "has ended. Check the output, then press Play. Everything recorded so far is "
                   "kept.")
             : platform::localized(
                   "The sound output has gone: it was unplugged, or the sound system stopped. "
                   "Playback has ended. Connect the output again, then press Play. Everything "
                   "recorded so far is kept.");
}

}  // namespace

bool isDeviceFailure(platform::AudioStatus status) {
  return status != platform::kAudioStatusOk && status != platform::kInvalidParameterStatus &&
         status != platform::kInvalidQueueStateStatus && status != platform::kNoThreadStatus;
}

bool isDeviceLoss(platform::AudioStatus status) {
  return status == platform::kDeviceLostStatus || status == platform::kDeviceStalledStatus;
}

bool isLossTold(OVInterrupted interrupted, platform::AudioStatus status) {
  return interrupted != OVInterrupted::nothing || status != platform::kDeviceStalledStatus;
}

std::string inputFailureReason(platform::AudioStatus status) {
  if (status == platform::kDeviceUnavailableStatus || isDeviceLoss(status)) {
    return platform::localizedUtf8(
        "No sound input could be opened. Connect a microphone or another input, check that "
        "sound works on this computer, then press Record again. Everything recorded so far is "
        "kept.");
  }
  return commonFailureReason(status);
}

std::string outputFailureReason(platform::AudioStatus status) {
  if (status == platform::kDeviceUnavailableStatus || isDeviceLoss(status)) {
    return platform::localizedUtf8(
        "No sound output could be opened. Connect loudspeakers or headphones, check that sound "
        "works on this computer, then press Play again. Everything recorded so far is kept.");
  }
  return commonFailureReason(status);
}

std::string deviceLossReason(OVInterrupted interrupted, platform::AudioStatus status,
                             const std::string& inputName) {
  const bool isStalled = status == platform::kDeviceStalledStatus;
  const QString name = shownInputName(inputName);
  switch (interrupted) {
    case OVInterrupted::playback:
      return endedPlaybackReason(isStalled).toStdString();
    case OVInterrupted::recording:
      return (isStalled ? stalledRecordingReason(name) : endedRecordingReason(name)).toStdString();
    case OVInterrupted::nothing:
      break;
  }
  return lostInputReason(name).toStdString();
}
