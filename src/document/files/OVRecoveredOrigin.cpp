#include "document/files/OVRecoveredOrigin.h"

#include <cerrno>
#include <cstring>
#include <utility>

#include <QLocale>

#include "audio/OVFileKinds.h"
#include "document/editing/OVDocumentAudio.h"
#include "document/editing/OVEditHistory.h"
#include "document/editing/OVFileOperation.h"
#include "document/files/OVDocumentFile.h"
#include "document/files/OVFileLoading.h"
#include "platform/base/ApplicationServices.h"
#include "platform/base/MainThread.h"
#include "platform/mainloop/Localization.h"
#include "platform/mainloop/MainQueue.h"

using platform::localized;

namespace {

// More than any header before the sound, where that is not known.
constexpr std::uint64_t kMaxHeaderBytes = 8192;

// A long file takes the disk a while.
void deleteInBackground(const OVRecoveredFile& file) {
  platform::globalQueue().async([claim = file.claim, path = file.path] {
    const int error = claim ? claim->remove() : 0;
    if (error != 0 && error != ENOENT) {
      ConsoleLog("The recovered file \"%s\" could not be deleted (%d)", path.c_str(), error);
    }
  });
}

}  // namespace

void OVRecoveredOrigin::open(const OVRecoveredFile& file) {
  platform::assertMainThread();
  file_ = file;
  // The desktop's format may contain slashes, a file's name may not.
  parts_.file.nameWithoutFile(
      localized("Recovered %1").arg(QLocale().toString(file.start, QLocale::ShortFormat)),
      localized("Recovered %1")
          .arg(file.start.toString(QStringLiteral("yyyy-MM-dd HH.mm.ss")))
          .toStdString());
  change(State::loading);
  parts_.loading.open(file.path);
  if (!parts_.operation.isActive()) {
    change(State::none);  // the document has no storage
  }
}

std::string OVRecoveredOrigin::path() const {
  return state_ == State::standing ? file_->path : std::string();
}

void OVRecoveredOrigin::loadEnded() {
  if (state_ != State::loading) {
    return;
  }
  if (isLoadedWhole()) {
    change(State::standing);
    parts_.history.kept().setRecoveredFrom(lastPathComponent(file_->path), file_->number,
                                           file_->start.toSecsSinceEpoch());
    parts_.history.setEdited(true);
  } else {
    change(State::none);
  }
}

// All sound that the file holds, however damaged it is: a full disk may have ended the load early.
bool OVRecoveredOrigin::isLoadedWhole() const {
  const std::uint64_t loaded = parts_.audio.sizeInFrames();
  const std::uint64_t frameBytes = parts_.audio.bytesPerFrame();
  return loaded > 0 &&
         (file_->frames > 0 ? loaded >= file_->frames
                            : loaded * frameBytes + kMaxHeaderBytes >= file_->byteCount);
}

void OVRecoveredOrigin::change(State state) {
  const std::string former = path();
  state_ = state;
  if (state == State::none) {
    file_.reset();
  }
  if (changed_ && path() != former) {
    changed_();
  }
}

void OVRecoveredOrigin::deleteFile() {
  if (state_ == State::standing) {
    deleteInBackground(*file_);
    change(State::none);
  }
}
