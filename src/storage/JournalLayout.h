#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <type_traits>

/// The bytes of a journal, shared by its writer and its reader; docs/storage.md describes them. All
/// numbers are in native byte order: both run on the same machine.
namespace journal {

inline constexpr std::size_t kBytes = std::size_t{16} << 20;  ///< of the whole journal
inline constexpr std::size_t kPage = 4096;
/// Two areas follow the header's page: one holds the journal, the next state is written to the
/// other.
inline constexpr std::size_t kAreaBytes = (kBytes - kPage) / 2 / kPage * kPage;
inline constexpr std::size_t kMaxName = 256;  ///< bytes of a file name, with its terminator

/// "OrvoJrn" and the version of the layout.
inline constexpr std::array<char, 8> kMagic{'O', 'r', 'v', 'o', 'J', 'r', 'n', '1'};

/// Whether the audio would be missed.
enum class State : std::uint32_t {
  saved,   ///< nothing to lose: everything was saved, or there was no change
  edited,  ///< changes that no file has
  closed,  ///< the document was closed, and what was not saved was discarded
};

/// At the start of the journal.
struct Header {
  std::array<char, 8> magic = kMagic;
  /// Which area holds the journal and where its last record ends, see publication(); 0 before the
  /// first state.
  std::atomic<std::uint64_t> published{0};
  std::atomic<State> state{State::saved};
  std::uint32_t reserved = 0;
  std::int64_t created = 0;                     ///< seconds since 1970, UTC
  std::atomic<std::int64_t> firstRecording{0};  ///< when its first recording began; 0 for none
  std::array<char, kMaxName> recoveredFrom{};   ///< name of the recovered file it was opened from
  std::uint64_t recoveredFile = 0;              ///< the system's number of that file; 0 for none
};
static_assert(std::atomic<std::uint64_t>::is_always_lock_free &&
              std::atomic<State>::is_always_lock_free && sizeof(std::atomic<State>) == 4 &&
              sizeof(std::atomic<std::uint64_t>) == 8);
static_assert(sizeof(Header) <= kPage && std::is_trivially_destructible_v<Header>);

/// What happened to the block list.
enum class Kind : std::uint64_t {
  state = 1,  ///< a = number of blocks, b = length; the blocks follow. First in an area, only there
  write,      ///< a = address, b = place in the file, c = size: OVBlock
  cutAfter,   ///< a = position
  cutBefore,  ///< a = position
  merge,      ///< neighbours were merged
  keep,       ///< a = number of the kept state, to which the present list and length are copied
  restore,    ///< a = number of the kept state, from which they are copied
};

/// All values in bytes unless noted; unused ones are 0.
struct Record {
  Kind kind = Kind::merge;
  std::uint64_t a = 0;
  std::uint64_t b = 0;
  std::uint64_t c = 0;
};
static_assert(sizeof(Record) == 32 && std::is_trivially_copyable_v<Record>);

/// A block of a state.
struct Block {
  std::uint64_t linear_addr_start = 0;
  std::uint64_t file_offset_start = 0;
  std::uint64_t size = 0;
};
static_assert(sizeof(Block) == 24 && std::is_trivially_copyable_v<Block>);

/// Offset in the journal of area 0 or 1.
[[nodiscard]] constexpr std::size_t areaOffset(std::size_t area) {
  return kPage + area * kAreaBytes;
}
[[nodiscard]] constexpr std::uint64_t stateBytes(std::uint64_t blocks) {
  return sizeof(Record) + blocks * sizeof(Block);
}

/// Area and end, packed into one number, so that one store publishes both.
struct Publication {
  std::size_t area = 0;
  std::uint64_t end = 0;  ///< bytes from the start of the area
};
[[nodiscard]] constexpr std::uint64_t packed(Publication publication) {
  return (static_cast<std::uint64_t>(publication.area) << 63) | publication.end;
}
[[nodiscard]] constexpr Publication unpacked(std::uint64_t number) {
  return {.area = static_cast<std::size_t>(number >> 63),
          .end = number & ~(std::uint64_t{1} << 63)};
}

}  // namespace journal
