#include "platform/cubeb/CubebAudioDevice.h"

#include <utility>

#include "platform/cubeb/CubebConnection.h"
#include "platform/cubeb/CubebStream.h"
#include "platform/cubeb/RetiredConnections.h"

namespace platform {

namespace {

void captured(void* client, const void* samples, void*, std::uint32_t frames) noexcept {
  static_cast<AudioInputClient*>(client)->deviceCaptured(static_cast<const float*>(samples),
                                                         frames);
}

void inputDied(void* client) noexcept {
  static_cast<AudioInputClient*>(client)->deviceInputFailed(kDeviceLostStatus);
}

void wanted(void* client, const void*, void* samples, std::uint32_t frames) noexcept {
  static_cast<AudioOutputClient*>(client)->deviceWants(static_cast<float*>(samples), frames);
}

void outputDied(void* client) noexcept {
  static_cast<AudioOutputClient*>(client)->deviceOutputFailed(kDeviceLostStatus);
}

class CubebInput final : public AudioInputStream {
 public:
  CubebInput(AudioInputClient& client, std::shared_ptr<CubebConnection> connection)
      : stream_(std::move(connection), CubebStream::Direction::kInput, &client, captured,
                inputDied) {}

  [[nodiscard]] CubebStream& stream() { return stream_; }

  [[nodiscard]] std::string currentInput() override { return stream_.currentInput(); }

 private:
  CubebStream stream_;
};

class CubebOutput final : public AudioOutputStream {
 public:
  CubebOutput(AudioOutputClient& client, std::shared_ptr<CubebConnection> connection)
      : stream_(std::move(connection), CubebStream::Direction::kOutput, &client, wanted,
                outputDied) {}

  [[nodiscard]] CubebStream& stream() { return stream_; }

  [[nodiscard]] AudioStatus start() override { return stream_.start(); }
  [[nodiscard]] AudioStatus stop() override { return stream_.stop(); }
  [[nodiscard]] std::uint64_t position() override { return stream_.position(); }

 private:
  CubebStream stream_;
};

template <typename Stream, typename Interface, typename Client>
Result<std::unique_ptr<Interface>, AudioStatus> open(std::shared_ptr<CubebConnection>& connection,
                                                     ModuleConsole* consoleLog,
                                                     const char* direction, Client& client) {
  if (!connection) {
    consoleLog("No sound system could be reached");
    return kDeviceUnavailableStatus;
  }
  auto opened = std::make_unique<Stream>(client, connection);
  const AudioStatus status = opened->stream().open(CubebAudioDevice::kLatencyFrames);
  if (status != kAudioStatusOk) {
    connection->logFailure(direction, status);
    opened.reset();
    connection.reset();
    return status;
  }
  return opened;
}

}  // namespace

CubebAudioDevice::CubebAudioDevice(ModuleConsole* consoleLog,
                                   std::function<std::chrono::steady_clock::time_point()> now)
    : consoleLog_(consoleLog), retired_(std::make_shared<RetiredConnections>(std::move(now))) {}
CubebAudioDevice::~CubebAudioDevice() = default;

AudioDevice::Input CubebAudioDevice::openInput(AudioInputClient& client) {
  connectInput();
  return open<CubebInput, AudioInputStream>(input_, consoleLog_, "input", client);
}

AudioDevice::Output CubebAudioDevice::openOutput(AudioOutputClient& client) {
  connect(output_);
  return open<CubebOutput, AudioOutputStream>(output_, consoleLog_, "output", client);
}

void CubebAudioDevice::prepare() {
  connect(output_);
}

void CubebAudioDevice::setInputsChangedHandler(std::function<void()> changed) {
  inputsChanged_ = std::move(changed);
}

std::optional<std::vector<AudioInputDevice>> CubebAudioDevice::inputs() {
  connectInput();
  const auto inputs = input_ ? input_->inputs() : std::nullopt;
  // The list of a dead server is empty, without an error. Also such a list of a living one costs no
  // more than a connection with every look.
  if (input_ && (!inputs || inputs->empty() || input_->isLastResort())) {
    input_->markBroken();  // the next call connects anew, perhaps to a server that is back
  }
  retired_->endQuietOnes();
  return inputs;
}

bool CubebAudioDevice::connect(std::shared_ptr<CubebConnection>& connection) {
  if (connection && connection->isBroken()) {
    connection.reset();
  }
  if (connection) {
    return false;
  }
  auto made = CubebConnection::make(consoleLog_);
  if (!made) {
    return false;
  }
  connection = std::shared_ptr<CubebConnection>(
      made.release(), [retired = retired_](CubebConnection* unused) {
        retired->take(std::unique_ptr<CubebConnection>(unused));
      });
  return true;
}

void CubebAudioDevice::connectInput() {
  if (connect(input_)) {
    input_->notifyOfInputs(inputsChanged_);
  }
}

}  // namespace platform
