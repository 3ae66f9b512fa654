#pragma once

#include <cstdint>

#include <QKeyEvent>

namespace platform {

/// Hardware key positions that the transport commands are bound to.
inline constexpr std::uint16_t kKeyCodeR = 15;
inline constexpr std::uint16_t kKeyCodeReturn = 36;  ///< Return, and Enter of the number pad
inline constexpr std::uint16_t kKeyCodeSpace = 49;
inline constexpr std::uint16_t kKeyCodeUnmapped = 0xFFFF;  ///< every other key

/// The hardware code of a key event.
///
/// A press with Control, Alt or Meta held is a command and returns kKeyCodeUnmapped. A release
/// always returns the key's own code, so that a modifier pressed meanwhile does not hide it. Shift
/// and Caps Lock have no effect. On layouts with a non-Latin-1 letter on the R key, the key's
/// position counts.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] std::uint16_t hardwareKeyCode(const QKeyEvent& event);

/// The same code, regardless of modifiers.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] std::uint16_t plainKeyCode(const QKeyEvent& event);

}  // namespace platform
