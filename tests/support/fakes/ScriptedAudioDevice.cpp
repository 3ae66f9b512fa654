#include "support/fakes/ScriptedAudioDevice.h"
#include "support/Eventually.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <utility>

namespace platform {

namespace {
constexpr std::size_t kChannels = 2;
}  // namespace

/// The test's end of an input stream.
struct ScriptedAudioDevice::InputEnd {
  explicit InputEnd(AudioInputClient& itsClient) : client(itsClient) {}

  // Held during every call of the client, so that closing waits for it.
  std::mutex calling;
  AudioInputClient& client;
  bool ended = false;  // guarded by calling
};

struct ScriptedAudioDevice::OutputEnd {
  explicit OutputEnd(AudioOutputClient& itsClient) : client(itsClient) {}

  std::mutex calling;
  AudioOutputClient& client;
  // guarded by calling
  bool ended = false;
  bool running = false;
  std::uint64_t pulled = 0;  // frames
  std::uint64_t heard = 0;   // frames
};

/// Shared by the device and its streams. Lock order: mutex is never taken while an end's `calling`
/// is held.
struct ScriptedAudioDevice::Script {
  mutable std::mutex mutex;
  mutable std::condition_variable changed;
  // guarded by mutex
  bool hanging = false;
  bool listingHangs = false;
  std::size_t blocked = 0;  // calls waiting for release()
  AudioStatus openingInput = kAudioStatusOk;
  AudioStatus openingOutput = kAudioStatusOk;
  AudioStatus startingOutput = kAudioStatusOk;
  std::shared_ptr<InputEnd> input;                  // null while none is open
  std::vector<std::shared_ptr<OutputEnd>> outputs;  // null where closed
  std::size_t inputsOpened = 0;
  std::size_t inputsClosed = 0;
  std::size_t inputsRefused = 0;
  std::size_t outputsClosed = 0;
  std::size_t preparations = 0;
  std::optional<std::vector<AudioInputDevice>> inputs{
      {{.id = "mic", .name = "Microphone", .isMonitor = false, .isDefault = true}}};
  std::string currentInput = "mic";
  std::function<void()> inputsChanged;
  std::size_t looksAtInputs = 0;

  /// Every device call starts with this.
  void pass(bool isListing = false) {
    std::unique_lock lock(mutex);
    ++blocked;
    changed.notify_all();
    changed.wait(lock, [&] { return !hanging && !(isListing && listingHangs); });
    --blocked;
  }

  template <typename Change>
  void change(Change apply) {
    {
      const std::lock_guard lock(mutex);
      apply();
    }
    changed.notify_all();
  }

  template <typename Value>
  auto look(Value value) const {
    const std::lock_guard lock(mutex);
    return value();
  }

  template <typename Condition>
  bool await(Condition condition) const {
    std::unique_lock lock(mutex);
    return changed.wait_for(lock, support::kPatience, condition);
  }

  std::shared_ptr<OutputEnd> output(std::size_t stream) const {
    const std::lock_guard lock(mutex);
    if (stream != kNewest) {
      return stream < outputs.size() ? outputs[stream] : nullptr;
    }
    const auto open = std::find_if(outputs.rbegin(), outputs.rend(),
                                   [](const auto& end) { return end != nullptr; });
    return open == outputs.rend() ? nullptr : *open;
  }

  bool isRunning(std::size_t stream) const {
    const auto end = output(stream);
    if (!end) {
      return false;
    }
    const std::lock_guard lock(end->calling);
    return end->running && !end->ended;
  }

  bool awaitRunning(std::size_t stream, bool running) const {
    const auto giveUp = std::chrono::steady_clock::now() + support::kPatience;
    while (isRunning(stream) != running) {
      std::unique_lock lock(mutex);
      // Polls, since isRunning() cannot be called under this lock.
      changed.wait_for(lock, std::chrono::milliseconds(1));
      if (std::chrono::steady_clock::now() > giveUp) {
        return false;
      }
    }
    return true;
  }
};

class ScriptedAudioDevice::InputStream final : public AudioInputStream {
 public:
  InputStream(std::shared_ptr<Script> script, std::shared_ptr<InputEnd> end)
      : script_(std::move(script)), end_(std::move(end)) {}

  [[nodiscard]] std::string currentInput() override {
    script_->pass();
    return script_->look([this] { return script_->currentInput; });
  }

  ~InputStream() override {
    script_->pass();
    {
      const std::lock_guard lock(end_->calling);
      end_->ended = true;
    }
    script_->change([this] {
      if (script_->input == end_) {
        script_->input = nullptr;
      }
      ++script_->inputsClosed;
    });
  }

 private:
  const std::shared_ptr<Script> script_;
  const std::shared_ptr<InputEnd> end_;
};

class ScriptedAudioDevice::OutputStream final : public AudioOutputStream {
 public:
  OutputStream(std::shared_ptr<Script> script, std::shared_ptr<OutputEnd> end)
      : script_(std::move(script)), end_(std::move(end)) {}

  ~OutputStream() override {
    script_->pass();
    {
      const std::lock_guard lock(end_->calling);
      end_->ended = true;
    }
    script_->change([this] {
      std::replace(script_->outputs.begin(), script_->outputs.end(), end_,
                   std::shared_ptr<OutputEnd>());
      ++script_->outputsClosed;
    });
  }

  [[nodiscard]] AudioStatus start() override {
    script_->pass();
    const AudioStatus status = script_->look([this] { return script_->startingOutput; });
    if (status == kAudioStatusOk) {
      setRunning(true);
    }
    return status;
  }

  [[nodiscard]] AudioStatus stop() override {
    script_->pass();
    setRunning(false);
    return kAudioStatusOk;
  }

  [[nodiscard]] std::uint64_t position() override {
    script_->pass();
    const std::lock_guard lock(end_->calling);
    return end_->heard;
  }

 private:
  void setRunning(bool running) {
    {
      const std::lock_guard lock(end_->calling);
      end_->running = running;
    }
    script_->changed.notify_all();
  }

  const std::shared_ptr<Script> script_;
  const std::shared_ptr<OutputEnd> end_;
};

ScriptedAudioDevice::ScriptedAudioDevice() : script_(std::make_shared<Script>()) {}

ScriptedAudioDevice::~ScriptedAudioDevice() = default;

AudioDevice::Input ScriptedAudioDevice::openInput(AudioInputClient& client) {
  script_->pass();
  AudioStatus status = kAudioStatusOk;
  std::shared_ptr<InputEnd> end;
  script_->change([&] {
    status = script_->openingInput;
    if (status != kAudioStatusOk) {
      ++script_->inputsRefused;
      return;
    }
    end = std::make_shared<InputEnd>(client);
    script_->input = end;
    ++script_->inputsOpened;
  });
  if (!end) {
    return status;
  }
  return std::make_unique<InputStream>(script_, end);
}

AudioDevice::Output ScriptedAudioDevice::openOutput(AudioOutputClient& client) {
  script_->pass();
  AudioStatus status = kAudioStatusOk;
  std::shared_ptr<OutputEnd> end;
  script_->change([&] {
    status = script_->openingOutput;
    if (status == kAudioStatusOk) {
      end = std::make_shared<OutputEnd>(client);
      script_->outputs.push_back(end);
    }
  });
  if (!end) {
    return status;
  }
  return std::make_unique<OutputStream>(script_, end);
}

void ScriptedAudioDevice::prepare() {
  script_->pass();
  script_->change([this] { ++script_->preparations; });
}

void ScriptedAudioDevice::setInputsChangedHandler(std::function<void()> changed) {
  script_->change([&] { script_->inputsChanged = std::move(changed); });
}

std::optional<std::vector<AudioInputDevice>> ScriptedAudioDevice::inputs() {
  script_->pass(true);
  std::optional<std::vector<AudioInputDevice>> inputs;
  script_->change([&] {
    ++script_->looksAtInputs;
    inputs = script_->inputs;
  });
  return inputs;
}

void ScriptedAudioDevice::setInputsSilently(std::optional<std::vector<AudioInputDevice>> inputs) {
  script_->change([&] { script_->inputs = std::move(inputs); });
}

void ScriptedAudioDevice::setInputs(std::optional<std::vector<AudioInputDevice>> inputs) {
  setInputsSilently(std::move(inputs));
  const auto changed = script_->look([this] { return script_->inputsChanged; });
  if (changed) {
    changed();
  }
}

void ScriptedAudioDevice::moveInput(const std::string& id) {
  script_->change([&] { script_->currentInput = id; });
}

void ScriptedAudioDevice::hangListing() {
  script_->change([this] { script_->listingHangs = true; });
}

std::size_t ScriptedAudioDevice::looksAtInputs() const {
  return script_->look([this] { return script_->looksAtInputs; });
}

bool ScriptedAudioDevice::feed(const float* samples, std::uint32_t frames) {
  const auto end = script_->look([this] { return script_->input; });
  if (!end) {
    return false;
  }
  const std::lock_guard lock(end->calling);
  if (end->ended) {
    return false;
  }
  end->client.deviceCaptured(samples, frames);
  return true;
}

bool ScriptedAudioDevice::feed(const std::vector<float>& samples) {
  return feed(samples.data(), static_cast<std::uint32_t>(samples.size() / kChannels));
}

bool ScriptedAudioDevice::feedConstant(std::uint32_t frames, float left, float right) {
  std::vector<float> samples(std::size_t{frames} * kChannels);
  for (std::size_t i = 0; i < samples.size(); i += kChannels) {
    samples[i] = left;
    samples[i + 1] = right;
  }
  return feed(samples);
}

void ScriptedAudioDevice::failInput(AudioStatus status) {
  const auto end = script_->look([this] { return script_->input; });
  if (end) {
    const std::lock_guard lock(end->calling);
    if (!std::exchange(end->ended, true)) {
      end->client.deviceInputFailed(status);
    }
  }
}

void ScriptedAudioDevice::failOpeningInput(AudioStatus status) {
  script_->change([&] { script_->openingInput = status; });
}

bool ScriptedAudioDevice::isInputOpen() const {
  return script_->look([this] { return script_->input != nullptr; });
}

bool ScriptedAudioDevice::awaitInputOpen() const {
  return script_->await([this] { return script_->input != nullptr; });
}

bool ScriptedAudioDevice::awaitInputClosed() const {
  return script_->await([this] { return script_->input == nullptr; });
}

std::size_t ScriptedAudioDevice::inputsOpened() const {
  return script_->look([this] { return script_->inputsOpened; });
}

std::size_t ScriptedAudioDevice::inputsClosed() const {
  return script_->look([this] { return script_->inputsClosed; });
}

std::size_t ScriptedAudioDevice::inputsRefused() const {
  return script_->look([this] { return script_->inputsRefused; });
}

std::vector<float> ScriptedAudioDevice::pull(std::uint32_t frames, std::size_t stream) {
  const auto end = script_->output(stream);
  if (!end) {
    return {};
  }
  const std::lock_guard lock(end->calling);
  if (end->ended || !end->running) {
    return {};
  }
  // A value that the client must overwrite.
  std::vector<float> samples(std::size_t{frames} * kChannels, -1000.0F);
  end->client.deviceWants(samples.data(), frames);
  end->pulled += frames;
  return samples;
}

void ScriptedAudioDevice::hear(std::uint64_t frames, std::size_t stream) {
  if (const auto end = script_->output(stream)) {
    const std::lock_guard lock(end->calling);
    end->heard += std::min(frames, end->pulled - end->heard);
  }
}

void ScriptedAudioDevice::hearEverything(std::size_t stream) {
  if (const auto end = script_->output(stream)) {
    const std::lock_guard lock(end->calling);
    end->heard = end->pulled;
  }
}

void ScriptedAudioDevice::failOutput(AudioStatus status, std::size_t stream) {
  if (const auto end = script_->output(stream)) {
    const std::lock_guard lock(end->calling);
    if (!std::exchange(end->ended, true)) {
      end->client.deviceOutputFailed(status);
    }
  }
}

void ScriptedAudioDevice::failOpeningOutput(AudioStatus status) {
  script_->change([&] { script_->openingOutput = status; });
}

void ScriptedAudioDevice::failStartingOutput(AudioStatus status) {
  script_->change([&] { script_->startingOutput = status; });
}

bool ScriptedAudioDevice::isOutputRunning(std::size_t stream) const {
  return script_->isRunning(stream);
}

bool ScriptedAudioDevice::awaitOutputRunning(std::size_t stream) const {
  return script_->awaitRunning(stream, true);
}

bool ScriptedAudioDevice::awaitOutputStopped(std::size_t stream) const {
  return script_->awaitRunning(stream, false);
}

std::size_t ScriptedAudioDevice::outputsOpened() const {
  return script_->look([this] { return script_->outputs.size(); });
}

std::size_t ScriptedAudioDevice::outputsClosed() const {
  return script_->look([this] { return script_->outputsClosed; });
}

bool ScriptedAudioDevice::awaitOutputsClosed(std::size_t count) const {
  return script_->await([&] { return script_->outputsClosed >= count; });
}

void ScriptedAudioDevice::hang() {
  script_->change([this] { script_->hanging = true; });
}

void ScriptedAudioDevice::release() {
  script_->change([this] { script_->hanging = script_->listingHangs = false; });
}

bool ScriptedAudioDevice::awaitHanging() const {
  return script_->await(
      [this] { return (script_->hanging || script_->listingHangs) && script_->blocked > 0; });
}

std::size_t ScriptedAudioDevice::preparations() const {
  return script_->look([this] { return script_->preparations; });
}

}  // namespace platform
