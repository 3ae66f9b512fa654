#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace platform {

/// The documents that were opened lately, in the desktop's own list. Tests put in one of their own.
///
/// Threads: any, one at a time. Real-time: not safe.
class RecentDocuments {
 public:
  virtual ~RecentDocuments() = default;

  /// Says that the file at `path` was opened or saved just now. A relative path counts from the
  /// working folder. Failures are told to the diagnostics console and to nobody else.
  virtual void noteNewRecentDocument(const std::string& path) = 0;

  /// Paths of audio files that Orvo has noted, the latest first, at most `most`, only those that
  /// still exist. Empty when there is no list, or none that can be read.
  [[nodiscard]] virtual std::vector<std::string> recentDocuments(std::size_t most) const = 0;
};

/// The installed list; at first the desktop's (XbelRecentDocuments).
RecentDocuments& recentDocuments();

/// Puts another in for as long as the installation lives. Threads: main.
class RecentDocumentsInstallation {
 public:
  explicit RecentDocumentsInstallation(RecentDocuments& documents);
  ~RecentDocumentsInstallation();
  RecentDocumentsInstallation(const RecentDocumentsInstallation&) = delete;
  RecentDocumentsInstallation& operator=(const RecentDocumentsInstallation&) = delete;

 private:
  RecentDocuments* previous_;
};

}  // namespace platform
