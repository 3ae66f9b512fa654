// The tags of an opened file: kept by every save.
#include <gmock/gmock.h>
#include <QComboBox>
#include <QLabel>

#include "document/FileFixture.h"
#include "platform/files/UserAudioFiles.h"
#include "support/programs/AudioFileTools.h"

namespace {

using platform::AudioFileTag;
using platform::AudioFileTags;
using testing::IsEmpty;

class TagsTest : public DocumentFileFixture {
 protected:
  /// A file with a title, an artist and a cover, open in the document.
  void openTagged(const std::string& name = "song.m4a") {
    const std::string picture = at("picture.png");
    ASSERT_EQ(
        support::ffmpeg({"-f", "lavfi", "-i", "color=red:size=16x16", "-frames:v", "1", picture}),
        "");
    tags_ = {.texts = {{AudioFileTag::title, "Song"}, {AudioFileTag::artist, "Someone"}},
             .cover = support::fileBytes(picture)};
    writeTagged(at(name), static_cast<std::uint32_t>(name.ends_with("m4a") ? 3 : 0), tags_);
    document_->setCurrentFilename(at(name));
    open(at(name));
    ASSERT_GT(length(), 0U);
  }

  static void writeTagged(const std::string& path, std::uint32_t kind, const AudioFileTags& tags) {
    const Samples samples = ramp(3000);
    const auto writer = OVAudioFileWriter::initWithOpenFile(
        platform::userAudioFiles()->createForWriting(path), kind, "song", tags);
    ASSERT_NE(writer, nullptr);
    ASSERT_GT(writer->sinkData(samples.data(), samples.size() * sizeof(float)), 0U);
    ASSERT_TRUE(writer->close());
  }

  static AudioFileTags tagsIn(const std::string& path) {
    const auto reader = OVAudioFileReader::initWithFile(path);
    return reader ? *reader->tags() : AudioFileTags();
  }

  AudioFileTags withoutCover() const { return {.texts = tags_.texts}; }

  QWidget* accessory() { return panels_->savePanel().accessoryView; }
  std::string lineFor(std::int32_t type) {
    auto* const choice = accessory()->findChild<QComboBox*>("fileTypeButton");
    choice->setCurrentIndex(choice->findData(type));
    return accessory()->findChild<QLabel*>("keptByKindLabel")->text().toStdString();
  }

  AudioFileTags tags_;
};

TEST_F(TagsTest, SaveAsKeepsThoseThatTheKindCanHold) {
  openDocument();
  openTagged();
  const std::vector<std::string> names{"a.wav", "a.aiff", "a.caf", "a.m4a"};
  for (std::int32_t type = 0; type < 4; ++type) {
    const std::string path = at(names[static_cast<std::size_t>(type)]);
    saveTo(path, type);
    EXPECT_EQ(tagsIn(path), type == 1 || type == 3 ? tags_ : withoutCover()) << path;
  }
  EXPECT_THAT(services_->alerts(), IsEmpty());
}

TEST_F(TagsTest, TheSavedSoundIsThatOfAFileWithoutTags) {
  openDocument();
  openTagged();
  saveTo(at("tagged.wav"));
  EXPECT_EQ(tagsIn(at("tagged.wav")), withoutCover());
  EXPECT_EQ(readFile(at("tagged.wav")), readFile(writeFile("plain.wav", audio())));
}

TEST_F(TagsTest, ALaterSaveKeepsThemToo) {
  openDocument();
  openTagged("song.wav");
  saveTo(at("song.wav"));
  fill(ramp(100, 5));
  document_->saveFile(nullptr);
  awaitIdle();
  EXPECT_EQ(panels_->savePanels(), 0U);
  EXPECT_EQ(tagsIn(at("song.wav")), withoutCover());
}

TEST_F(TagsTest, AnImportBringsNone) {
  openDocument();
  writeTagged(at("other.wav"), 0, {.texts = {{AudioFileTag::title, "Other"}}});
  import(at("other.wav"));
  saveTo(at("take.wav"));
  EXPECT_EQ(tagsIn(at("take.wav")), AudioFileTags());
}

TEST_F(TagsTest, ThePanelSaysInOneLineWhatTheChosenKindKeeps) {
  openDocument();
  document_->saveFileAs(nullptr);
  EXPECT_EQ(lineFor(0), "16 bits, 44.1 kHz, stereo");
  EXPECT_EQ(lineFor(3), "AAC with 256 kbit/s, 44.1 kHz, stereo");
  panels_->answerSave(std::nullopt);
  openTagged();
  document_->saveFileAs(nullptr);
  EXPECT_EQ(lineFor(0), "16 bits, 44.1 kHz, stereo; keeps title and artist; leaves out the cover");
  EXPECT_EQ(lineFor(1), "16 bits, 44.1 kHz, stereo; keeps title, artist and cover");
  EXPECT_EQ(lineFor(3), "AAC with 256 kbit/s, 44.1 kHz, stereo; keeps title, artist and cover");
  panels_->answerSave(std::nullopt);
}

TEST_F(TagsTest, ThePanelSaysWhatGetsLostOfAFileThatIsReplaced) {
  ASSERT_TRUE(support::writeBytes(at("good.wav"),
                                  support::wavBytes(96000, 6, 24, std::string(18 * 5000, '\1'))));
  openDocument();
  document_->saveFileAs(nullptr);
  ASSERT_TRUE(panels_->savePanel().lossOfReplacing);
  EXPECT_EQ(panels_->savePanel().lossOfReplacing(at("good.wav")),
            "The old file has 24\u00a0bits, 96\u00a0kHz and 6\u00a0channels, the new one only has "
            "16\u00a0bits, 44.1\u00a0kHz and 2\u00a0channels.");
  panels_->answerSave(std::nullopt);
  document_->exportRingtone(nullptr);
  EXPECT_TRUE(panels_->savePanel().lossOfReplacing);
  panels_->answerSave(std::nullopt);
}

// What was opened has no kind yet: its first Save goes through the panel and so meets its question.
TEST_F(TagsTest, TheFirstSaveOverAnOpenedFileAsksInThePanelThatSaysWhatGetsLost) {
  const std::string before = support::wavBytes(96000, 6, 24, std::string(18 * 5000, '\1'));
  ASSERT_TRUE(support::writeBytes(at("good.wav"), before));
  openDocument();
  document_->setCurrentFilename(at("good.wav"));
  open(at("good.wav"));
  ASSERT_GT(length(), 0U);
  document_->saveFile(nullptr);
  ASSERT_EQ(panels_->savePanels(), 1U);
  EXPECT_EQ(panels_->savePanel().suggestedName, "good");
  ASSERT_TRUE(panels_->savePanel().lossOfReplacing);
  EXPECT_FALSE(panels_->savePanel().lossOfReplacing(at("good.wav")).isEmpty());
  panels_->answerSave(std::nullopt);
  EXPECT_EQ(bytesOf(at("good.wav")), before);
}

}  // namespace
