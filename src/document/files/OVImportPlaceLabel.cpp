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

// The length of an audio file; nothing if it is unknown or estimated, or the file cannot be read,
// which only the import itself reports.
std::optional<double> secondsOf(const std::string& path,
                                const std::shared_ptr<const std::atomic<bool>>& cancelled) try {
  const auto opened = platform::ExtAudioFileInput::openURL(path, cancelled);
  const bool known = opened.file && !opened.file->isLengthEstimated();
  const std::int64_t frames = known ? opened.file->fileLengthFrames() : 0;
  return frames > 0
             ? std::optional(static_cast<double>(frames) / platform::kWorkingFormat.mSampleRate)
             : std::nullopt;
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
  seconds_.reset();
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
    const auto seconds = secondsOf(path, reading);
    platform::mainQueue().async([reading, seconds, self] {
      if (self) {
        self->found(reading, seconds);
      }
    });
  });
}

void OVImportPlaceLabel::found(const Cancelled& ended, std::optional<double> seconds) {
  --reads_;
  if (ended == reading_) {
    seconds_ = seconds;
    update();
  } else if (!reading_) {
    read();  // chosen while too many media were waited for
  }
}

void OVImportPlaceLabel::update() {
  const QString text = place_().sentence(seconds_);
  if (text != this->text()) {
    setText(text);
  }
}
