#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "platform/base/GuardedPointer.h"
#include "storage/OVAudioBufferInterface.h"

/// The audio of a document, and its lengths in frames, bytes and seconds. Without a buffer
/// (no temporary file could be created) every length is 0.
///
/// Threads: any, unless stated otherwise. Real-time: not safe.
class OVDocumentAudio {
 public:
  [[nodiscard]] std::shared_ptr<OVAudioBufferInterface> buffer() const { return buffer_.get(); }
  /// Threads: main.
  void setBuffer(std::shared_ptr<OVAudioBufferInterface> buffer) { buffer_.set(std::move(buffer)); }

  [[nodiscard]] std::uint64_t bytesPerFrame() const;
  [[nodiscard]] std::uint64_t sizeInFrames() const;
  /// Bytes that a second takes in the storage.
  [[nodiscard]] double bytesPerSecond() const;
  [[nodiscard]] double secondsOfFrames(std::uint64_t frames) const;
  /// 0 to 1 of the whole length; 0 for an empty buffer.
  [[nodiscard]] double fractionOfFrames(std::uint64_t frames) const;

  /// The folder in which the audio's temporary file was created; empty if there is none.
  [[nodiscard]] std::string storageFolder() const;

 private:
  platform::GuardedPointer<std::shared_ptr<OVAudioBufferInterface>> buffer_;
};
