#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "platform/desktop/RecentDocuments.h"

namespace platform {

/// The desktop's list of recent files over GLib's bookmark file: recently-used.xbel, which every
/// program of the desktop reads and writes. A document that is noted is registered there under the
/// name "Orvo".
///
/// Entries of other programs are kept, also those that are written while a document is being noted.
/// The list is replaced in one step and keeps its permissions; a new one, and folders made for it,
/// are readable by the user alone. A list that GLib cannot read (damaged, or with elements it does
/// not know), is no ordinary file, may not be written or is larger than kMaxList is left as it is,
/// with one line to the console for each document that is not noted. An empty file counts as an
/// empty list.
///
/// Threads: any, one at a time. Real-time: not safe.
class GLibRecentDocuments : public RecentDocuments {
 public:
  /// In bytes: ten thousand entries. Desktops keep a thousand at most.
  static constexpr std::size_t kMaxList = std::size_t{8} << 20;

  /// The MIME type of a file, by its path; empty for one that recentDocuments() leaves out.
  using MimeTypeOf = std::function<std::string(const std::string& path)>;
  using Clock = std::function<std::chrono::system_clock::time_point()>;

  /// `file` is the list's path. The clock is asked between reading the list and writing it.
  GLibRecentDocuments(std::string file, MimeTypeOf mimeTypeOf,
                      Clock clock = std::chrono::system_clock::now);

  /// Where the desktop keeps its list: in XDG_DATA_HOME, or in ~/.local/share where that is not set
  /// or not an absolute path.
  [[nodiscard]] static std::string desktopFile();

  void noteNewRecentDocument(const std::string& path) override;
  [[nodiscard]] std::vector<std::string> recentDocuments(std::size_t most) const override;

 private:
  enum class Outcome { noted, changedMeanwhile, failed };

  Outcome tryToNote(const std::string& document);
  Outcome replace(const std::string& before, const std::string& after) const;

  const std::string file_;
  const MimeTypeOf mimeTypeOf_;
  const Clock clock_;
};

}  // namespace platform
