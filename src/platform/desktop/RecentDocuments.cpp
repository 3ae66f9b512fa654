#include "platform/desktop/RecentDocuments.h"

#include <cstdio>

namespace platform {
namespace {

class StandardErrorDocuments : public RecentDocuments {
 public:
  void noteNewRecentDocument(const std::string& path) override {
    std::fprintf(stderr, "recent document: %s\n", path.c_str());
  }
  [[nodiscard]] std::vector<std::string> recentDocuments(std::size_t /*most*/) const override {
    return {};
  }
};

}  // namespace

std::shared_ptr<RecentDocuments> RecentDocuments::whenNoneIsInstalled() {
  return std::make_shared<StandardErrorDocuments>();
}

}  // namespace platform
