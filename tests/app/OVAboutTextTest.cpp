#include "app/OVAboutText.h"

#include <gmock/gmock.h>
#include <QCoreApplication>

#include "platform/media/FfmpegModule.h"

namespace {

using testing::ContainsRegex;
using testing::HasSubstr;

TEST(OVAboutTextTest, NamesTheVersionsOfTheProgramAndOfItsLibraries) {
  QCoreApplication::setApplicationVersion("12.34");
  const std::string text = aboutText().toStdString();
  EXPECT_THAT(text, HasSubstr("Orvo 12.34\n"));
  EXPECT_THAT(text, HasSubstr(std::string("\nQt ") + qVersion() + "\n"));
  ASSERT_NE(platform::ffmpegModule(), nullptr);
  EXPECT_THAT(text, HasSubstr(std::string("\nFFmpeg ") + platform::ffmpegModule()->version()));
  EXPECT_THAT(text, ContainsRegex("\nFFmpeg [0-9]"));
  EXPECT_THAT(text, ContainsRegex("\ncubeb [0-9]"));
}

}  // namespace
