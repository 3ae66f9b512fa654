#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace platform {

/// An entry of a folder: a folder or a file.
struct FolderEntry {
  std::string name;  ///< byte for byte
  bool isFolder = false;
  std::uint64_t byteCount = 0;  ///< of a file
  std::int64_t modified = 0;    ///< seconds since 1970; 0 for folders and before it is known
};

/// What a path leads to, links followed.
enum class PathKind { missing, folder, file };

/// Lists a folder without "." and "..", hidden entries (whose name begins with a dot), devices,
/// pipes and dead links. Looks at no content of any file and into no folder below, so that a folder
/// on another disk that does not answer keeps nothing from being listed.
///
/// Calls `found` twice: with the names alone, links and entries of unknown kind as files, and with
/// everything. Waits for as long as the disk does not answer. When `cancelled` is set, it ends
/// between two calls of the system. Returns 0, or the errno of the failure.
///
/// Threads: any but the main thread. Real-time: not safe.
[[nodiscard]] int listFolder(const std::string& path,
                             const std::function<void(const std::vector<FolderEntry>&)>& found,
                             const std::atomic<bool>& cancelled);

/// What is at a path; `missing` also if it cannot be examined. May wait as listFolder() does.
///
/// Threads: any but the main thread. Real-time: not safe.
[[nodiscard]] PathKind kindOfPath(const std::string& path);

/// Makes a folder. Returns 0, or the errno of the failure. May wait as listFolder() does.
///
/// Threads: any but the main thread. Real-time: not safe.
[[nodiscard]] int makeFolder(const std::string& path);

}  // namespace platform
