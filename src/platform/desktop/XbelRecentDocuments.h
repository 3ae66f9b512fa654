#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "platform/desktop/RecentDocuments.h"

namespace platform {

/// The desktop's list of recent files: recently-used.xbel, which every program of the desktop reads
/// and writes (freedesktop.org's Desktop Bookmarks). A document that is noted is registered there
/// under the name "Orvo".
///
/// What others wrote there stays to the byte, also what is written while a document is being noted.
/// The list is replaced in one step and keeps its permissions; a new one, and folders made for it,
/// are readable by the user alone. A list that cannot be read, is no ordinary file, may not be
/// written or is larger than kMaxList is left as it is, with one line to the console for each
/// document that is not noted. An empty file counts as an empty list.
///
/// Threads: any, one at a time. Real-time: not safe.
class XbelRecentDocuments : public RecentDocuments {
 public:
  /// In bytes: ten thousand entries. Desktops keep a thousand at most.
  static constexpr std::size_t kMaxList = std::size_t{8} << 20;

  using Clock = std::function<std::chrono::system_clock::time_point()>;

  /// `file` is the list's path. The clock is asked between reading the list and writing it.
  explicit XbelRecentDocuments(std::string file, Clock clock = std::chrono::system_clock::now);

  /// Where the desktop keeps its list: in XDG_DATA_HOME, or in ~/.local/share where that is not set
  /// or not an absolute path.
  [[nodiscard]] static std::string desktopFile();

  void noteNewRecentDocument(const std::string& path) override;

  /// Audio files are those with a suffix that Orvo opens: caf, aif, aiff, wav, mp3, mp4, m4a, m4r,
  /// aac, in capitals or not.
  [[nodiscard]] std::vector<std::string> recentDocuments(std::size_t most) const override;

 private:
  enum class Outcome { noted, changedMeanwhile, failed };

  Outcome tryToNote(const std::string& document);
  Outcome replace(const std::string& before, const std::string& after) const;

  const std::string file_;
  const Clock clock_;
};

}  // namespace platform
