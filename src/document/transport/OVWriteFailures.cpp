#include "document/transport/OVWriteFailures.h"

#include <utility>

#include "audio/OVAQRecorder.h"
#include "platform/base/ApplicationServices.h"
#include "platform/mainloop/FailureReason.h"
#include "platform/mainloop/Localization.h"

OVWriteFailures::OVWriteFailures(std::function<void(const Failure&)> recordingFailed)
    : recordingFailed_(std::move(recordingFailed)) {}

void OVWriteFailures::recordingBegins(std::uint64_t revision) {
  revision_ = revision;
  writeError_ = 0;
  writeFailureTold_ = false;
}

void OVWriteFailures::loadingBegins() {
  writeError_ = 0;
  isLoading_ = true;
}

void OVWriteFailures::loadingEnded() {
  isLoading_ = false;
}

void OVWriteFailures::failedToWrite(int error, const std::shared_ptr<OVAQRecorder>& recorder) {
  if (recorder && recorder->isRecording()) {
    recorder->stopWriting();  // so that later chunks, which cannot be stored, are not mapped
    writeError_ = error;
  } else if (isLoading_) {
    writeError_ = error;
  }
}

void OVWriteFailures::chunkWritten(const std::shared_ptr<OVAQRecorder>& recorder,
                                   std::uint64_t atByteOffset, std::uint32_t withSize) {
  const int error = writeError_.exchange(0);
  if (error != 0 && !writeFailureTold_.exchange(true)) {
    recordingFailed_({error, recorder, atByteOffset, withSize, revision_});
  }
}

void OVWriteFailures::tellRecordingStopped(int error) {
  ShowModalAlert(platform::localizedUtf8("The recording was stopped"),
                 platform::localized("The audio could not be written to the temporary file. %1\n\n"
                                     "Everything recorded before is kept.")
                     .arg(QString::fromStdString(platform::failureReason(error)))
                     .toStdString());
}
