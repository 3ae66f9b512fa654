#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "audio/OVAudioFileReader.h"
#include "audio/OVAudioFileWriter.h"
#include "document/DocumentFixture.h"
#include "support/TemporaryFolder.h"
#include "support/TestAudio.h"
#include "support/fakes/RecordingDesktop.h"

/// A document with files to open and save to, and panels that the test answers.
class DocumentFileFixture : public DocumentFixture {
 protected:
  using Samples = std::vector<float>;

  DocumentFileFixture() { panels_->answerEverySheetWith(std::nullopt); }
  ~DocumentFileFixture() override {
    // A question that a failed test left open must not keep the document alive.
    panels_->answerEverySheetWith(VLRecorderWindowController::kDontSave);
    while (panels_->sheets() > 0) {
      panels_->answerSheet(VLRecorderWindowController::kDontSave);
    }
  }

  std::string at(const std::string& name) const { return folder_.file(name); }

  static Samples ramp(std::uint64_t frames, int seed = 0) { return support::ramp16(frames, seed); }

  std::string writeFile(const std::string& name, const Samples& samples, std::uint32_t kind = 0) {
    const auto writer = OVAudioFileWriter::initWithFile(at(name), kind);
    const std::uint64_t size = samples.size() * sizeof(float);
    EXPECT_EQ(writer->sinkData(samples.data(), size), size);
    EXPECT_TRUE(writer->close());
    return at(name);
  }

  static Samples readFile(const std::string& path) {
    Samples samples;
    const auto reader = OVAudioFileReader::initWithFile(path);
    if (!reader) {
      ADD_FAILURE() << path << " cannot be read";
      return samples;
    }
    while (const std::uint32_t frames = reader->readFrameChunkWithSize(10000)) {
      const auto* const floats = reinterpret_cast<const float*>(reader->exposeBuffer());
      samples.insert(samples.end(), floats, floats + 2 * std::size_t{frames});
    }
    return samples;
  }

  static std::string bytesOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  std::size_t filesInFolder() const {
    namespace fs = std::filesystem;
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(folder_.path()), fs::directory_iterator()));
  }

  /// Runs the main loop until no load, save or export runs.
  void awaitIdle() {
    EXPECT_TRUE(runMainLoopUntil([&] { return !document_->isFileIOActive(); }));
    settle();
  }

  void open(const std::string& path) {
    document_->openFileNamed(path);
    awaitIdle();
  }

  void import(const std::string& path) {
    document_->importFile(nullptr);
    panels_->answerOpen({path});
    awaitIdle();
  }

  void saveTo(const std::string& path, std::int32_t type = 0) {
    document_->saveFileNamed(path, type);
    awaitIdle();
  }

  Samples audio() { return samplesAt(0, length()); }

  /// Writes audio into the document as a recording does.
  void fill(const Samples& samples, std::uint64_t atFrame = 0) {
    document_->buffer()->writeData(samples.data(), atFrame * kFrameBytes,
                                   static_cast<std::uint32_t>(samples.size() * sizeof(float)));
  }

  bool transportEnabled() {
    bool all = true;
    for (const char* const name :
         {"recButton", "playButton", "prevButton", "nextButton", "stopButton", "pauseButton"}) {
      all = all && button(name)->isEnabled();
    }
    return all;
  }

  support::TemporaryFolder folder_;
  support::RecordingDesktop desktop_;
};
