#include "audio/CheckAudioStatus.h"

#include <cstdint>
#include <limits>
#include <string>

#include <QCoreApplication>
#include <QTranslator>

#include <gmock/gmock.h>

#include "support/fakes/RecordingServices.h"

namespace {

using support::RecordedAlert;
using testing::ElementsAre;
using testing::IsEmpty;

class CheckAudioStatusTest : public testing::Test {
 protected:
  support::InstalledRecordingServices services_;
};

TEST_F(CheckAudioStatusTest, SuccessReturnsTrueAndReportsNothing) {
  testing::internal::CaptureStderr();
  EXPECT_TRUE(CheckAudioStatus(0, "AudioQueueStart failed", "a reason"));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_THAT(services_->alerts(), IsEmpty());
}

TEST_F(CheckAudioStatusTest, AFailureIsPrintedAlertedAndReturnsFalse) {
  testing::internal::CaptureStderr();
  EXPECT_FALSE(CheckAudioStatus(platform::fourCharacterStatus("!dev"), "AudioQueueStart failed"));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Error: AudioQueueStart failed ('!dev')\n");
  EXPECT_THAT(
      services_->alerts(),
      ElementsAre(RecordedAlert{"Core Audio Error",
                                "Core Audio returned the error: AudioQueueStart failed ('!dev')"}));
}

TEST_F(CheckAudioStatusTest, AStatusThatIsNotAllPrintableIsPrintedAsSignedDecimal) {
  testing::internal::CaptureStderr();
  EXPECT_FALSE(CheckAudioStatus(-50, "ExtAudioFileRead"));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Error: ExtAudioFileRead (-50)\n");
  EXPECT_THAT(services_->alerts(),
              ElementsAre(RecordedAlert{"Core Audio Error",
                                        "Core Audio returned the error: ExtAudioFileRead (-50)"}));
}

TEST_F(CheckAudioStatusTest, TheUnsupportedFileTypeHasItsOwnAlert) {
  testing::internal::CaptureStderr();
  EXPECT_FALSE(CheckAudioStatus(platform::fourCharacterStatus("wht?"), "ExtAudioFileOpenURL"));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Error: ExtAudioFileOpenURL ('wht?')\n");
  EXPECT_THAT(
      services_->alerts(),
      ElementsAre(RecordedAlert{"File Format Error", "The file is of an unsupported format."}));
}

TEST_F(CheckAudioStatusTest, AReasonStandsBelowTheMessageAfterABlankLine) {
  testing::internal::CaptureStderr();
  EXPECT_FALSE(CheckAudioStatus(-1, "label", "song.wav: it is empty."));
  EXPECT_FALSE(CheckAudioStatus(platform::kUnsupportedFileTypeStatus, "label", "song.xyz"));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Error: label (-1)\nError: label ('wht?')\n");
  EXPECT_THAT(
      services_->alerts(),
      ElementsAre(
          RecordedAlert{"Core Audio Error",
                        "Core Audio returned the error: label (-1)\n\nsong.wav: it is "
                        "empty."},
          RecordedAlert{"File Format Error", "The file is of an unsupported format.\n\nsong.xyz"}));
}

TEST_F(CheckAudioStatusTest, ALabelWithAFormatDirectiveIsTakenAsItStands) {
  testing::internal::CaptureStderr();
  EXPECT_FALSE(CheckAudioStatus(-1, "50%s %n"));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Error: 50%s %n (-1)\n");
  EXPECT_EQ(services_->alerts().at(0).message, "Core Audio returned the error: 50%s %n (-1)");
}

TEST_F(CheckAudioStatusTest, WithoutAlertItOnlyPrints) {
  testing::internal::CaptureStderr();
  EXPECT_TRUE(CheckAudioStatusWithoutAlert(0, "label"));
  EXPECT_FALSE(CheckAudioStatusWithoutAlert(7, "label"));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Error: label (7)\n");
  EXPECT_THAT(services_->alerts(), IsEmpty());
}

TEST_F(CheckAudioStatusTest, OnTheThreadOfAnAudioQueueTheAlertIsPosted) {
  testing::internal::CaptureStderr();
  const platform::PostedAlertsScope onQueueThread;
  EXPECT_FALSE(CheckAudioStatus(-1, "label"));
  EXPECT_THAT(services_->alerts(), IsEmpty());
  EXPECT_EQ(services_->postedAlerts().size(), 1U);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Error: label (-1)\n");
}

class ShoutingTranslator : public QTranslator {
 public:
  QString translate(const char*, const char* text, const char*, int) const override {
    return QString(text).toUpper().replace("%S", "%s");
  }
  bool isEmpty() const override { return false; }
};

TEST_F(CheckAudioStatusTest, TitleAndMessageAreTranslatedLabelAndCodeAreNot) {
  ShoutingTranslator translator;
  QCoreApplication::installTranslator(&translator);
  testing::internal::CaptureStderr();
  EXPECT_FALSE(CheckAudioStatus(-1, "label"));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Error: label (-1)\n");
  EXPECT_THAT(
      services_->alerts(),
      ElementsAre(RecordedAlert{"CORE AUDIO ERROR", "CORE AUDIO RETURNED THE ERROR: label (-1)"}));
}

TEST(CheckAudioStatusCodeTest, QuotesFourPrintableCharactersOnly) {
  EXPECT_EQ(AudioStatusCodeText(platform::fourCharacterStatus("wht?")), "'wht?'");
  EXPECT_EQ(AudioStatusCodeText(0x20202020), "'    '");
  EXPECT_EQ(AudioStatusCodeText(0x7e7e7e7e), "'~~~~'");
  EXPECT_EQ(AudioStatusCodeText(0x7e7e7e7f), std::to_string(0x7e7e7e7f));
  EXPECT_EQ(AudioStatusCodeText(0x1f202020), std::to_string(0x1f202020));
  EXPECT_EQ(AudioStatusCodeText(0x61620a63), std::to_string(0x61620a63));
  EXPECT_EQ(AudioStatusCodeText(0), "0");
  EXPECT_EQ(AudioStatusCodeText(-1), "-1");
  EXPECT_EQ(AudioStatusCodeText(std::numeric_limits<std::int32_t>::min()), "-2147483648");
}

}  // namespace
