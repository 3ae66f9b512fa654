#include "document/display/OVLossText.h"

#include <numeric>

#include <QLocale>

#include "platform/base/AudioTypes.h"
#include "platform/mainloop/Localization.h"

using platform::localized;

namespace {

// "0.3" in the desktop's format; three digits for less than a tenth.
QString lengthText(std::uint64_t frames) {
  const double length = lossSeconds(frames);
  return QLocale().toString(length, 'f', length < 0.1 ? 3 : 1);
}

}  // namespace

double lossSeconds(std::uint64_t frames) {
  return static_cast<double>(frames) / platform::kWorkingRate;
}

QString lossPlaceText(std::uint64_t frame) {
  const std::uint64_t whole = frame / platform::kWorkingRate;
  const QLatin1Char zero('0');
  const QString rest = QString(QStringLiteral("%1:%2"))
                           .arg(whole / 60 % 60, 2, 10, zero)
                           .arg(whole % 60, 2, 10, zero);
  return whole < 3600 ? rest : QString::number(whole / 3600) + QLatin1Char(':') + rest;
}

QString lossText(const OVRecordingLoss& loss) {
  return localized("%1 s were lost at %2")
      .arg(lengthText(loss.frames), lossPlaceText(loss.atFrame));
}

QString lossesText(const std::vector<OVRecordingLoss>& losses) {
  if (losses.empty()) {
    return {};
  }
  const std::uint64_t frames =
      std::accumulate(losses.begin(), losses.end(), std::uint64_t{0},
                      [](std::uint64_t sum, const auto& loss) { return sum + loss.frames; });
  return localized("Lost in this recording: %1 s, first at %2")
      .arg(lengthText(frames), lossPlaceText(losses.front().atFrame));
}
