// What the compiler calls at each access to memory of code that is compiled for ThreadSanitizer;
// its own runtime is not linked. Every atomic operation is a step.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

#include <malloc.h>

#include "interleavings/AllOrders.h"
#include "interleavings/RaceWatch.h"

using interleavings::Use;
using interleavings::use;

namespace {

bool acquires(int order) {
  return order == __ATOMIC_ACQUIRE || order == __ATOMIC_CONSUME || order == __ATOMIC_ACQ_REL ||
         order == __ATOMIC_SEQ_CST;
}

bool releases(int order) {
  return order == __ATOMIC_RELEASE || order == __ATOMIC_ACQ_REL || order == __ATOMIC_SEQ_CST;
}

void afterLoad(const volatile void* place, int order) {
  if (acquires(order)) {
    interleavings::acquire(place);
  }
}

void afterStore(const volatile void* place, int order) {
  releases(order) ? interleavings::release(place) : interleavings::forgetRelease(place);
}

void afterChange(const volatile void* place, int order) {
  afterLoad(place, order);
  if (releases(order)) {
    interleavings::releaseToo(place);
  }
}

}  // namespace

#define ORVO_CALLER __builtin_return_address(0)

// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
extern "C" {

void __tsan_init() {}
void __tsan_func_entry(void*) {}
void __tsan_func_exit() {}
void __tsan_vptr_update(void*, void*) {}
void __tsan_vptr_read(void*) {}
void __tsan_read_range(void* place, std::size_t size) {
  use(Use::read, place, size, ORVO_CALLER);
}
void __tsan_write_range(void* place, std::size_t size) {
  use(Use::write, place, size, ORVO_CALLER);
}
void* __tsan_memcpy(void* to, const void* from, std::size_t size) {
  use(Use::read, from, size, ORVO_CALLER);
  use(Use::write, to, size, ORVO_CALLER);
  return std::memcpy(to, from, size);
}
void* __tsan_memmove(void* to, const void* from, std::size_t size) {
  use(Use::read, from, size, ORVO_CALLER);
  use(Use::write, to, size, ORVO_CALLER);
  return std::memmove(to, from, size);
}
void* __tsan_memset(void* to, int value, std::size_t size) {
  use(Use::write, to, size, ORVO_CALLER);
  return std::memset(to, value, size);
}

#define ORVO_USE(size)                                  \
  void __tsan_read##size(void* place) {                 \
    use(Use::read, place, size, ORVO_CALLER);           \
  }                                                     \
  void __tsan_write##size(void* place) {                \
    use(Use::write, place, size, ORVO_CALLER);          \
  }                                                     \
  void __tsan_read_write##size(void* place) {           \
    use(Use::write, place, size, ORVO_CALLER);          \
  }                                                     \
  void __tsan_unaligned_read##size(void* place) {       \
    use(Use::read, place, size, ORVO_CALLER);           \
  }                                                     \
  void __tsan_unaligned_write##size(void* place) {      \
    use(Use::write, place, size, ORVO_CALLER);          \
  }                                                     \
  void __tsan_unaligned_read_write##size(void* place) { \
    use(Use::write, place, size, ORVO_CALLER);          \
  }
ORVO_USE(1)
ORVO_USE(2)
ORVO_USE(4)
ORVO_USE(8)
ORVO_USE(16)
#undef ORVO_USE

// No tested code has one; what it orders would not be known.
void __tsan_atomic_thread_fence(int) {
  std::abort();
}
void __tsan_atomic_signal_fence(int) {}

// Our own code has no operations that acquire and release; std::shared_ptr counts its owners by
// them, whose order changes nothing: they are watched, but are no steps.
#define ORVO_CHANGE(bits, name)                                                            \
  std::uint##bits##_t __tsan_atomic##bits##_##name(volatile std::uint##bits##_t* place,    \
                                                   std::uint##bits##_t value, int order) { \
    if (order != __ATOMIC_ACQ_REL) {                                                       \
      interleavings::step();                                                               \
    }                                                                                      \
    afterChange(place, order);                                                             \
    return __atomic_##name(place, value, __ATOMIC_SEQ_CST);                                \
  }
#define ORVO_EXCHANGE(bits)                                                                  \
  std::uint##bits##_t __tsan_atomic##bits##_exchange(volatile std::uint##bits##_t* place,    \
                                                     std::uint##bits##_t value, int order) { \
    interleavings::step();                                                                   \
    afterChange(place, order);                                                               \
    return __atomic_exchange_n(place, value, __ATOMIC_SEQ_CST);                              \
  }
#define ORVO_EXCHANGE_IF(bits, name)                                                         \
  int __tsan_atomic##bits##_##name(volatile std::uint##bits##_t* place,                      \
                                   std::uint##bits##_t* expected, std::uint##bits##_t value, \
                                   int order, int orderOfFailure) {                          \
    interleavings::step();                                                                   \
    const bool changes = __atomic_compare_exchange_n(place, expected, value, false,          \
                                                     __ATOMIC_SEQ_CST, __ATOMIC_SEQ_CST);    \
    changes ? afterChange(place, order) : afterLoad(place, orderOfFailure);                  \
    return changes;                                                                          \
  }
#define ORVO_ATOMIC(bits)                                                                          \
  std::uint##bits##_t __tsan_atomic##bits##_load(const volatile std::uint##bits##_t* place,        \
                                                 int order) {                                      \
    interleavings::step();                                                                         \
    afterLoad(place, order);                                                                       \
    return __atomic_load_n(place, __ATOMIC_SEQ_CST);                                               \
  }                                                                                                \
  void __tsan_atomic##bits##_store(volatile std::uint##bits##_t* place, std::uint##bits##_t value, \
                                   int order) {                                                    \
    interleavings::step();                                                                         \
    afterStore(place, order);                                                                      \
    __atomic_store_n(place, value, __ATOMIC_SEQ_CST);                                              \
  }                                                                                                \
  ORVO_EXCHANGE(bits)                                                                              \
  ORVO_CHANGE(bits, fetch_add)                                                                     \
  ORVO_CHANGE(bits, fetch_sub)                                                                     \
  ORVO_CHANGE(bits, fetch_and)                                                                     \
  ORVO_CHANGE(bits, fetch_or)                                                                      \
  ORVO_CHANGE(bits, fetch_xor)                                                                     \
  ORVO_EXCHANGE_IF(bits, compare_exchange_strong)                                                  \
  ORVO_EXCHANGE_IF(bits, compare_exchange_weak)
ORVO_ATOMIC(8)
ORVO_ATOMIC(16)
ORVO_ATOMIC(32)
ORVO_ATOMIC(64)
#undef ORVO_ATOMIC
#undef ORVO_EXCHANGE_IF
#undef ORVO_EXCHANGE
#undef ORVO_CHANGE

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)

// Memory that is freed belongs to nobody.
void operator delete(void* place) noexcept {
  interleavings::forget(place, ::malloc_usable_size(place));
  std::free(place);
}
void operator delete(void* place, std::size_t) noexcept {
  operator delete(place);
}
void operator delete(void* place, std::align_val_t) noexcept {
  operator delete(place);
}
void operator delete(void* place, std::size_t, std::align_val_t) noexcept {
  operator delete(place);
}
