#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <QString>

class OVAudioFileReader;

/// A file that does not fit on the disk of a folder.
struct OVDiskShortage {
  std::string folder;
  std::uint64_t neededBytes = 0;
  std::uint64_t freeBytes = 0;

  /// A sentence that names the folder, what is needed and what is free.
  [[nodiscard]] QString sentence() const;
};

/// The shortage, if a folder's disk has no room for so many bytes; nothing if it has, if the free
/// space cannot be read, or without a folder. Takes as long as the disk takes to answer.
///
/// Threads: any but main. Real-time: not safe.
[[nodiscard]] std::optional<OVDiskShortage> shortageOf(const std::string& folder,
                                                       std::uint64_t neededBytes);

/// The same for loading a whole audio file into a temporary file in `folder`, by the length that
/// the file promises. An unknown or estimated length, and one that a file of that size cannot have,
/// fit. Throws nothing.
///
/// Threads: that of the reader, not main. Real-time: not safe.
[[nodiscard]] std::optional<OVDiskShortage> shortageOfLoading(const OVAudioFileReader& reader,
                                                              const std::string& path,
                                                              const std::string& folder);
