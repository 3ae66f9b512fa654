#pragma once

#include <sys/resource.h>

#include <csignal>
#include <stdexcept>

namespace support {

/// While it lives, no file of this process grows beyond a size: further writes fail. Threads: main.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) {
    if (::getrlimit(RLIMIT_FSIZE, &before_) != 0) {
      throw std::runtime_error("getrlimit");
    }
    handler_ = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limited = before_;
    limited.rlim_cur = bytes;
    if (::setrlimit(RLIMIT_FSIZE, &limited) != 0) {
      throw std::runtime_error("setrlimit");
    }
  }
  ~FileSizeLimit() {
    ::setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, handler_);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  rlimit before_ = {};
  void (*handler_)(int) = nullptr;
};

}  // namespace support
