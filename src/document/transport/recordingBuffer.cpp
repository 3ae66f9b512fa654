#include "document/transport/recordingBuffer.h"

#include <cerrno>
#include <string>

#include "platform/files/TemporaryFiles.h"
#include "platform/mainloop/FailureReason.h"
#include "platform/mainloop/Localization.h"
#include "platform/mainloop/ShownName.h"
#include "storage/OVBlockBuffer.h"

using platform::localized;

namespace {

// The directory itself is what is missing: nothing in it was looked for.
QString causeOf(int error) {
  switch (error) {
    case ENOENT:
      return localized("There is no such folder.");
    case ENOTDIR:
      return localized("It is not a folder.");
    default:
      return QString::fromStdString(platform::failureReason(error));
  }
}

std::string explanationOf(const platform::NoTemporaryFile& failure) {
  std::string directory = platform::temporaryFiles()->directory();
  if (directory.size() > 1 && directory.back() == '/') {
    directory.pop_back();
  }
  return localized("The temporary directory “%1” cannot be used. %2")
      .arg(platform::shownName(directory), causeOf(failure.error))
      .toStdString();
}

}  // namespace

std::shared_ptr<OVBlockBuffer> makeRecordingBuffer() {
  return OVBlockBuffer::init(explanationOf);
}
