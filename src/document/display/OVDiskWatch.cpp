#include "document/display/OVDiskWatch.h"

#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "audio/AudioFileFailure.h"
#include "document/display/OVNotices.h"
#include "document/editing/OVDocumentAudio.h"
#include "document/editing/OVDocumentLife.h"
#include "platform/base/ApplicationServices.h"
#include "platform/base/MainThread.h"
#include "platform/base/SerialQueue.h"
#include "platform/mainloop/Localization.h"
#include "platform/mainloop/MainQueue.h"

using platform::localized;

namespace {

// One for all documents, since they keep their audio in the same folder. Never destroyed: a look
// may outlive main.
platform::SerialQueue& looks() {
  static auto* const queue = new platform::SerialQueue("free space");
  return *queue;
}

QString notice(int minutes, const std::string& folder) {
  const QString where = QString::fromStdString(shownPath(folder));
  return minutes > 1
             ? localized("Space for less than %1 minutes of recording is left in %2.")
                   .arg(QString::number(minutes), where)
             : localized("Space for less than a minute of recording is left in %1.").arg(where);
}

// Those of the documents that record. Main thread only. Never destroyed, as above.
std::vector<const OVDiskWatch*>& runningWatches() {
  static auto* const watches = new std::vector<const OVDiskWatch*>;
  return *watches;
}

}  // namespace

OVDiskWatch::~OVDiskWatch() {
  std::erase(runningWatches(), this);
}

void OVDiskWatch::setRecording(bool recording) {
  platform::assertMainThread();
  ++recording_;
  limits_ = {};
  notices_.withdraw(OVNoticeSubject::disk);
  timer_.reset();
  std::erase(runningWatches(), this);
  if (recording) {
    runningWatches().push_back(this);
    timer_ = std::make_unique<platform::Timer>(secondsBetweenLooks_, [this] { look(); });
    look();
  }
}

void OVDiskWatch::look() {
  const std::string folder = audio_.storageFolder();
  if (isLooking_ || folder.empty()) {
    return;
  }
  isLooking_ = true;
  auto answer = life_.guarded([this, folder, recording = recording_](const Space& space) {
    looked(recording, folder, space);
  });
  looks().async([answer = std::move(answer), folder] {
    platform::mainQueue().async(
        [answer, space = platform::freeSpace()->ofFolder(folder)] { answer(space); });
  });
}

void OVDiskWatch::looked(std::uint64_t recording, const std::string& folder, const Space& space) {
  isLooking_ = false;
  if (!isRunning()) {
    return;
  }
  if (recording != recording_) {
    look();  // an old answer, for which the first look of this recording has been left out
    return;
  }
  if (space) {
    tell(static_cast<double>(space->freeBytes) / bytesPerSecondInto(folder), folder);
  } else if (!std::exchange(hasToldFailure_, true)) {
    ConsoleLog("the free space of %s cannot be read: %s", folder.c_str(),
               std::generic_category().message(space.error()).c_str());
  }
}

double OVDiskWatch::bytesPerSecondInto(const std::string& folder) {
  double sum = 0;
  for (const OVDiskWatch* const watch : runningWatches()) {
    if (watch->audio_.storageFolder() == folder) {
      sum += watch->audio_.bytesPerSecond();
    }
  }
  return sum;
}

void OVDiskWatch::tell(double secondsLeft, const std::string& folder) {
  const bool wasLowest = limits_.isLowest();
  const auto minutes = limits_.reached(secondsLeft);
  if (wasLowest && !limits_.isLowest()) {
    notices_.withdraw(OVNoticeSubject::disk);
  }
  if (!minutes) {
    return;
  }
  if (limits_.isLowest()) {
    notices_.keep(OVNoticeSubject::disk, notice(*minutes, folder));
  } else {
    notices_.show(OVNoticeSubject::disk, notice(*minutes, folder));
  }
}
