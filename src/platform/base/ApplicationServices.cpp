#include "platform/base/ApplicationServices.h"

#include <cstdarg>
#include <cstdio>
#include <vector>

namespace platform {
namespace {

class StandardErrorServices : public ApplicationServices {
 public:
  void showModalAlert(const std::string& title, const std::string& message) override {
    std::fprintf(stderr, "%s: %s\n", title.c_str(), message.c_str());
  }
  void postModalAlert(const std::string& title, const std::string& message) override {
    showModalAlert(title, message);
  }
  void logToConsole(const std::string& text) override {
    std::fprintf(stderr, "%s\n", text.c_str());
  }
  void registerTempFile(const std::string& path) override {
    std::fprintf(stderr, "temporary file: %s\n", path.c_str());
  }
  void cancelTermination() override { std::fprintf(stderr, "quit cancelled\n"); }
};

thread_local int postedAlertsDepth = 0;

}  // namespace

std::shared_ptr<ApplicationServices> ApplicationServices::whenNoneIsInstalled() {
  return std::make_shared<StandardErrorServices>();
}

PostedAlertsScope::PostedAlertsScope() {
  ++postedAlertsDepth;
}
PostedAlertsScope::~PostedAlertsScope() {
  --postedAlertsDepth;
}

}  // namespace platform

void ShowModalAlert(const std::string& title, const std::string& message) {
  const auto services = platform::applicationServices();
  if (platform::postedAlertsDepth > 0) {
    services->postModalAlert(title, message);
  } else {
    services->showModalAlert(title, message);
  }
}

void ShowErrorAlert(const std::error_code& error) {
  ShowModalAlert(error.message(), std::string());
}

void ConsoleLog(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  std::va_list measured;
  va_copy(measured, arguments);
  const int length = std::vsnprintf(nullptr, 0, format, measured);
  va_end(measured);
  std::vector<char> text(length < 0 ? 1 : static_cast<std::size_t>(length) + 1);
  std::vsnprintf(text.data(), text.size(), format, arguments);
  va_end(arguments);
  platform::applicationServices()->logToConsole(text.data());
}
