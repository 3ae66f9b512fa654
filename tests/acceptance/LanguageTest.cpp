// The real program in the desktop's language.
#include "acceptance/AcceptanceTest.h"

using namespace support;

namespace {

class Language : public AcceptanceTest {
 protected:
  void startIn(const std::string& languages) {
    RunningOrvo::Options options;
    options.wrapper = {"env", "LANGUAGE=" + languages};
    startOrvo(options);
  }

  [[nodiscard]] bool isTitled(const std::string& title) const {
    return eventually([&] { return screen_->titleOf(orvo_->window()) == title; });
  }
};

TEST_F(Language, TheFirstOfTheDesktopsLanguagesThatThereIsNamesTheNewDocument) {
  ASSERT_NO_FATAL_FAILURE(startIn("nl_NL:de_CH:fr"));
  EXPECT_TRUE(isTitled("Orvo - Unbenannt")) << screen_->titleOf(orvo_->window());
}

TEST_F(Language, SimplifiedChineseIsShownAndThePanelsAreTranslatedToo) {
  ASSERT_NO_FATAL_FAILURE(startIn("zh_SG"));
  EXPECT_TRUE(isTitled("Orvo - 未命名")) << screen_->titleOf(orvo_->window());
  ASSERT_TRUE(screen_->pressKey("ctrl+shift+s"));
  EXPECT_TRUE(eventually([&] { return !screen_->windowsOf(orvo_->pid(), "另存为").empty(); }));
}

TEST_F(Language, EnglishIsWhatIsLeft) {
  ASSERT_NO_FATAL_FAILURE(startIn("nl"));
  EXPECT_TRUE(isTitled("Orvo - Unnamed")) << screen_->titleOf(orvo_->window());
}

}  // namespace
