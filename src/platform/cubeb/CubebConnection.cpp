#include "platform/cubeb/CubebConnection.h"

#include <string>
#include <string_view>
#include <thread>
#include <utility>

namespace platform {

namespace {

// The sound servers' name for a source that captures what an output plays.
constexpr std::string_view kMonitorSuffix = ".monitor";

std::string textOf(const char* text) {
  return text == nullptr ? "" : text;
}

AudioInputDevice describe(const cubeb_device_info& info) {
  AudioInputDevice input;
  input.id = textOf(info.device_id);
  input.name = textOf(info.friendly_name);
  input.isMonitor = input.id.ends_with(kMonitorSuffix);
  input.isDefault = (info.preferred & CUBEB_DEVICE_PREF_MULTIMEDIA) != 0;
  return input;
}

}  // namespace

std::unique_ptr<CubebConnection> CubebConnection::make(ModuleConsole* consoleLog) {
  cubeb* context = nullptr;
  if (cubeb_init(&context, "Orvo", nullptr) != CUBEB_OK) {
    return nullptr;
  }
  return std::make_unique<CubebConnection>(context, consoleLog);
}

void CubebConnection::notifyOfInputs(std::function<void()> changed) {
  inputsChanged_ = std::move(changed);
  const auto notify = [](cubeb*, void* self) { static_cast<CubebConnection*>(self)->notice(); };
  if (inputsChanged_) {
    // Optional: without notifications the inputs are looked at from time to time. A backend that
    // can notify has stored the handler even if the server did not answer.
    hasHandler_ = cubeb_register_device_collection_changed(
                      context_, CUBEB_DEVICE_TYPE_INPUT, notify, this) != CUBEB_ERROR_NOT_SUPPORTED;
  }
}

void CubebConnection::notice() noexcept {
  noticesUnderWay_.fetch_add(1);
  notices_.fetch_add(1, std::memory_order_relaxed);
  if (!noticesEnded_.load()) {
    inputsChanged_();
  }
  noticesUnderWay_.fetch_sub(1);
}

void CubebConnection::endNotices() {
  noticesEnded_.store(true);
  while (noticesUnderWay_.load() > 0) {
    std::this_thread::yield();  // the handler is short, and its thread cannot be made to wait
  }
  inputsChanged_ = nullptr;
}

std::optional<std::vector<AudioInputDevice>> CubebConnection::inputs() const {
  cubeb_device_collection collection{};
  if (cubeb_enumerate_devices(context_, CUBEB_DEVICE_TYPE_INPUT, &collection) != CUBEB_OK) {
    return std::nullopt;
  }
  std::vector<AudioInputDevice> inputs;
  for (std::size_t i = 0; i < collection.count; ++i) {
    if (collection.device[i].device_id != nullptr) {
      inputs.push_back(describe(collection.device[i]));
    }
  }
  cubeb_device_collection_destroy(context_, &collection);
  return inputs;
}

CubebConnection::~CubebConnection() {
  if (hasHandler_) {
    cubeb_register_device_collection_changed(context_, CUBEB_DEVICE_TYPE_INPUT, nullptr, nullptr);
  }
  cubeb_destroy(context_);
}

bool CubebConnection::isLastResort() const {
  return std::string_view(cubeb_get_backend_id(context_)) == "alsa";
}

void CubebConnection::logFailure(const char* direction, AudioStatus status) const {
  consoleLog_("No sound %s could be opened through \"%s\" (%d)%s", direction,
              cubeb_get_backend_id(context_), status,
              isLastResort() ? "; no sound server was found" : "");
}

}  // namespace platform
