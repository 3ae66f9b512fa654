#pragma once

#include <pthread.h>

#include <cstddef>

namespace support {

/// While one lives, no thread can be created in this process: the default stack is larger than any
/// memory. Running threads continue. Works only where a program can set the default stack size; see
/// isInForce().
///
/// Threads: one; no other may create threads meanwhile.
class NoMoreThreads {
 public:
#if defined(__GLIBC__)
  NoMoreThreads() {
    pthread_attr_t huge;
    pthread_attr_init(&huge);
    pthread_attr_setstacksize(&huge, std::size_t{1} << 60);
    inForce_ = pthread_getattr_default_np(&usual_) == 0 && pthread_setattr_default_np(&huge) == 0;
    pthread_attr_destroy(&huge);
  }
  ~NoMoreThreads() {
    if (inForce_) {
      pthread_setattr_default_np(&usual_);
    }
    pthread_attr_destroy(&usual_);
  }
#else
  NoMoreThreads() = default;
#endif
  NoMoreThreads(const NoMoreThreads&) = delete;
  NoMoreThreads& operator=(const NoMoreThreads&) = delete;

  [[nodiscard]] bool isInForce() const {
    return inForce_;
  }

 private:
#if defined(__GLIBC__)
  pthread_attr_t usual_ = {};
#endif
  bool inForce_ = false;
};

}  // namespace support
