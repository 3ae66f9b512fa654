// Loading without enough memory for the audio or for its waveform keeps what was loaded.
#include <atomic>
#include <new>

#include <gmock/gmock.h>

#include "document/FileFixture.h"
#include "document/files/loadFile.h"
#include "support/fakes/MemoryTestBuffer.h"

namespace {

using testing::HasSubstr;
using testing::Not;

/// A document whose audio cannot be stored from some byte on.
class LoadingWithoutMemoryTest : public DocumentFileFixture {
 protected:
  void openWindowWithMemoryUpTo(std::uint64_t byteOffset) {
    openWindow();
    const auto audio = std::make_shared<MemoryTestBuffer>();
    audio->beforeWrite = [byteOffset](const MemoryTestBuffer::Transfer& write) {
      if (write.byteOffset >= byteOffset) {
        throw std::bad_alloc();
      }
    };
    document_->setBuffer(audio);
  }

  void expectOneAlertSaying(const std::string& text) {
    ASSERT_EQ(services_->alerts().size(), 1U);
    EXPECT_EQ(services_->alerts()[0].title, "“take.wav” could not be loaded whole");
    EXPECT_THAT(services_->alerts()[0].message, HasSubstr(text));
    EXPECT_THAT(services_->alerts()[0].message, HasSubstr("not enough memory"));
    EXPECT_THAT(services_->alerts()[0].message, Not(HasSubstr("temporary file")));
  }
};

TEST_F(LoadingWithoutMemoryTest, TheFileIsLoadedAndTheWaveformIsDrawnWhenThereIsMemoryAgain) {
  openWindow();
  const auto audio = std::make_shared<MemoryTestBuffer>();
  std::atomic<bool> exhausted = true;
  audio->beforeRead = [&exhausted](std::uint64_t) {
    if (exhausted) {
      throw std::bad_alloc();
    }
  };
  document_->setBuffer(audio);
  document_->openFileNamed(writeFile("take.wav", ramp(44100)));
  awaitIdle();
  EXPECT_EQ(length(), 44100U);
  EXPECT_TRUE(transportEnabled());
  EXPECT_FALSE(document_->isRenderingWaveform());
  EXPECT_FALSE(document_->loadingIndicator()->isVisible());
  EXPECT_FALSE(document_->isDocumentEdited());
  EXPECT_TRUE(document_->waveForm()->isRegenerating()) << "it has to be made again";

  exhausted = false;
  document_->refreshCompleteUI(false);
  settle();
  EXPECT_FALSE(document_->waveForm()->isRegenerating());
  EXPECT_EQ(document_->waveForm()->readerPos(), 44100U);
  closeDocument();  // before the flag is destroyed
}

TEST_F(LoadingWithoutMemoryTest, AnOpenKeepsWhatWasLoadedAndSaysWhatIsMissing) {
  openWindowWithMemoryUpTo(kLoadChunkFrames * kFrameBytes);
  const Samples samples = ramp(3 * kLoadChunkFrames);
  open(writeFile("take.wav", samples));
  ASSERT_EQ(length(), kLoadChunkFrames);
  EXPECT_TRUE(std::equal(samples.begin(), samples.begin() + 2 * kLoadChunkFrames, audio().begin()));
  expectOneAlertSaying("Everything loaded before is kept.");
  EXPECT_EQ(document_->window()->title(), "Orvo - Unnamed");
  EXPECT_TRUE(transportEnabled());
}

TEST_F(LoadingWithoutMemoryTest, AnImportIsRolledBackAndSaysWhatIsMissing) {
  openWindowWithMemoryUpTo(kLoadChunkFrames * kFrameBytes);
  import(writeFile("take.wav", ramp(3 * kLoadChunkFrames)));
  EXPECT_FALSE(document_->isDocumentEdited());
  EXPECT_FALSE(document_->windowWillReturnUndoManager()->canUndo());
  expectOneAlertSaying("Nothing was imported.");
  EXPECT_TRUE(transportEnabled());
}

}  // namespace
