#include "document/files/OVDocumentPanels.h"

#include <gtest/gtest.h>

#include "document/editing/OVDocumentLife.h"
#include "support/fakes/ScriptedFileDialogs.h"

class OVDocumentPanelsTest : public testing::Test {
 protected:
  OVDocumentPanelsTest() { life_.begin(document_); }

  support::InstalledScriptedPanels dialogs_;
  std::shared_ptr<int> document_ = std::make_shared<int>(0);
  OVDocumentLife life_;
  OVDocumentPanels panels_{life_};
};

TEST_F(OVDocumentPanelsTest, APanelCountsAsClosedWhenItsAnswerComes) {
  bool shownDuringAnswer = true;
  panels_.save({}, [&](const std::optional<std::string>& path) {
    shownDuringAnswer = panels_.isShown();
    EXPECT_EQ(path, "/a.wav");
  });
  EXPECT_TRUE(panels_.isShown());
  dialogs_->answerSave("/a.wav");
  EXPECT_FALSE(shownDuringAnswer);
}

TEST_F(OVDocumentPanelsTest, ACancelledOpenPanelAnswersWithNothing) {
  std::optional<std::string> chosen = "unchanged";
  panels_.open({}, [&](const std::optional<std::string>& path) { chosen = path; });
  dialogs_->answerOpen({});
  EXPECT_EQ(chosen, std::nullopt);
  EXPECT_FALSE(panels_.isShown());
}

TEST_F(OVDocumentPanelsTest, PanelsBelongToTheDocumentsWindow) {
  QWidget window;
  panels_.setWindow(&window);
  panels_.ask({}, [](int) {});
  EXPECT_EQ(dialogs_->sheet().window, &window);
  dialogs_->answerSheet(0);
}

TEST_F(OVDocumentPanelsTest, AnAnswerThatComesAfterTheDocumentIsDropped) {
  bool answered = false;
  panels_.ask({}, [&](int) { answered = true; });
  document_.reset();
  dialogs_->answerSheet(1);
  EXPECT_FALSE(answered);
}
