#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include <QWindow>

/// What this process holds of the system at one moment.
struct ProcessFigures {
  std::size_t threads = 0;
  std::size_t descriptors = 0;
  std::uint64_t allocatedMemory = 0;  ///< bytes that were asked of malloc and not freed
  std::uint64_t residentMemory = 0;   ///< bytes
  std::uint64_t screenResources = 0;  ///< windows, pictures, graphics contexts, … in the X server
  std::uint64_t screenPictureBytes = 0;  ///< of the pictures among them
  std::uint64_t busMatches = 0;  ///< rules of the session bus by which it sends signals here

  /// `window` is one that the X server knows. Nothing if the X server or the bus does not answer.
  ///
  /// Threads: main.
  [[nodiscard]] static std::optional<ProcessFigures> now(const QWindow& window);
};
