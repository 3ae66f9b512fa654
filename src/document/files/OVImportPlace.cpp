#include "document/files/OVImportPlace.h"

#include <algorithm>
#include <cmath>

#include <QLocale>

#include "displays/OVTimeText.h"
#include "platform/mainloop/Localization.h"

using platform::localized;

namespace {

// Up to a minute in seconds with at most one decimal, never "0 s"; beyond as the time display.
QString shownDuration(double seconds) {
  constexpr double kMinute = 60.0;
  const double tenths = std::max(std::round(seconds * 10.0), 1.0);
  if (tenths >= kMinute * 10.0) {
    return OVTimeText::formatTime(seconds);
  }
  const bool isWhole = std::fmod(tenths, 10.0) == 0.0;
  return localized("%1 s").arg(QLocale().toString(tenths / 10.0, 'f', isWhole ? 0 : 1));
}

// An estimate is no more exact than whole seconds.
QString shownEstimate(double seconds) {
  constexpr double kMinute = 60.0;
  constexpr qsizetype kHundredths = 3;  // ".00"
  const double whole = std::max(std::round(seconds), 1.0);
  return whole >= kMinute ? OVTimeText::formatTime(whole).chopped(kHundredths)
                          : shownDuration(whole);
}

}  // namespace

QString OVImportPlace::sentence(std::optional<OVImportLength> length) const {
  if (atSecond >= endSecond) {
    return localized("Goes in at the end.");
  }
  const QString place = OVTimeText::formatTime(atSecond);
  if (!length) {
    return localized("Goes in at %1.").arg(place);
  }
  const double replaced = std::min(length->seconds, endSecond - atSecond);
  return length->source == OVImportLength::Source::estimate
             ? localized("Goes in at %1 and replaces about %2.").arg(place, shownEstimate(replaced))
             : localized("Goes in at %1 and replaces %2.").arg(place, shownDuration(replaced));
}
