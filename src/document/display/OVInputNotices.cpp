#include "document/display/OVInputNotices.h"

#include <algorithm>
#include <ctime>
#include <numeric>

#include <QDateTime>
#include <QLocale>

#include "audio/InputName.h"
#include "platform/base/ApplicationServices.h"
#include "platform/mainloop/Localization.h"

namespace {

using Kind = platform::AudioInputSource::Kind;
using platform::localized;

double seconds(std::uint64_t frames) {
  return static_cast<double>(frames) / platform::kWorkingRate;
}

// "0.3" in the desktop's format; three digits for less than a tenth.
QString lengthText(std::uint64_t frames) {
  const double length = seconds(frames);
  return QLocale().toString(length, 'f', length < 0.1 ? 3 : 1);
}

// "12:31", or "1:02:31".
QString placeText(std::uint64_t frame) {
  const std::uint64_t whole = frame / platform::kWorkingRate;
  const QLatin1Char zero('0');
  const QString rest = QString(QStringLiteral("%1:%2"))
                           .arg(whole / 60 % 60, 2, 10, zero)
                           .arg(whole % 60, 2, 10, zero);
  return whole < 3600 ? rest : QString::number(whole / 3600) + QLatin1Char(':') + rest;
}

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
    notices_.show(
        OVNoticeSubject::lostFrames,
        localized("%1 s were lost at %2").arg(lengthText(loss.frames), placeText(loss.atFrame)));
  }
}

void OVInputNotices::showLossesInAll(const OVInputState& now) {
  if (now.losses.empty()) {
    return;
  }
  const std::uint64_t frames =
      std::accumulate(now.losses.begin(), now.losses.end(), std::uint64_t{0},
                      [](std::uint64_t sum, const auto& loss) { return sum + loss.frames; });
  notices_.show(OVNoticeSubject::lostFrames,
                localized("Lost in this recording: %1 s, first at %2")
                    .arg(lengthText(frames), placeText(now.losses.front().atFrame)));
}

void OVInputNotices::log(const OVRecordingLoss& loss) const {
  const auto time = std::chrono::system_clock::to_time_t(loss.noticedAt);
  const QString clock = QDateTime::fromSecsSinceEpoch(time).toString(Qt::ISODate);
  ConsoleLog("Recording \"%s\": %llu frames (%.3f s) were lost at %s, noticed %s; %s",
             documentName_().toUtf8().constData(), static_cast<unsigned long long>(loss.frames),
             seconds(loss.frames), placeText(loss.atFrame).toUtf8().constData(),
             clock.toUtf8().constData(),
             loss.place == OVRecordingLoss::Place::silence ? "silence stands in their place"
                                                           : "nothing stands in their place");
}
