#include "document/display/OVInputNotices.h"

#include <ctime>

#include <QDateTime>

#include "audio/InputName.h"
#include "document/display/OVLossText.h"
#include "platform/base/ApplicationServices.h"
#include "platform/mainloop/Localization.h"

namespace {

using Kind = platform::AudioInputSource::Kind;
using platform::localized;

QString sourceText(const platform::AudioInputSource& source) {
  const QString name = shownInputName(source.name);
  return name.isEmpty() ? localized("Recording from the default input")
                        : localized("Recording from %1").arg(name);
}

}  // namespace

void OVInputNotices::update(const OVInputState& now) {
  if (now.isRecording && !wasRecording_) {
    begin(now);
  } else if (!now.isRecording && wasRecording_) {
    end(now);
  }
  wasRecording_ = now.isRecording;
  if (now.isRecording) {
    showSource(now);
    showLosses(now);
  }
  showMicrophone(now);
  showSilence(now);
}

void OVInputNotices::begin(const OVInputState&) {
  shownSource_.reset();
  shownLosses_ = 0;
  notices_.withdraw(OVNoticeSubject::paused);
  notices_.withdraw(OVNoticeSubject::lostFrames);
}

void OVInputNotices::end(const OVInputState& now) {
  notices_.withdraw(OVNoticeSubject::input);
  showLosses(now);        // those that were found at the end
  if (now.hasRecorded) {  // otherwise Record was rolled back
    notices_.show(OVNoticeSubject::paused, localized("Recording has been paused."));
  }
  showLossesInAll(now);
}

// At the beginning, and when the stream was moved to another input. One that is not captured from
// is what the next recording would use.
void OVInputNotices::showSource(const OVInputState& now) {
  const platform::AudioInputSource& source = now.source;
  if (!source.isOpen || source.kind == Kind::kNone || source.id == shownSource_) {
    return;
  }
  shownSource_ = source.id;
  notices_.show(OVNoticeSubject::input, sourceText(source));
}

void OVInputNotices::showMicrophone(const OVInputState& now) {
  if (now.source.kind == Kind::kNone) {
    notices_.keep(OVNoticeSubject::microphone, localized("No microphone"));
  } else if (now.isRecording && now.source.isOpen && now.source.kind == Kind::kMonitor) {
    notices_.keep(OVNoticeSubject::microphone,
                  localized("No microphone: recording what this computer plays"));
  } else {
    notices_.withdraw(OVNoticeSubject::microphone);
  }
}

void OVInputNotices::showSilence(const OVInputState& now) {
  if (now.silentFrames >= kSilentFrames) {
    notices_.keep(OVNoticeSubject::silence, localized("Nothing is coming in"));
  } else {
    notices_.withdraw(OVNoticeSubject::silence);
  }
}

void OVInputNotices::showLosses(const OVInputState& now) {
  for (; shownLosses_ < now.losses.size(); ++shownLosses_) {
    const OVRecordingLoss& loss = now.losses[shownLosses_];
    log(loss);
    notices_.show(OVNoticeSubject::lostFrames, lossText(loss));
  }
}

void OVInputNotices::showLossesInAll(const OVInputState& now) {
  if (!now.losses.empty()) {
    notices_.show(OVNoticeSubject::lostFrames, lossesText(now.losses));
  }
}

void OVInputNotices::log(const OVRecordingLoss& loss) const {
  const auto time = std::chrono::system_clock::to_time_t(loss.noticedAt);
  const QString clock = QDateTime::fromSecsSinceEpoch(time).toString(Qt::ISODate);
  ConsoleLog("Recording \"%s\": %llu frames (%.3f s) were lost at %s, noticed %s; %s",
             documentName_().toUtf8().constData(), static_cast<unsigned long long>(loss.frames),
             lossSeconds(loss.frames), lossPlaceText(loss.atFrame).toUtf8().constData(),
             clock.toUtf8().constData(),
             loss.place == OVRecordingLoss::Place::silence ? "silence stands in their place"
                                                           : "nothing stands in their place");
}
