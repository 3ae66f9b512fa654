#include "platform/ffmpeg/FfmpegLog.h"

#include <array>
#include <cstdarg>
#include <utility>

#include "platform/ffmpeg/Ffmpeg.h"

namespace platform {
namespace {

constexpr std::size_t kMaxLine = 1000;  // bytes

ModuleConsole* console = nullptr;  // fixed after install()
thread_local FfmpegLog::Budget* currentBudget = nullptr;

void receive(void* object, int level, const char* format, std::va_list arguments) {
  if (level > AV_LOG_WARNING || currentBudget == nullptr) {
    return;
  }
  std::array<char, kMaxLine> text{};
  // Without FFmpeg's prefix, which is a memory address.
  int printPrefix = 0;
  if (av_log_format_line2(object, level, format, arguments, text.data(),
                          static_cast<int>(text.size()), &printPrefix) >= 0) {
    FfmpegLog::append(text.data());
  }
}

}  // namespace

void FfmpegLog::install(ModuleConsole* consoleLog) {
  console = consoleLog;
  av_log_set_callback(receive);
}

FfmpegLog::Scope::Scope(Budget& budget) : previous_(std::exchange(currentBudget, &budget)) {}

FfmpegLog::Scope::~Scope() {
  currentBudget = previous_;
}

void FfmpegLog::append(const std::string& piece) {
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

void FfmpegLog::flushLine(Budget& budget, std::string line) {
  if (line.empty() || line == budget.last_ || budget.linesLeft_ == 0) {
    return;
  }
  --budget.linesLeft_;
  console("%s", line.c_str());
  if (budget.linesLeft_ == 0) {
    console("further messages about this file are left out");
    budget.unfinished_.clear();
  }
  budget.last_ = std::move(line);
}

}  // namespace platform
