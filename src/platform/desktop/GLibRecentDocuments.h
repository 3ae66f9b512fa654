#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "platform/desktop/RecentDocuments.h"

namespace platform {

/// The desktop's list of recent files, recently-used.xbel, through GLib's GBookmarkFile. Every
/// program of the desktop reads and writes it. Documents are registered there under the application
/// name "Orvo".
///
/// Entries of other programs are kept, even those written meanwhile. The list is replaced
/// atomically and keeps its permissions; a new list and its new folders are readable by the user
/// alone. A list is left unchanged, with one console line per document, if GLib cannot parse it
/// (damaged or with unknown elements), it is not a regular file, may not be written, or is larger
/// than kMaxList. An empty file counts as an empty list.
///
/// Threads: any, one at a time. Real-time: not safe.
class GLibRecentDocuments : public RecentDocuments {
 public:
  /// Maximum size in bytes, about ten thousand entries. Desktops keep a thousand at most.
  static constexpr std::size_t kMaxList = std::size_t{8} << 20;

  /// The MIME type of a path; empty for a file that recentDocuments() omits.
  using MimeTypeOf = std::function<std::string(const std::string& path)>;
  using Clock = std::function<std::chrono::system_clock::time_point()>;

  /// `file` is the list's path. The clock is read between reading the list and writing it.
  GLibRecentDocuments(std::string file, MimeTypeOf mimeTypeOf,
                      Clock clock = std::chrono::system_clock::now);

  /// The path of the desktop's list: in XDG_DATA_HOME, or in ~/.local/share if that is unset or not
  /// absolute.
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
