#include "platform/desktop/SleepInhibitor.h"

#include <cstdio>

namespace platform {
namespace {

class StandardErrorInhibitor : public SleepInhibitor {
 public:
  std::unique_ptr<Hold> hold(const QString& reason) override {
    std::fprintf(stderr, "nothing keeps the machine awake: %s\n", qUtf8Printable(reason));
    return std::make_unique<Hold>();
  }
};

}  // namespace

std::shared_ptr<SleepInhibitor> SleepInhibitor::whenNoneIsInstalled() {
  return std::make_shared<StandardErrorInhibitor>();
}

}  // namespace platform
