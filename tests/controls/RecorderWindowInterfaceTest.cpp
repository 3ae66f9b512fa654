// The interface file "VNRecorderWindow": every view has its name and its place.
#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <vector>

#include <QAccessible>
#include <QMenuBar>
#include <QTest>

#include <gtest/gtest.h>

#include "controls/OVRecorderWindowDelegate.h"
#include "ui_VNRecorderWindow.h"

namespace {

class RecorderWindowInterfaceTest : public testing::Test {
 protected:
  void SetUp() override {
    window_.setAttribute(Qt::WA_DeleteOnClose, false);
    ui_.setupUi(&window_);
    for (const char* title : {"File", "Edit", "Transport", "View", "Help"}) {
      window_.menuBar()->addMenu(QString::fromLatin1(title));
    }
    window_.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window_));
  }

  // In the coordinates of `ancestor`, y downward.
  static QRect frameIn(const QWidget* ancestor, const QWidget* view) {
    return QRect(view->mapTo(ancestor, QPoint()), view->size());
  }

  OVRecorderWindow window_;
  Ui::VNRecorderWindow ui_;
};

TEST_F(RecorderWindowInterfaceTest, TheContentOpensAtItsSizeBelowTheMenuBar) {
  EXPECT_EQ(window_.centralWidget()->size(), QSize(640, 330));
  EXPECT_EQ(window_.centralWidget()->y(), window_.menuBar()->height());
  EXPECT_GT(window_.menuBar()->height(), 10);
}

TEST_F(RecorderWindowInterfaceTest, EveryViewIsThereUnderItsName) {
  for (const char* name :
       {"wfView", "playbackMarkerView", "transportBackView", "prevButton", "recButton",
        "stopButton", "pauseButton", "playButton", "nextButton", "displayWell", "vuView",
        "timeView", "loadingPanel", "loadingLabel", "loadingIndicator", "fftButton", "menuBar"}) {
    EXPECT_NE(window_.findChild<QWidget*>(QString::fromLatin1(name)), nullptr) << name;
  }
}

TEST_F(RecorderWindowInterfaceTest, EveryViewHasItsFrame) {
  const QWidget* content = window_.centralWidget();
  EXPECT_EQ(frameIn(content, ui_.wfView), QRect(0, 0, 640, 272));
  EXPECT_EQ(frameIn(content, ui_.playbackMarkerView), QRect(0, 0, 640, 272));
  EXPECT_EQ(frameIn(content, ui_.transportBackView), QRect(0, 272, 640, 58));
  int x = 14;
  for (const QWidget* button :
       std::initializer_list<QWidget*>{ui_.prevButton, ui_.recButton, ui_.stopButton,
                                       ui_.pauseButton, ui_.playButton, ui_.nextButton}) {
    EXPECT_EQ(button->geometry(), QRect(x, 13, 46, 32)) << button->objectName().toStdString();
    EXPECT_EQ(button->parentWidget(), ui_.transportBackView);
    x += 43;
  }
  EXPECT_EQ(frameIn(ui_.transportBackView, ui_.displayWell), QRect(352, 11, 236, 36));
  EXPECT_EQ(ui_.vuView->geometry(), QRect(7, 3, 60, 30));
  EXPECT_EQ(ui_.timeView->geometry(), QRect(76, 8, 150, 14));
  EXPECT_EQ(frameIn(ui_.transportBackView, ui_.fftButton), QRect(598, 15, 28, 28));
}

TEST_F(RecorderWindowInterfaceTest, NoticesAreAtTheWaveformsLowerEdgeAndTheLampBesideTheMeter) {
  const QRect notice = frameIn(ui_.wfView, ui_.noticeView);
  EXPECT_EQ(notice.bottom(), ui_.wfView->height() - 7);
  EXPECT_EQ(notice.left(), 10);
  EXPECT_GT(notice.width(), 400);
  EXPECT_EQ(frameIn(ui_.displayWell, ui_.clippingLamp), QRect(65, 3, 13, 30));
  for (const QWidget* view : std::initializer_list<QWidget*>{ui_.noticeView, ui_.recordingTickView,
                                                             ui_.lossMarksView, ui_.clippingLamp}) {
    EXPECT_FALSE(view->isVisible()) << view->objectName().toStdString();
  }
  ui_.recordingTickView->show();
  EXPECT_EQ(ui_.recordingTickView->geometry(), ui_.wfView->rect());
  ui_.lossMarksView->show();
  EXPECT_EQ(ui_.lossMarksView->geometry(), ui_.wfView->rect());
}

TEST_F(RecorderWindowInterfaceTest, ALongNoticeAsksForNoWiderWindow) {
  const QSize before = window_.minimumSizeHint();
  ui_.noticeView->setText(QString(300, QLatin1Char('x')));
  QCoreApplication::sendPostedEvents();
  EXPECT_EQ(window_.minimumSizeHint(), before);
  EXPECT_TRUE(ui_.wfView->rect().contains(frameIn(ui_.wfView, ui_.noticeView)));
}

TEST_F(RecorderWindowInterfaceTest, OnlyTheWaveformGrowsWithTheWindow) {
  window_.resize(window_.size() + QSize(200, 150));
  QCoreApplication::sendPostedEvents();
  const QWidget* content = window_.centralWidget();
  EXPECT_EQ(frameIn(content, ui_.wfView), QRect(0, 0, 840, 422));
  EXPECT_EQ(frameIn(content, ui_.playbackMarkerView), QRect(0, 0, 840, 422));
  EXPECT_EQ(frameIn(content, ui_.transportBackView), QRect(0, 422, 840, 58));
  EXPECT_EQ(ui_.recButton->geometry(), QRect(57, 13, 46, 32));
  EXPECT_EQ(frameIn(ui_.transportBackView, ui_.displayWell), QRect(552, 11, 236, 36));
  EXPECT_EQ(frameIn(ui_.transportBackView, ui_.fftButton), QRect(798, 15, 28, 28));
}

TEST_F(RecorderWindowInterfaceTest, TheSmallestWindowStillShowsEverything) {
  window_.resize(1, 1);
  QCoreApplication::sendPostedEvents();
  EXPECT_EQ(window_.centralWidget()->size(), QSize(580, 240));
  EXPECT_GT(frameIn(ui_.transportBackView, ui_.displayWell).left(),
            ui_.nextButton->geometry().right() + 8);
}

TEST_F(RecorderWindowInterfaceTest, TheProgressBarStartsHiddenAndTheButtonsShown) {
  EXPECT_TRUE(ui_.loadingIndicator->isHidden());
  EXPECT_TRUE(ui_.loadingPanel->isHidden());
  EXPECT_TRUE(ui_.fftButton->isVisible());
  EXPECT_TRUE(ui_.recButton->isVisible());
}

TEST_F(RecorderWindowInterfaceTest,
       TheProgressPanelStandsInTheWaveformAboveTheDisplaysAndFitsItsWords) {
  const QWidget* content = window_.centralWidget();
  for (const QSize size : {QSize(0, 0), QSize(640, 330), QSize(1200, 700)}) {
    window_.resize(size + QSize(0, window_.menuBar()->height()));
    for (const char* const words : {"Saving", "A rather long account of what is going on"}) {
      ui_.loadingIndicator->show();
      ui_.loadingPanel->show();
      QCoreApplication::sendPostedEvents();  // the window's new size
      ui_.loadingPanel->setActivity(QString::fromLatin1(words));
      const QRect panel = frameIn(content, ui_.loadingPanel);
      EXPECT_EQ(panel.right(), frameIn(content, ui_.displayWell).right());
      EXPECT_EQ(panel.bottom(), frameIn(content, ui_.wfView).bottom() - 6);
      EXPECT_TRUE(frameIn(content, ui_.wfView).contains(panel));
      EXPECT_LE(panel.height(), 24);
      const QRect label = frameIn(content, ui_.loadingLabel);
      const QRect bar = frameIn(content, ui_.loadingIndicator);
      EXPECT_GE(label.width(), ui_.loadingLabel->sizeHint().width()) << words;
      EXPECT_GE(label.height(), ui_.loadingLabel->sizeHint().height()) << words;
      EXPECT_EQ(bar.size(), QSize(150, 4));
      EXPECT_LT(label.right(), bar.left());
      EXPECT_TRUE(panel.contains(label) && panel.contains(bar)) << words;
      EXPECT_EQ(ui_.loadingIndicator->accessibleName(), QString::fromLatin1(words));
    }
  }
}

TEST_F(RecorderWindowInterfaceTest, AClickOnTheProgressPanelReachesTheWaveform) {
  ui_.loadingIndicator->show();
  ui_.loadingPanel->show();
  ui_.loadingPanel->setActivity(QStringLiteral("Saving"));
  QCoreApplication::sendPostedEvents();
  const QPoint middle = frameIn(&window_, ui_.loadingPanel).center();
  EXPECT_EQ(window_.childAt(middle), window_.childAt(middle - QPoint(0, 60)));
}

TEST_F(RecorderWindowInterfaceTest, HidingTheSpectrumButtonMovesNothing) {
  ui_.fftButton->hide();
  QCoreApplication::sendPostedEvents();
  EXPECT_EQ(frameIn(ui_.transportBackView, ui_.displayWell), QRect(352, 11, 236, 36));
  EXPECT_EQ(frameIn(ui_.transportBackView, ui_.fftButton), QRect(598, 15, 28, 28));
}

TEST_F(RecorderWindowInterfaceTest, RecordAndPlayAreSwitchesAndTheEndsAreRound) {
  EXPECT_TRUE(ui_.recButton->isSwitch());
  EXPECT_TRUE(ui_.playButton->isSwitch());
  EXPECT_FALSE(ui_.stopButton->isSwitch());
  EXPECT_FALSE(ui_.pauseButton->isSwitch());
  EXPECT_EQ(ui_.prevButton->type(), 1);
  EXPECT_EQ(ui_.nextButton->type(), 0);
}

TEST_F(RecorderWindowInterfaceTest, EveryButtonHasANameForAssistiveTechnology) {
  const auto buttons = window_.findChildren<OVTrackingButton*>();
  ASSERT_EQ(buttons.size(), 8);
  for (QWidget* button : buttons) {
    const auto* accessible = QAccessible::queryAccessibleInterface(button);
    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(accessible->role(), QAccessible::Button);
    EXPECT_FALSE(accessible->text(QAccessible::Name).isEmpty())
        << button->objectName().toStdString();
  }
}

TEST_F(RecorderWindowInterfaceTest, TabReachesEveryControlInTheOrderOfTheWindowAndBack) {
  const std::vector<QWidget*> order{ui_.wfView,      ui_.prevButton, ui_.recButton,  ui_.stopButton,
                                    ui_.pauseButton, ui_.playButton, ui_.nextButton, ui_.fftButton};
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window_));
  ui_.wfView->setFocus(Qt::TabFocusReason);
  for (std::size_t i = 0; i < order.size(); ++i) {
    EXPECT_EQ(window_.focusWidget(), order[i]) << i;
    QTest::keyClick(window_.windowHandle(), Qt::Key_Tab);
  }
  EXPECT_EQ(window_.focusWidget(), order.front()) << "and round again";
  QTest::keyClick(window_.windowHandle(), Qt::Key_Tab, Qt::ShiftModifier);
  EXPECT_EQ(window_.focusWidget(), order.back());
}

TEST_F(RecorderWindowInterfaceTest, TabReachesTheLampWhileItIsLit) {
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window_));
  ui_.clippingLamp->light(QStringLiteral("Too loud"));
  ui_.nextButton->setFocus(Qt::TabFocusReason);
  QTest::keyClick(window_.windowHandle(), Qt::Key_Tab);
  EXPECT_EQ(window_.focusWidget(), ui_.clippingLamp);
  QTest::keyClick(window_.windowHandle(), Qt::Key_Tab);
  EXPECT_EQ(window_.focusWidget(), ui_.fftButton);
}

TEST_F(RecorderWindowInterfaceTest, NoClickTakesTheKeyboardAndOnlyControlsTakeIt) {
  const auto views = window_.centralWidget()->findChildren<QWidget*>();
  ASSERT_TRUE(views.contains(ui_.wfView));
  for (const QWidget* view : views) {
    const bool control = view == ui_.wfView || qobject_cast<const OVTrackingButton*>(view);
    EXPECT_EQ(view->focusPolicy(), control ? Qt::TabFocus : Qt::NoFocus)
        << view->objectName().toStdString();
  }
}

TEST_F(RecorderWindowInterfaceTest, TransportKeysReachTheWindowWhereverTheKeyboardIs) {
  class Delegate final : public OVRecorderWindowDelegate {
   public:
    void windowDidReceiveKeyDown(OVRecorderWindow*, std::uint16_t keyCode) override {
      keys.push_back(keyCode);
    }
    void windowDidReceiveKeyUp(OVRecorderWindow*, std::uint16_t keyCode) override {
      keys.push_back(keyCode);
    }
    void windowDidCancelKey(OVRecorderWindow*, std::uint16_t) override {}
    bool windowShouldClose(OVRecorderWindow*) override { return true; }
    void windowWillClose(OVRecorderWindow*) override {}
    std::vector<int> keys;
  };
  const auto delegate = std::make_shared<Delegate>();
  window_.setDelegate(delegate);
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window_));
  for (QWidget* view : std::initializer_list<QWidget*>{ui_.wfView, ui_.recButton, ui_.fftButton}) {
    view->setFocus(Qt::TabFocusReason);
    delegate->keys.clear();
    for (const auto key : {Qt::Key_R, Qt::Key_Return, Qt::Key_Space}) {
      QTest::keyClick(window_.windowHandle(), key);
    }
    EXPECT_EQ(delegate->keys, (std::vector<int>{15, 15, 36, 36, 49, 49}))
        << view->objectName().toStdString();
  }
}

TEST_F(RecorderWindowInterfaceTest, AssistiveTechnologyFindsEveryViewWithNameAndRole) {
  const std::map<QString, QAccessible::Role> roles{{"wfView", QAccessible::Graphic},
                                                   {"playbackMarkerView", QAccessible::Indicator},
                                                   {"vuView", QAccessible::Indicator},
                                                   {"timeView", QAccessible::StaticText},
                                                   {"loadingIndicator", QAccessible::ProgressBar},
                                                   {"fftView", QAccessible::Graphic},
                                                   {"prevButton", QAccessible::Button},
                                                   {"recButton", QAccessible::Button},
                                                   {"stopButton", QAccessible::Button},
                                                   {"pauseButton", QAccessible::Button},
                                                   {"playButton", QAccessible::Button},
                                                   {"nextButton", QAccessible::Button},
                                                   {"fftButton", QAccessible::Button}};
  for (const auto& [name, role] : roles) {
    auto* const accessible =
        QAccessible::queryAccessibleInterface(window_.findChild<QWidget*>(name));
    ASSERT_NE(accessible, nullptr) << name.toStdString();
    EXPECT_EQ(accessible->role(), role) << name.toStdString();
    EXPECT_FALSE(accessible->text(QAccessible::Name).isEmpty()) << name.toStdString();
  }
}

TEST_F(RecorderWindowInterfaceTest, AssistiveTechnologyReachesEveryButtonFromTheWindowDown) {
  std::vector<QString> pressable;
  const std::function<void(QAccessibleInterface*)> walk = [&](QAccessibleInterface* at) {
    auto* const actions = at->actionInterface();
    if (at->role() == QAccessible::Button && !at->state().invisible && actions != nullptr &&
        actions->actionNames().contains(QAccessibleActionInterface::pressAction())) {
      pressable.push_back(at->text(QAccessible::Name));
    }
    for (int i = 0; i < at->childCount(); ++i) {
      walk(at->child(i));
    }
  };
  walk(QAccessible::queryAccessibleInterface(&window_));
  std::sort(pressable.begin(), pressable.end());
  EXPECT_EQ(pressable, (std::vector<QString>{"Pause", "Play", "Record", "Spectrum", "Stop",
                                             "To End", "To Start"}));
  ui_.clippingLamp->light(QStringLiteral("Too loud"));
  pressable.clear();
  walk(QAccessible::queryAccessibleInterface(&window_));
  EXPECT_EQ(std::count(pressable.begin(), pressable.end(), QStringLiteral("Clipping")), 1);
}

}  // namespace
