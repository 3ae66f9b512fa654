#include "app/OVRecoveredPanel.h"

#include <gmock/gmock.h>
#include <QAccessible>
#include <QImage>
#include <QLabel>
#include <QLocale>
#include <QPointer>
#include <QPushButton>
#include <QStyle>
#include <QTest>
#include <QTreeWidget>

#include "platform/base/AudioTypes.h"
#include "support/MainLoop.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Occasion = OVRecoveredPanel::Occasion;
using State = OVRecoveredFile::State;

OVRecoveredFile fileOf(const std::string& path, State state = State::whole,
                       std::uint64_t seconds = 751) {
  OVRecoveredFile file;
  file.path = path;
  file.start = QDateTime(QDate(2026, 11, 21), QTime(14, 2, 31));
  file.frames = seconds * platform::kWorkingRate;
  file.state = state;
  return file;
}

class OVRecoveredPanelTest : public testing::Test {
 protected:
  ~OVRecoveredPanelTest() override { delete panel_; }

  void show(Occasion occasion, const std::vector<OVRecoveredFile>& files) {
    panel_ =
        new OVRecoveredPanel(occasion, {.open = [this](const auto& paths) { opened_ = paths; },
                                        .remove = [this](const auto& paths) { removed_ = paths; }});
    panel_->setFiles(files);
    panel_->show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(panel_));
  }

  [[nodiscard]] QPushButton* button(const char* name) const {
    return panel_->findChild<QPushButton*>(QString::fromLatin1(name));
  }
  [[nodiscard]] QTreeWidget* list() const { return panel_->findChild<QTreeWidget*>(); }
  [[nodiscard]] std::vector<std::string> textsOfRow(int row) const {
    std::vector<std::string> texts;
    for (int column = 0; column < list()->columnCount(); ++column) {
      texts.push_back(list()->topLevelItem(row)->text(column).toStdString());
    }
    return texts;
  }
  [[nodiscard]] std::string textOf(const char* label) const {
    return panel_->findChild<QLabel*>(label)->text().toStdString();
  }
  [[nodiscard]] std::string heading() const { return textOf("recoveredHeading"); }
  static void press(Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); }

  QPointer<OVRecoveredPanel> panel_;
  std::vector<std::string> opened_;
  std::vector<std::string> removed_;
};

TEST_F(OVRecoveredPanelTest, LengthsAreInTheUnitsThatCount) {
  const auto text = [](std::uint64_t seconds) {
    return recoveredLengthText(seconds * platform::kWorkingRate + 44099).toStdString();
  };
  EXPECT_EQ(text(0), "0 s");
  EXPECT_EQ(text(59), "59 s");
  EXPECT_EQ(text(60), "1 min 0 s");
  EXPECT_EQ(text(751), "12 min 31 s");
  EXPECT_EQ(text(3599), "59 min 59 s");
  EXPECT_EQ(text(3600), "1 h 0 min");
  EXPECT_EQ(text(100 * 3600 + 59 * 60), "100 h 59 min");
}

TEST_F(OVRecoveredPanelTest, TheQuestionSaysWhatHappenedAndWhatWasKept) {
  show(Occasion::unexpectedEnd, {fileOf("/a.caf"), fileOf("/b.caf", State::damaged, 8)});
  EXPECT_EQ(textOf("recoveredTitle"), "Orvo ended unexpectedly.");
  EXPECT_THAT(heading(), HasSubstr("Recordings kept: 2"));
  const std::string start =
      QLocale().toString(fileOf("/a.caf").start, QLocale::ShortFormat).toStdString();
  EXPECT_THAT(textsOfRow(0), ElementsAre(start, "12 min 31 s", "Complete"));
  EXPECT_THAT(textsOfRow(1), ElementsAre(start, "8 s", "Damaged"));
  EXPECT_EQ(button("recoveredLater")->text(), "&Later");
}

TEST_F(OVRecoveredPanelTest, TheListSaysThatThereIsNothing) {
  show(Occasion::command, {});
  EXPECT_EQ(heading(), "There are no recovered recordings.");
  EXPECT_FALSE(list()->isVisible());
  EXPECT_FALSE(button("openRecovered")->isEnabled());
  EXPECT_FALSE(button("deleteRecovered")->isEnabled());
  EXPECT_EQ(button("recoveredLater")->text(), "&Close");
  EXPECT_TRUE(button("recoveredLater")->isDefault());
}

TEST_F(OVRecoveredPanelTest, AnUnknownLengthIsADash) {
  show(Occasion::command, {fileOf("/a.caf", State::damaged, 0)});
  EXPECT_EQ(textsOfRow(0)[1], "–");
}

TEST_F(OVRecoveredPanelTest, ReturnOpensAllAndDeleteDeletesThoseThatAreChecked) {
  show(Occasion::unexpectedEnd, {fileOf("/a.caf"), fileOf("/b.caf")});
  EXPECT_EQ(QApplication::focusWidget(), button("openRecovered"));
  press(Qt::Key_Return);
  EXPECT_THAT(opened_, ElementsAre("/a.caf", "/b.caf"));
  list()->topLevelItem(0)->setCheckState(0, Qt::Unchecked);
  button("deleteRecovered")->click();
  EXPECT_THAT(removed_, ElementsAre("/b.caf"));
}

TEST_F(OVRecoveredPanelTest, EverythingCanBeReachedAndDoneByKeys) {
  show(Occasion::unexpectedEnd, {fileOf("/a.caf"), fileOf("/b.caf")});
  std::set<QWidget*> reached;
  for (int i = 0; i < 8; ++i) {
    reached.insert(QApplication::focusWidget());
    press(Qt::Key_Tab);
  }
  for (QWidget* const one : std::initializer_list<QWidget*>{
           list(), button("openRecovered"), button("recoveredLater"), button("deleteRecovered")}) {
    EXPECT_TRUE(reached.contains(one)) << one->objectName().toStdString();
  }
  list()->setFocus();
  press(Qt::Key_Down);
  press(Qt::Key_Space);
  EXPECT_THAT(panel_->chosen(), ElementsAre("/a.caf"));
  press(Qt::Key_Space);
  EXPECT_THAT(panel_->chosen(), ElementsAre("/a.caf", "/b.caf"));
  press(Qt::Key_Escape);
  EXPECT_TRUE(runMainLoopUntil([&] { return panel_.isNull(); }));
}

TEST_F(OVRecoveredPanelTest, WithoutACheckMarkThereIsNothingToOpenOrDelete) {
  show(Occasion::unexpectedEnd, {fileOf("/a.caf")});
  list()->topLevelItem(0)->setCheckState(0, Qt::Unchecked);
  EXPECT_THAT(panel_->chosen(), IsEmpty());
  EXPECT_FALSE(button("openRecovered")->isEnabled());
  EXPECT_FALSE(button("deleteRecovered")->isEnabled());
  EXPECT_TRUE(button("recoveredLater")->isDefault());
}

TEST_F(OVRecoveredPanelTest, AFileThatIsBeingWrittenSaysSoAndCannotBeChosen) {
  show(Occasion::command, {fileOf("/a.caf.part", State::beingWritten)});
  EXPECT_EQ(textsOfRow(0)[2], "Still being written");
  EXPECT_FALSE(list()->topLevelItem(0)->data(0, Qt::CheckStateRole).isValid());
  EXPECT_THAT(panel_->chosen(), IsEmpty());
}

TEST_F(OVRecoveredPanelTest, TheTextOfARowWithoutABoxIsBelowThoseOfTheOthers) {
  show(Occasion::command, {fileOf("/a.caf"), fileOf("/b.caf.part", State::beingWritten)});
  list()->clearSelection();
  list()->setCurrentItem(nullptr);
  const QImage picture = list()->viewport()->grab().toImage();
  const QRect row = list()->visualItemRect(list()->topLevelItem(1));
  const auto isEmpty = [&](int x) {
    for (int y = row.top() + 1; y < row.bottom(); ++y) {
      if (picture.pixelColor(x, y).lightness() < 128) {
        return false;
      }
    }
    return true;
  };
  int left = row.left();
  while (left < row.right() && isEmpty(left)) {
    ++left;
  }
  EXPECT_GT(left, row.left() + list()->style()->pixelMetric(QStyle::PM_IndicatorWidth));
  EXPECT_LT(left, row.right());
}

TEST_F(OVRecoveredPanelTest, AFileThatWaitsForRoomSaysSoAndCannotBeChosen) {
  show(Occasion::unexpectedEnd, {fileOf("/a.caf.part", State::waitingForRoom)});
  EXPECT_EQ(textsOfRow(0)[2], "Waiting for room on the disk");
  EXPECT_THAT(panel_->chosen(), IsEmpty());
  EXPECT_TRUE(button("recoveredLater")->isDefault());
}

TEST_F(OVRecoveredPanelTest, CheckMarksStayWhenAFileIsAdded) {
  show(Occasion::unexpectedEnd, {fileOf("/a.caf"), fileOf("/b.caf")});
  list()->topLevelItem(0)->setCheckState(0, Qt::Unchecked);
  panel_->setFiles({fileOf("/a.caf"), fileOf("/b.caf"), fileOf("/c.caf")});
  EXPECT_THAT(panel_->chosen(), ElementsAre("/b.caf", "/c.caf"));
  EXPECT_THAT(heading(), HasSubstr("Recordings kept: 3"));
}

TEST_F(OVRecoveredPanelTest, AScreenReaderHearsTheQuestionAndEachRowAsAWhole) {
  show(Occasion::unexpectedEnd, {fileOf("/a.caf", State::damaged)});
  const auto* const panel = QAccessible::queryAccessibleInterface(panel_);
  EXPECT_EQ(panel->text(QAccessible::Name), "Recovered Recordings");
  EXPECT_THAT(panel->text(QAccessible::Description).toStdString(),
              HasSubstr("Orvo ended unexpectedly. Recordings kept: 1"));
  auto* const rows = QAccessible::queryAccessibleInterface(list());
  EXPECT_EQ(rows->text(QAccessible::Name), "Recovered Recordings");
  const QString start = QLocale().toString(fileOf("/a.caf").start, QLocale::ShortFormat);
  ASSERT_NE(rows->tableInterface(), nullptr);
  const auto* const cell = rows->tableInterface()->cellAt(0, 0);
  ASSERT_NE(cell, nullptr);
  EXPECT_EQ(cell->text(QAccessible::Name), start + ", 12 min 31 s, Damaged");
  EXPECT_TRUE(cell->state().checkable);
}

}  // namespace
