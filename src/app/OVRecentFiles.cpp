#include "app/OVRecentFiles.h"

#include "platform/desktop/RecentDocuments.h"
#include "platform/mainloop/MainQueue.h"

void OVRecentFiles::note(const std::string& path) {
  queue_.async([path] { platform::recentDocuments()->noteNewRecentDocument(path); });
  refresh();
}

void OVRecentFiles::refresh() {
  queue_.async([latest = std::weak_ptr(latest_)] {
    const auto files = platform::recentDocuments()->recentDocuments(kShown);
    platform::mainQueue().async([latest, files] {
      if (const auto shown = latest.lock()) {
        *shown = files;
      }
    });
  });
}
