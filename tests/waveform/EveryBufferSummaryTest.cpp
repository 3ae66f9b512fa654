// A summary is the same whichever buffer holds the audio.
#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <vector>

#include "storage/OVAudioBuffer.h"
#include "storage/OVBlockBuffer.h"
#include "storage/OVDiskAudioBuffer.h"
#include "support/TestAudio.h"
#include "support/fakes/RecordingServices.h"
#include "waveform/OVDynamicWaveForm.h"
#include "waveform/OVStaticWaveform.h"

namespace {

constexpr std::uint64_t kFrameBytes = 8;

std::vector<float> elementsOf(const OVWaveformSummary& summary) {
  std::vector<float> elements;
  summary.copyElementsInto(elements);
  return elements;
}

void write(OVAudioBufferInterface& buffer, std::uint64_t frame, std::uint64_t frames,
           unsigned seed) {
  std::mt19937_64 random(seed);
  const std::vector<float> samples = support::roughNoise(2 * frames, random);
  buffer.writeData(samples.data(), frame * kFrameBytes,
                   static_cast<std::uint32_t>(frames * kFrameBytes));
}

/// Both summaries through a recording that is longer than the disk buffer's cache, punched into,
/// cut on both sides and recorded on.
std::vector<std::vector<float>> summariesOf(const std::shared_ptr<OVAudioBufferInterface>& buffer) {
  std::vector<std::vector<float>> all;
  const auto growing = OVDynamicWaveForm::initWithBuffer(buffer);
  for (unsigned chunk = 0; chunk < 300; ++chunk) {
    write(*buffer, chunk * 4096, 4096, chunk);
    if (chunk % 7 == 0) {
      growing->generate();
      all.push_back(elementsOf(*growing));
    }
  }
  write(*buffer, 500'000, 10'000, 1000);
  buffer->cutoffBufferAfterPosition(1'000'003);
  buffer->cutoffBufferBeforePosition(12'345);
  growing->setShouldRegenerateWaveform(true);
  growing->generate();
  all.push_back(elementsOf(*growing));
  write(*buffer, buffer->bufferSizeInFrames(), 4096, 2000);
  growing->generate();
  all.push_back(elementsOf(*growing));
  all.push_back(elementsOf(*OVStaticWaveform::initWithBuffer(buffer)));
  return all;
}

TEST(EveryBufferSummaryTest, AreTheSame) {
  const support::InstalledRecordingServices services;
  const auto ofMemory = summariesOf(OVAudioBuffer::init());
  EXPECT_TRUE(summariesOf(OVBlockBuffer::init()) == ofMemory);
  EXPECT_TRUE(summariesOf(OVDiskAudioBuffer::init()) == ofMemory);
}

}  // namespace
