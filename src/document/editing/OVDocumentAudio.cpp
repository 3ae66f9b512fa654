#include "document/editing/OVDocumentAudio.h"

#include <filesystem>

#include "storage/OVBlockBuffer.h"

std::uint64_t OVDocumentAudio::bytesPerFrame() const {
  const auto audio = buffer();
  return audio ? audio->format().mBytesPerFrame : 0;
}

std::uint64_t OVDocumentAudio::sizeInFrames() const {
  const auto audio = buffer();
  return audio ? audio->bufferSizeInFrames() : 0;
}

double OVDocumentAudio::bytesPerSecond() const {
  const auto audio = buffer();
  return audio ? audio->format().mSampleRate * audio->format().mBytesPerFrame : 0.0;
}

double OVDocumentAudio::secondsOfFrames(std::uint64_t frames) const {
  const auto audio = buffer();
  return audio ? static_cast<double>(frames) / audio->format().mSampleRate : 0.0;
}

double OVDocumentAudio::fractionOfFrames(std::uint64_t frames) const {
  const std::uint64_t size = sizeInFrames();
  return size == 0 ? 0.0 : static_cast<double>(frames) / static_cast<double>(size);
}

std::string OVDocumentAudio::storageFolder() const {
  const auto blocks = std::dynamic_pointer_cast<OVBlockBuffer>(buffer());
  return blocks ? std::filesystem::path(blocks->f_file_name()).parent_path().string() : "";
}
