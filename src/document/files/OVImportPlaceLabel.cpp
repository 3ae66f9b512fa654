#include "document/files/OVImportPlaceLabel.h"

#include <new>
#include <utility>

#include <QPointer>

#include "platform/base/AudioTypes.h"
#include "platform/base/GlobalQueue.h"
#include "platform/mainloop/MainQueue.h"
#include "platform/media/ExtAudioFileInput.h"

namespace {

constexpr double kSecondsBetweenUpdates = 0.25;

// The length of an audio file; nothing if it is unknown or the file cannot be read, which only the
// import itself reports.
std::optional<OVImportLength> lengthOf(
    const std::string& path, const std::shared_ptr<const std::atomic<bool>>& cancelled) try {
  const auto opened = platform::ExtAudioFileInput::openURL(path, cancelled);
  const std::int64_t frames = opened.file ? opened.file->fileLengthFrames() : 0;
  if (frames <= 0) {
    return std::nullopt;
  }
  return OVImportLength{
      .seconds = static_cast<double>(frames) / platform::kWorkingFormat.mSampleRate,
      .source = opened.file->isLengthEstimated() ? OVImportLength::Source::estimate
                                                 : OVImportLength::Source::header};
} catch (const std::bad_alloc&) {
  return std::nullopt;
}

}  // namespace

OVImportPlaceLabel::OVImportPlaceLabel(std::function<OVImportPlace()> place)
    : place_(std::move(place)), timer_(kSecondsBetweenUpdates, [this] { update(); }) {
  setObjectName("importPlace");
  setTextFormat(Qt::PlainText);
  update();
}

OVImportPlaceLabel::~OVImportPlaceLabel() {
  cancelRead();
}

void OVImportPlaceLabel::choose(const std::string& path) {
  if (path == path_) {
    return;
  }
  path_ = path;
  cancelRead();
  read();
  update();
}

void OVImportPlaceLabel::cancelRead() {
  length_.reset();
  if (const auto former = std::exchange(reading_, nullptr)) {
    *former = true;
  }
}

void OVImportPlaceLabel::read() {
  if (path_.empty() || reads_ >= kMaxReads) {
    return;
  }
  ++reads_;
  reading_ = std::make_shared<std::atomic<bool>>(false);
  platform::globalQueue().async([path = path_, reading = reading_, self = QPointer(this)] {
    const auto length = lengthOf(path, reading);
    platform::mainQueue().async([reading, length, self] {
      if (self) {
        self->found(reading, length);
      }
    });
  });
}

void OVImportPlaceLabel::found(const Cancelled& ended, std::optional<OVImportLength> length) {
  --reads_;
  if (ended == reading_) {
    length_ = length;
    update();
  } else if (!reading_) {
    read();  // chosen while too many media were waited for
  }
}

void OVImportPlaceLabel::update() {
  const QString text = place_().sentence(length_);
  if (text != this->text()) {
    setText(text);
  }
}
