#include "document/editing/OVKeptDocument.h"

#include <ctime>

#include "document/editing/OVDocumentAudio.h"
#include "recovery/RecordingKeeper.h"
#include "storage/OVBlockBuffer.h"

namespace {

// Documents are created on the main thread.
std::uint64_t nextNumber() {
  static std::uint64_t last = 0;
  return ++last;
}

std::int64_t now() {
  return static_cast<std::int64_t>(std::time(nullptr));
}

}  // namespace

OVKeptDocument::OVKeptDocument(const OVDocumentAudio& audio)
    : audio_(audio), number_(nextNumber()) {}

OVKeptDocument::~OVKeptDocument() {
  close();
}

void OVKeptDocument::setEdited(bool edited) {
  if (edited) {
    begin();
  }
  if (buffer_) {
    buffer_->journal()->setState(edited ? journal::State::edited : journal::State::saved);
  }
}

void OVKeptDocument::recordingBegins() {
  if (buffer_) {
    isFirstRecording_ = buffer_->journal()->recordingBegins(now());
  }
}

void OVKeptDocument::recordingTakenBack() {
  if (buffer_ && isFirstRecording_) {
    buffer_->journal()->recordingTakenBack();
  }
}

void OVKeptDocument::begin() {
  if (buffer_ || isClosed_) {
    return;
  }
  const auto blocks = std::dynamic_pointer_cast<OVBlockBuffer>(audio_.buffer());
  const auto keeper = recordingKeeper();
  if (!blocks || blocks->fileDescriptor() < 0 || !keeper->isAvailable()) {
    return;
  }
  const BlockJournal* const journal = blocks->beginJournal({.created = now(),
                                                            .recoveredFrom = recoveredFrom_,
                                                            .recoveredFile = recoveredFile_,
                                                            .firstRecording = firstRecording_});
  if (journal != nullptr) {
    buffer_ = blocks;
    keeper_ = keeper;
    keeper_->keep(number_, {.audio = blocks->fileDescriptor(), .journal = journal->descriptor()});
  }
}

void OVKeptDocument::close() {
  isClosed_ = true;
  if (buffer_) {
    buffer_->journal()->setState(journal::State::closed);
    keeper_->letGo(number_);
    buffer_.reset();
    keeper_.reset();
  }
}
