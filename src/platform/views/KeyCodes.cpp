#include "platform/views/KeyCodes.h"

namespace platform {
namespace {

// The R key's scan code as X11 and Wayland report it (evdev 19 + 8).
constexpr quint32 kScanCodeR = 27;

// Letters of other scripts have their Unicode values; function keys start at 0x01000000.
bool isLetterBeyondLatin1(int key) {
  return key > 0xFF && key < 0x01000000;
}

std::uint16_t codeOfKey(int key, quint32 scanCode) {
  switch (key) {
    case Qt::Key_R:
      return kKeyCodeR;
    case Qt::Key_Return:
    case Qt::Key_Enter:
      return kKeyCodeReturn;
    case Qt::Key_Space:
      return kKeyCodeSpace;
    default:
      return isLetterBeyondLatin1(key) && scanCode == kScanCodeR ? kKeyCodeR : kKeyCodeUnmapped;
  }
}

}  // namespace

std::uint16_t hardwareKeyCode(const QKeyEvent& event) {
  constexpr Qt::KeyboardModifiers kCommand =
      Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
  if (event.type() != QEvent::KeyRelease && (event.modifiers() & kCommand)) {
    return kKeyCodeUnmapped;
  }
  return plainKeyCode(event);
}

std::uint16_t plainKeyCode(const QKeyEvent& event) {
  return codeOfKey(event.key(), event.nativeScanCode());
}

}  // namespace platform
