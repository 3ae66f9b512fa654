// What the compiler calls at each access to memory of code that is compiled for ThreadSanitizer;
// its own runtime is not linked. Every atomic operation is a step.
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "interleavings/AllOrders.h"

// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
extern "C" {

void __tsan_init() {}
void __tsan_func_entry(void*) {}
void __tsan_func_exit() {}
void __tsan_vptr_update(void*, void*) {}
void __tsan_vptr_read(void*) {}
void __tsan_read_range(void*, std::size_t) {}
void __tsan_write_range(void*, std::size_t) {}
void* __tsan_memcpy(void* to, const void* from, std::size_t size) {
  return std::memcpy(to, from, size);
}
void* __tsan_memmove(void* to, const void* from, std::size_t size) {
  return std::memmove(to, from, size);
}
void* __tsan_memset(void* to, int value, std::size_t size) {
  return std::memset(to, value, size);
}

#define ORVO_ACCESS(size)                     \
  void __tsan_read##size(void*) {}            \
  void __tsan_write##size(void*) {}           \
  void __tsan_read_write##size(void*) {}      \
  void __tsan_unaligned_read##size(void*) {}  \
  void __tsan_unaligned_write##size(void*) {} \
  void __tsan_unaligned_read_write##size(void*) {}
ORVO_ACCESS(1)
ORVO_ACCESS(2)
ORVO_ACCESS(4)
ORVO_ACCESS(8)
ORVO_ACCESS(16)
#undef ORVO_ACCESS

void __tsan_atomic_thread_fence(int) {
  interleavings::step();
}
void __tsan_atomic_signal_fence(int) {}

// Our own code has no operations that acquire and release; std::shared_ptr counts its owners by
// them, whose order changes nothing.
#define ORVO_CHANGE(bits, name)                                                            \
  std::uint##bits##_t __tsan_atomic##bits##_##name(volatile std::uint##bits##_t* place,    \
                                                   std::uint##bits##_t value, int order) { \
    if (order != __ATOMIC_ACQ_REL) {                                                       \
      interleavings::step();                                                               \
    }                                                                                      \
    return __atomic_##name(place, value, __ATOMIC_SEQ_CST);                                \
  }
#define ORVO_ATOMIC(bits)                                                                          \
  std::uint##bits##_t __tsan_atomic##bits##_load(const volatile std::uint##bits##_t* place, int) { \
    interleavings::step();                                                                         \
    return __atomic_load_n(place, __ATOMIC_SEQ_CST);                                               \
  }                                                                                                \
  void __tsan_atomic##bits##_store(volatile std::uint##bits##_t* place, std::uint##bits##_t value, \
                                   int) {                                                          \
    interleavings::step();                                                                         \
    __atomic_store_n(place, value, __ATOMIC_SEQ_CST);                                              \
  }                                                                                                \
  std::uint##bits##_t __tsan_atomic##bits##_exchange(volatile std::uint##bits##_t* place,          \
                                                     std::uint##bits##_t value, int) {             \
    interleavings::step();                                                                         \
    return __atomic_exchange_n(place, value, __ATOMIC_SEQ_CST);                                    \
  }                                                                                                \
  ORVO_CHANGE(bits, fetch_add)                                                                     \
  ORVO_CHANGE(bits, fetch_sub)                                                                     \
  ORVO_CHANGE(bits, fetch_and)                                                                     \
  ORVO_CHANGE(bits, fetch_or)                                                                      \
  ORVO_CHANGE(bits, fetch_xor)                                                                     \
  int __tsan_atomic##bits##_compare_exchange_strong(volatile std::uint##bits##_t* place,           \
                                                    std::uint##bits##_t* expected,                 \
                                                    std::uint##bits##_t value, int, int) {         \
    interleavings::step();                                                                         \
    return __atomic_compare_exchange_n(place, expected, value, false, __ATOMIC_SEQ_CST,            \
                                       __ATOMIC_SEQ_CST);                                          \
  }                                                                                                \
  int __tsan_atomic##bits##_compare_exchange_weak(volatile std::uint##bits##_t* place,             \
                                                  std::uint##bits##_t* expected,                   \
                                                  std::uint##bits##_t value, int, int) {           \
    interleavings::step();                                                                         \
    return __atomic_compare_exchange_n(place, expected, value, false, __ATOMIC_SEQ_CST,            \
                                       __ATOMIC_SEQ_CST);                                          \
  }
ORVO_ATOMIC(8)
ORVO_ATOMIC(16)
ORVO_ATOMIC(32)
ORVO_ATOMIC(64)
#undef ORVO_ATOMIC
#undef ORVO_CHANGE

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
