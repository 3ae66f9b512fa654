#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace platform {

/// The documents that were opened lately, in the desktop's own list. The application installs the
/// list at start-up, tests one of their own.
///
/// Threads: any, one at a time. Real-time: not safe.
class RecentDocuments {
 public:
  virtual ~RecentDocuments() = default;

  /// Notes that the file at `path` was opened or saved just now. A relative path counts from the
  /// working folder. Failures are logged to the diagnostics console only.
  virtual void noteNewRecentDocument(const std::string& path) = 0;

  /// Paths of audio files that Orvo has noted, the latest first, at most `most`, only those that
  /// still exist. Empty when there is no list, or none that can be read.
  [[nodiscard]] virtual std::vector<std::string> recentDocuments(std::size_t most) const = 0;
};

/// The installed list; with none installed, one that is always empty and writes what it is given
/// to standard error.
RecentDocuments& recentDocuments();

/// Installs a list for as long as the installation lives; installations nest. Threads: main.
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
