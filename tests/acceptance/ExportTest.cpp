// Exports chosen in the menu by its keys, through the real panels.

#include <filesystem>

#include "acceptance/DocumentTest.h"
#include "support/programs/AudioFileTools.h"

using namespace support;

namespace {

class Exporting : public DocumentTest {
 protected:
  /// Commands of the File menu, counted from its end.
  enum class Command { waveformPicture = 3, ringtone = 4 };

  /// Opens a file in a program whose desktop opens everything with a script that only records its
  /// argument.
  void startWithFile(const std::string& name, const Samples& samples) {
    ASSERT_TRUE(writeWav(document(name), samples));
    const std::string programs = folder_.makeFolder("programs");
    ASSERT_TRUE(writeBytes(programs + "/xdg-open",
                           "#!/bin/sh\nprintf %s \"$1\" >'" + folder_.file("opened") + "'\n"));
    std::filesystem::permissions(programs + "/xdg-open", std::filesystem::perms::owner_all);
    RunningOrvo::Options options;
    options.files = {document(name)};
    options.wrapper = {"env", "PATH=" + programs + ":" + cleanEnvironment()["PATH"]};
    ASSERT_NO_FATAL_FAILURE(startOrvo(options));
    ASSERT_TRUE(orvo_->waitUntilRecorded(samples.size() / kChannels));
    ASSERT_TRUE(screen_->screenshotAtRest(orvo_->window(), folder_.file("loaded.png")));
  }

  /// Opens the File menu by its keys and chooses the command, then its panel.
  void chooseExport(Command command, const std::string& panelTitle, const std::string& path) {
    ASSERT_TRUE(screen_->pressKey("alt+f"));
    for (int i = 0; i < static_cast<int>(command); ++i) {
      ASSERT_TRUE(screen_->pressKey("Up"));
    }
    ASSERT_TRUE(screen_->pressKey("Return"));
    const Window shown = panel(panelTitle);
    ASSERT_FALSE(shown.empty());
    ASSERT_NO_FATAL_FAILURE(chooseFile(path));
    ASSERT_TRUE(screen_->waitUntilGone(shown));
  }

  /// What the desktop was asked to open; empty for nothing.
  std::string opened() const { return fileBytes(folder_.file("opened")); }

  void expectFiles(const std::vector<std::string>& expected) {
    std::vector<std::string> found;
    EXPECT_TRUE(eventually([&] {
      found = names(documents_);
      return found == expected;
    })) << testing::PrintToString(found);
  }
};

TEST_F(Exporting, RingtoneIsWrittenAsAacAndOpenedAndTheDocumentStaysWhatItIs) {
  constexpr double kGood = 15;  // decibels; another tune would give about 0, one frame off too
  const Samples samples = tune(1.5);
  ASSERT_NO_FATAL_FAILURE(startWithFile("take.wav", samples));
  ASSERT_NO_FATAL_FAILURE(chooseExport(Command::ringtone, "Export Ringtone", document("ring")));
  EXPECT_TRUE(eventually([&] { return opened() == "file://" + document("ring.m4r"); })) << opened();
  expectFiles({"ring.m4r", "take.wav"});
  const Samples coded = decodedByFfmpeg(document("ring.m4r"));
  EXPECT_GE(coded.size(), samples.size());
  EXPECT_GT(signalToNoise(samples, coded), kGood);
  ASSERT_NO_FATAL_FAILURE(expectTitle("take.wav"));
  EXPECT_TRUE(alerts().empty());
}

TEST_F(Exporting, WaveformPictureIsAPngOfTheWaveformsSize) {
  ASSERT_NO_FATAL_FAILURE(startWithFile("take.wav", tune(1.5)));
  ASSERT_NO_FATAL_FAILURE(
      chooseExport(Command::waveformPicture, "Export Waveform Picture", document("wave")));
  expectFiles({"take.wav", "wave.png"});
  const auto told =
      runToEnd({"identify", "-format", "%m %wx%h %k", document("wave.png")}, cleanEnvironment());
  const std::string format = "PNG 640x272 ";
  ASSERT_EQ(told.output.substr(0, format.size()), format) << told.error;
  EXPECT_GT(std::stoi(told.output.substr(format.size())), 2) << "colours: it shows something";
  EXPECT_EQ(opened(), "");
  ASSERT_NO_FATAL_FAILURE(expectTitle("take.wav"));
  EXPECT_TRUE(alerts().empty());
}

}  // namespace
