#include "platform/sound/InputSourceTracker.h"

#include <algorithm>
#include <utility>

namespace platform {

namespace {

using Kind = AudioInputSource::Kind;

AudioInputSource sourceOf(const AudioInputDevice& input, bool isOpen) {
  return {.kind = input.isMonitor ? Kind::kMonitor : Kind::kMicrophone,
          .isOpen = isOpen,
          .id = input.id,
          .name = input.name};
}

// Of an input that the list does not have: it works, so it is there.
AudioInputSource unlisted(const std::string& id) {
  return {.kind = Kind::kUnknown, .isOpen = true, .id = id, .name = {}};
}

}  // namespace

void InputSourceTracker::opened(AudioDevice& device, AudioInputStream& stream) {
  const std::string id = stream.currentInput();
  const auto inputs = device.inputs();
  const AudioInputDevice* const input = inputs ? find(*inputs, id) : nullptr;
  isListed_ = input != nullptr;
  setSource(input != nullptr ? sourceOf(*input, true) : unlisted(id));
}

void InputSourceTracker::closed(AudioDevice& device) {
  isListed_ = false;
  setSource(standardOf(device.inputs().value_or(Inputs())));
}

InputSourceTracker::Change InputSourceTracker::look(AudioDevice& device, AudioInputStream& stream,
                                                    bool inputsChanged) {
  const std::string id = stream.currentInput();
  const AudioInputSource former = source();
  const bool moved = !id.empty() && id != former.id;
  if (!moved && !inputsChanged) {
    return Change::kNone;
  }
  const auto inputs = device.inputs();
  if (!inputs) {
    return Change::kNone;  // the stream's own error will say why, or the next look
  }
  if (isListed_ && find(*inputs, former.id) == nullptr) {
    setLost();
    setSource(standardOf(*inputs));
    return Change::kLost;
  }
  if (!moved) {
    return Change::kNone;
  }
  const AudioInputDevice* const input = find(*inputs, id);
  isListed_ = input != nullptr;
  setSource(input != nullptr ? sourceOf(*input, true) : unlisted(id));
  return Change::kMoved;
}

AudioInputSource InputSourceTracker::source() const {
  const MutexLock lock(mutex_);
  return source_;
}

AudioInputSource InputSourceTracker::lost() const {
  const MutexLock lock(mutex_);
  return lost_;
}

void InputSourceTracker::setLost() {
  const MutexLock lock(mutex_);
  if (source_ != AudioInputSource()) {  // otherwise it was lost already
    lost_ = std::exchange(source_, {});
    revision_.fetch_add(1, std::memory_order_release);
  }
}

void InputSourceTracker::setSource(AudioInputSource source) {
  const MutexLock lock(mutex_);
  if (source != source_) {
    source_ = std::move(source);
    revision_.fetch_add(1, std::memory_order_release);
  }
}

AudioInputSource InputSourceTracker::standardOf(const Inputs& inputs) {
  if (inputs.empty()) {
    return {.kind = Kind::kNone, .isOpen = false, .id = {}, .name = {}};
  }
  const auto standard =
      std::find_if(inputs.begin(), inputs.end(), [](const auto& input) { return input.isDefault; });
  return sourceOf(standard == inputs.end() ? inputs.front() : *standard, false);
}

const AudioInputDevice* InputSourceTracker::find(const Inputs& inputs, const std::string& id) {
  const auto found =
      std::find_if(inputs.begin(), inputs.end(), [&](const auto& input) { return input.id == id; });
  return found == inputs.end() ? nullptr : &*found;
}

}  // namespace platform
