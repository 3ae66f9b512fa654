// A document of twenty hours, 25 GB, opened from a file and edited, on storages that keep no zeros;
// two hours under ThreadSanitizer.
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "document/DocumentFixture.h"
#include "support/ProcessMemory.h"
#include "support/Sanitizers.h"
#include "support/fakes/SparseTemporaryFiles.h"
#include "support/fakes/TestUserAudioFiles.h"

class VeryLongDocumentTest : public DocumentFixture {
 protected:
  static constexpr std::uint64_t kHours = support::kThreadSanitizer ? 2 : 20;
  static constexpr std::uint64_t kLength = kHours * 3600 * 44100;  // frames
  static constexpr std::uint64_t kMiddle = kLength / 2;
  static constexpr std::uint64_t kShortLength = 600ULL * 44100;
  static constexpr std::uint32_t kFileFrameBytes = 4;  // two channels of 16 bits
  static constexpr std::chrono::minutes kPatience{5};

  // Memory that a step may take temporarily, whatever the length. Sanitizers keep freed memory.
  static constexpr std::uint64_t kMegabyte = std::uint64_t{1} << 20;
  static constexpr std::uint64_t kForOpening = (support::kAnySanitizer ? 512 : 8) * kMegabyte;
  static constexpr std::uint64_t kForAnEdit = (support::kAnySanitizer ? 512 : 2) * kMegabyte;

  // Silence, with a second of sound from the middle on.
  void makeFile(std::uint64_t frames) {
    const auto file = *storage_.createForWriting("a.wav");
    const std::string header = rf64Header(frames * kFileFrameBytes);
    const std::vector<std::int16_t> sound(std::size_t{2} * 44100, 0x4000);
    const char lastByte = 0;
    const std::uint64_t end = header.size() + frames * kFileFrameBytes;
    for (const auto& written : {file->writeAt(header.data(), header.size(), 0),
                                file->writeAt(sound.data(), sound.size() * sizeof sound[0],
                                              header.size() + frames / 2 * kFileFrameBytes),
                                file->writeAt(&lastByte, 1, end - 1)}) {
      ASSERT_EQ(written.error, 0);
    }
    ASSERT_EQ(storage_.size(), end);
  }

  // A WAV's header with lengths of 64 bits, for samples of 16 bits.
  static std::string rf64Header(std::uint64_t dataBytes) {
    constexpr std::uint32_t kElsewhere = 0xFFFFFFFF;  // in the ds64 chunk
    constexpr std::uint64_t kHeaderBytes = 72;        // after the length field
    std::string bytes = "RF64";
    append(bytes, kElsewhere);
    bytes += "WAVEds64";
    append(bytes, std::uint32_t{28});
    append(bytes, dataBytes + kHeaderBytes);
    append(bytes, dataBytes);
    append(bytes, dataBytes / kFileFrameBytes);
    append(bytes, std::uint32_t{0});
    bytes += "fmt ";
    append(bytes, std::uint32_t{16});
    append(bytes, std::uint16_t{1});
    append(bytes, std::uint16_t{2});
    append(bytes, std::uint32_t{44100});
    append(bytes, std::uint32_t{44100} * kFileFrameBytes);
    append(bytes, std::uint16_t{kFileFrameBytes});
    append(bytes, std::uint16_t{16});
    bytes += "data";
    append(bytes, kElsewhere);
    return bytes;
  }

  template <typename Number>
  static void append(std::string& bytes, Number number) {
    for (std::size_t i = 0; i < sizeof number; ++i) {
      bytes.push_back(static_cast<char>(number >> (8 * i) & 0xFF));
    }
  }

  // The summary of the whole document takes long.
  void awaitEndOfWork() {
    EXPECT_TRUE(runMainLoopUntil([&] { return !document_->isFileIOActive(); }, kPatience));
    EXPECT_TRUE(platform::globalQueue().waitUntilIdle(300));
    settle();
  }

  // Runs a step and everything that it triggers.
  template <typename Step>
  void withoutMoreMemory(const char* what, std::uint64_t allowed, Step step) {
    const support::MemoryGrowth growth;
    step();
    awaitEndOfWork();
    EXPECT_LT(growth.atMost(), allowed) << what;
    RecordProperty(std::string("KilobytesFor") + what, std::to_string(growth.atMost() / 1024));
  }

  void expectLength(std::uint64_t frames) {
    EXPECT_EQ(length(), frames);
    EXPECT_EQ(document_->waveForm()->readerPos(), frames);
  }

  support::TestUserAudioFiles storage_;
  platform::Installed<platform::UserAudioFiles>::Scope storageInstallation_{storage_};
  support::SparseTemporaryFiles files_;
  platform::Installed<platform::TemporaryFiles>::Scope installation_{files_};
};

TEST_F(VeryLongDocumentTest, IsOpenedCutInItsMiddleUndoneRedoneAndPlayedWithoutMoreMemory) {
  // Memory that opening takes once: the libraries, and batches for files of any length.
  makeFile(kShortLength);
  openDocument();
  document_->openFileNamed("short.wav");
  awaitEndOfWork();
  ASSERT_EQ(length(), kShortLength);
  closeDocument();

  makeFile(kLength);
  openDocument();

  withoutMoreMemory("Opening", kForOpening, [&] { document_->openFileNamed("long.wav"); });
  ASSERT_EQ(length(), kLength);
  expectLength(kLength);
  EXPECT_EQ(samplesAt(kMiddle - 1, 2), (std::vector<float>{0.0F, 0.0F, 0.5F, 0.5F}));

  document_->setPlaybackPosition(kMiddle);
  withoutMoreMemory("Cut", kForAnEdit, [&] { document_->removeAfterMarker(nullptr); });
  expectLength(kMiddle);
  withoutMoreMemory("Undo", kForAnEdit, [&] { document_->undoCommand(); });
  expectLength(kLength);
  withoutMoreMemory("Redo", kForAnEdit, [&] { document_->redoCommand(); });
  expectLength(kMiddle);
  withoutMoreMemory("UndoOfRedo", kForAnEdit, [&] { document_->undoCommand(); });
  expectLength(kLength);

  document_->setPlaybackPosition(kMiddle - 1024);
  withoutMoreMemory("Playing", kForAnEdit, [&] {
    pressPlay();
    EXPECT_EQ(queues_.output().playOne(), std::vector<float>(2 * 1024, 0.0F));
    EXPECT_EQ(queues_.output().playOne(), std::vector<float>(2 * 1024, 0.5F));
    document_->stopButton(nullptr);
  });
}
