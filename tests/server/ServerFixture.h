#pragma once

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <unistd.h>

#include <gtest/gtest.h>

#include "platform/sound/AudioQueue.h"
#include "platform/sound/DeviceAudioQueues.h"
#include "platform/sound/LateAudioDevice.h"
#include "storage/OVBlockBuffer.h"
#include "support/RawAudio.h"
#include "support/TemporaryFolder.h"
#include "support/fakes/RecordingServices.h"
#include "support/programs/PrivateSoundServer.h"

namespace testserver {

inline constexpr std::uint64_t kFrameBytes = platform::kWorkingFormat.mBytesPerFrame;

/// Frames of a second of audio.
inline constexpr std::size_t kSecond = support::kFramesPerSecond;

/// All samples of a buffer.
inline support::Samples contents(OVAudioBufferInterface& buffer) {
  support::Samples samples(buffer.bufferSizeInFrames() * support::kChannels);
  const auto read = buffer.readDataInto(samples.data(), samples.size() * sizeof(float), 0);
  samples.resize(read.byteCount / sizeof(float));
  return samples;
}

inline std::shared_ptr<OVBlockBuffer> blockBufferWith(const support::Samples& samples) {
  auto buffer = OVBlockBuffer::init();
  buffer->writeData(samples.data(), 0, static_cast<std::uint32_t>(samples.size() * sizeof(float)));
  return buffer;
}

using support::withoutSilence;

/// No call may wait for the sound system for more than 250 ms; the rest allows for a busy machine.
/// This detects a library that waits for a hanging server: 30 s and more.
inline constexpr std::chrono::milliseconds kMaxCall{1000};

/// How long a call takes.
inline std::chrono::milliseconds duration(const std::function<void()>& call) {
  const auto begin = std::chrono::steady_clock::now();
  call();
  return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() -
                                                               begin);
}

/// A private sound server, and the audio queues on the real device, which find only that server,
/// through this process's environment.
class ServerFixture : public testing::Test {
 protected:
  void SetUp() override {
    std::string error;
    server_ = support::PrivateSoundServer::start(error);
    ASSERT_NE(server_, nullptr) << error;
    for (const auto& [name, value] : server_->environment()) {
      // Before the first thread of the queues.
      ASSERT_EQ(setenv(name.c_str(), value.c_str(), 1), 0);  // NOLINT(concurrency-mt-unsafe)
    }
    queues_ = std::make_shared<platform::DeviceAudioQueues>(platform::lateAudioDevice());
    installation_.emplace(queues_);
  }

  void TearDown() override {
    if (server_) {
      server_->thaw();
    }
    installation_.reset();
    queues_.reset();
  }

  [[nodiscard]] bool awaitCapturing() const {
    return support::eventually([this] { return server_->isCapturing(getpid()); });
  }

  support::InstalledRecordingServices services_;
  support::TemporaryFolder folder_;
  std::unique_ptr<support::PrivateSoundServer> server_;
  std::shared_ptr<platform::DeviceAudioQueues> queues_;
  std::optional<platform::Installed<platform::AudioQueues>::Scope> installation_;
};

}  // namespace testserver
