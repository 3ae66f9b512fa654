#include "platform/RecentDocuments.h"

#include <utility>

#include "platform/XbelRecentDocuments.h"

namespace platform {
namespace {

RecentDocuments*& installed() {
  static XbelRecentDocuments desktop(XbelRecentDocuments::desktopFile());
  static RecentDocuments* documents = &desktop;
  return documents;
}

}  // namespace

RecentDocuments& recentDocuments() {
  return *installed();
}

RecentDocumentsInstallation::RecentDocumentsInstallation(RecentDocuments& documents)
    : previous_(std::exchange(installed(), &documents)) {}

RecentDocumentsInstallation::~RecentDocumentsInstallation() {
  installed() = previous_;
}

}  // namespace platform
