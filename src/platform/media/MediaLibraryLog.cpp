#include "platform/media/MediaLibraryLog.h"

#include <array>
#include <cstdarg>
#include <mutex>
#include <utility>

#include "platform/base/ApplicationServices.h"
#include "platform/media/MediaFunctions.h"

namespace platform {
namespace {

constexpr std::size_t kMaxLine = 1000;  // bytes

thread_local MediaLibraryLog::Budget* currentBudget = nullptr;

void receive(void* object, int level, const char* format, std::va_list arguments) {
  if (level > AV_LOG_WARNING || currentBudget == nullptr) {
    return;
  }
  std::array<char, kMaxLine> text{};
  // Without the library's prefix, which is an address of memory.
  int printPrefix = 0;
  if (av_log_format_line2(object, level, format, arguments, text.data(),
                          static_cast<int>(text.size()), &printPrefix) >= 0) {
    MediaLibraryLog::append(text.data());
  }
}

}  // namespace

MediaLibraryLog::Scope::Scope(Budget& budget) : previous_(std::exchange(currentBudget, &budget)) {
  static std::once_flag installed;
  std::call_once(installed, [] { av_log_set_callback(receive); });
}

MediaLibraryLog::Scope::~Scope() {
  currentBudget = previous_;
}

void MediaLibraryLog::append(const std::string& piece) {
  Budget* const budget = currentBudget;
  if (budget == nullptr || budget->linesLeft_ == 0) {
    return;
  }
  budget->unfinished_ += piece;
  std::size_t end = 0;
  while ((end = budget->unfinished_.find_first_of("\n\r")) != std::string::npos) {
    flushLine(*budget, budget->unfinished_.substr(0, end));
    budget->unfinished_.erase(0, end + 1);
  }
  if (budget->unfinished_.size() > kMaxLine) {
    flushLine(*budget, std::exchange(budget->unfinished_, {}));
  }
}

void MediaLibraryLog::flushLine(Budget& budget, std::string line) {
  if (line.empty() || line == budget.last_ || budget.linesLeft_ == 0) {
    return;
  }
  --budget.linesLeft_;
  ConsoleLog("%s", line.c_str());
  if (budget.linesLeft_ == 0) {
    ConsoleLog("further messages about this file are left out");
    budget.unfinished_.clear();
  }
  budget.last_ = std::move(line);
}

}  // namespace platform
