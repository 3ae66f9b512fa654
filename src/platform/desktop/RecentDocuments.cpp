#include "platform/desktop/RecentDocuments.h"

#include <cstdio>
#include <utility>

namespace platform {
namespace {

class NoRecentDocuments : public RecentDocuments {
 public:
  void noteNewRecentDocument(const std::string& path) override {
    std::fprintf(stderr, "no list of recent files for \"%s\"\n", path.c_str());
  }
  [[nodiscard]] std::vector<std::string> recentDocuments(std::size_t /*most*/) const override {
    return {};
  }
};

RecentDocuments*& installed() {
  static NoRecentDocuments none;
  static RecentDocuments* documents = &none;
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
