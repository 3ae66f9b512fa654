#pragma once

#include <functional>
#include <string>

/// What the application does about events of a document; any may be empty.
///
/// Threads: main. Real-time: not safe.
struct OVDocumentEvents {
  /// The document was saved to the file at this path.
  std::function<void(const std::string& path)> saved;
  /// The file that was to be opened gave nothing, and the user has answered the alert about it. The
  /// document is empty and has no file. The window may be closed.
  std::function<void()> nothingOpened;
};
