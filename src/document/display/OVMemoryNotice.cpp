#include "document/display/OVMemoryNotice.h"

#include "platform/mainloop/Localization.h"

void OVMemoryNotice::update() {
  const unsigned shortages = platform::MemoryReserve::shortages();
  if (shortages == seen_ && platform::MemoryReserve::restore()) {
    return;
  }
  seen_ = shortages;
  notices_.show(OVNoticeSubject::memory,
                platform::localized("This computer is running out of memory"));
}
