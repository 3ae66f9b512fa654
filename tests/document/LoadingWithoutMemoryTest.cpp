// A file is loaded even if there is no memory to draw its waveform.
#include <atomic>
#include <new>

#include <gmock/gmock.h>

#include "document/FileFixture.h"
#include "support/fakes/MemoryTestBuffer.h"

namespace {

using LoadingWithoutMemoryTest = DocumentFileFixture;

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

}  // namespace
