#include "platform/sound/realtime/InputFanOut.h"

#include <algorithm>
#include <utility>

namespace platform {

InputFanOut::InputFanOut() : current_(nullptr), owned_(std::make_unique<const Sinks>()) {
  current_.store(owned_.get(), std::memory_order_seq_cst);
}

InputFanOut::~InputFanOut() = default;

void InputFanOut::publish(std::unique_ptr<const Sinks> sinks) {
  current_.store(sinks.get(), std::memory_order_seq_cst);
  section_.waitUntilLeft();
  owned_ = std::move(sinks);
}

void InputFanOut::add(InputSink& sink) {
  const MutexLock lock(mutex_);
  auto sinks = std::make_unique<Sinks>(*owned_);
  sinks->push_back(&sink);
  publish(std::move(sinks));
}

void InputFanOut::remove(InputSink& sink) {
  const MutexLock lock(mutex_);
  auto sinks = std::make_unique<Sinks>(*owned_);
  if (std::erase(*sinks, &sink) > 0) {
    publish(std::move(sinks));
  }
}

void InputFanOut::distribute(const float* samples, std::uint32_t frames) noexcept {
  section_.enter();
  for (InputSink* sink : *current_.load(std::memory_order_seq_cst)) {
    sink->captured(samples, frames);
  }
  section_.leave();
}

void InputFanOut::skip(std::uint64_t frames, std::uint64_t capturedSince) noexcept {
  section_.enter();
  for (InputSink* sink : *current_.load(std::memory_order_seq_cst)) {
    sink->skipped(frames, capturedSince);
  }
  section_.leave();
}

}  // namespace platform
