#pragma once

#include <cstdint>

#include <QKeyEvent>

namespace platform {

/// Positions of keys on the hardware keyboard, which the transport commands are bound to.
inline constexpr std::uint16_t kKeyCodeR = 15;
inline constexpr std::uint16_t kKeyCodeReturn = 36;  ///< Return, and Enter of the number pad
inline constexpr std::uint16_t kKeyCodeSpace = 49;
inline constexpr std::uint16_t kKeyCodeUnmapped = 0xFFFF;  ///< every other key

/// The hardware code of a key event.
///
/// A press with Control, Alt or Meta held is a command, not a plain key, and yields
/// kKeyCodeUnmapped. A release always yields the key's own code, so that a key which went down
/// plain also comes up when a modifier was added meanwhile. Shift and Caps Lock never matter.
/// A layout that puts a letter beyond Latin-1 on the R key is served by the key's position.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] std::uint16_t hardwareKeyCode(const QKeyEvent& event);

/// The same code, whatever is held beside the key.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] std::uint16_t plainKeyCode(const QKeyEvent& event);

}  // namespace platform
