#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

/// A message to the keeper.
struct KeeperMessage {
  /// Changes when the meaning of a message or the layout of the journal does.
  static constexpr std::uint32_t kVersion = 1;

  enum class Kind : std::uint32_t {
    keep = 1,  ///< a new document, with two descriptors: its audio and its journal
    letGo,     ///< the document is closed
  };

  std::uint32_t version = kVersion;
  Kind kind = Kind::keep;
  std::uint64_t document = 0;  ///< number of the document, unique in its program
};
static_assert(sizeof(KeeperMessage) == 16 && std::is_trivially_copyable_v<KeeperMessage>);
