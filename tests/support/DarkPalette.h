#pragma once

#include "platform/desktop/DesktopColours.h"

namespace support {

/// The program on a dark desktop while it lives.
class DarkPalette {
 public:
  DarkPalette() { platform::DesktopColours::setDark(true); }
  ~DarkPalette() { platform::DesktopColours::setDark(false); }
  DarkPalette(const DarkPalette&) = delete;
  DarkPalette& operator=(const DarkPalette&) = delete;
};

}  // namespace support
