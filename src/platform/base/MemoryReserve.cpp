#include "platform/base/MemoryReserve.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <new>

namespace platform {
namespace {

// Filled and emptied by any thread. A piece that is taken from here belongs to whoever took it.
std::array<std::atomic<void*>, MemoryReserve::kPieces> pieces;
// Written by the main thread before and after all others allocate.
std::new_handler former = nullptr;
bool isHeld = false;

std::atomic<unsigned> given{0};

// Runs on the thread whose allocation failed, with any locks held.
void giveAway() {
  for (std::atomic<void*>& piece : pieces) {
    if (void* const memory = piece.exchange(nullptr, std::memory_order_acq_rel)) {
      std::free(memory);
      given.fetch_add(1, std::memory_order_release);
      return;
    }
  }
  // Perhaps only this one asked for too much: the others keep their reserve.
  static_cast<void>(MemoryReserve::restore());
  throw std::bad_alloc();
}

}  // namespace

MemoryReserve::MemoryReserve() {
  isHeld = true;
  static_cast<void>(restore());
  former = std::set_new_handler(giveAway);
}

MemoryReserve::~MemoryReserve() {
  std::set_new_handler(former);
  isHeld = false;
  for (std::atomic<void*>& piece : pieces) {
    std::free(piece.exchange(nullptr, std::memory_order_acq_rel));
  }
}

unsigned MemoryReserve::shortages() noexcept {
  return given.load(std::memory_order_acquire);
}

bool MemoryReserve::restore() noexcept {
  return !isHeld || std::all_of(pieces.begin(), pieces.end(), [](std::atomic<void*>& piece) {
    if (piece.load(std::memory_order_acquire) != nullptr) {
      return true;
    }
    void* const memory = std::malloc(kPieceBytes);
    void* missing = nullptr;
    if (!piece.compare_exchange_strong(missing, memory, std::memory_order_acq_rel)) {
      std::free(memory);  // another thread was faster
      return true;
    }
    return memory != nullptr;
  });
}

}  // namespace platform
