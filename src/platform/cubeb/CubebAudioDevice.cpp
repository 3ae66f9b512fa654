#include "platform/cubeb/CubebAudioDevice.h"

#include <utility>

#include "platform/cubeb/CubebConnection.h"
#include "platform/cubeb/CubebStream.h"

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

/// Replaces `connection` unless it is usable for opening a stream.
void connect(std::shared_ptr<CubebConnection>& connection, ModuleConsole* consoleLog) {
  if (connection && connection->isBroken()) {
    connection.reset();
  }
  if (!connection) {
    connection = CubebConnection::make(consoleLog);
  }
}

template <typename Stream, typename Interface, typename Client>
Result<std::unique_ptr<Interface>, AudioStatus> open(std::shared_ptr<CubebConnection>& connection,
                                                     ModuleConsole* consoleLog,
                                                     const char* direction, Client& client) {
  connect(connection, consoleLog);
  if (!connection) {
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

CubebAudioDevice::CubebAudioDevice(ModuleConsole* consoleLog) : consoleLog_(consoleLog) {}
CubebAudioDevice::~CubebAudioDevice() = default;

AudioDevice::Input CubebAudioDevice::openInput(AudioInputClient& client) {
  return open<CubebInput, AudioInputStream>(input_, consoleLog_, "input", client);
}

AudioDevice::Output CubebAudioDevice::openOutput(AudioOutputClient& client) {
  return open<CubebOutput, AudioOutputStream>(output_, consoleLog_, "output", client);
}

void CubebAudioDevice::prepare() {
  connect(output_, consoleLog_);
}

}  // namespace platform
