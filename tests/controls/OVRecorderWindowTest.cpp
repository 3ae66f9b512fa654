#include "controls/OVRecorderWindow.h"

#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include <QKeyEvent>
#include <QMenuBar>
#include <QPointer>
#include <QTest>

#include <gmock/gmock.h>

#include "controls/OVRecorderWindowDelegate.h"
#include "controls/buttons/OVTransportButton.h"

namespace {

using Keys = std::vector<std::pair<char, int>>;  // 'd', 'u' or 'c' for cancelled, and the code

class Delegate : public OVRecorderWindowDelegate {
 public:
  void windowDidReceiveKeyDown(OVRecorderWindow* /*window*/, std::uint16_t keyCode) override {
    keys.emplace_back('d', keyCode);
  }
  void windowDidReceiveKeyUp(OVRecorderWindow* /*window*/, std::uint16_t keyCode) override {
    keys.emplace_back('u', keyCode);
  }
  void windowDidCancelKey(OVRecorderWindow* /*window*/, std::uint16_t keyCode) override {
    keys.emplace_back('c', keyCode);
  }
  bool windowShouldClose(OVRecorderWindow* window) override {
    ++asked;
    if (whileAsked) {
      whileAsked(window);
    }
    return mayClose;
  }
  void windowWillClose(OVRecorderWindow* window) override {
    ++told;
    EXPECT_TRUE(window->isVisible());
    if (whileTold) {
      whileTold();
    }
  }

  Keys keys;
  bool mayClose = true;
  int asked = 0;
  int told = 0;
  std::function<void(OVRecorderWindow*)> whileAsked;
  std::function<void()> whileTold;
};

class OVRecorderWindowTest : public testing::Test {
 protected:
  void SetUp() override {
    window_->setCentralWidget(new QWidget);
    window_->setDelegate(delegate_);
    window_->show();
    window_->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window_));
  }

  void TearDown() override { delete window_; }

  // As the window system delivers it.
  void send(QEvent::Type type, int key, bool autoRepeat = false,
            Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QKeyEvent event(type, key, modifiers, QString(), autoRepeat);
    QCoreApplication::sendEvent(window_->windowHandle(), &event);
  }

  void loseTheKeyboard() {
    QEvent deactivate(QEvent::WindowDeactivate);
    QCoreApplication::sendEvent(window_, &deactivate);
  }

  static void deleteWhatIsDue() {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }

  std::shared_ptr<Delegate> delegate_ = std::make_shared<Delegate>();
  QPointer<OVRecorderWindow> window_ = new OVRecorderWindow;
};

TEST_F(OVRecorderWindowTest, AKeyPressReachesTheDelegateOnceDownAndOnceUp) {
  QTest::keyClick(window_->windowHandle(), Qt::Key_R);
  QTest::keyClick(window_->windowHandle(), Qt::Key_Return);
  QTest::keyClick(window_->windowHandle(), Qt::Key_Enter);
  QTest::keyClick(window_->windowHandle(), Qt::Key_Space);
  EXPECT_EQ(
      delegate_->keys,
      (Keys{
          {'d', 15}, {'u', 15}, {'d', 36}, {'u', 36}, {'d', 36}, {'u', 36}, {'d', 49}, {'u', 49}}));
}

TEST_F(OVRecorderWindowTest, OtherKeysAreForwardedAsUnmapped) {
  QTest::keyClick(window_->windowHandle(), Qt::Key_X);
  QTest::keyClick(window_->windowHandle(), Qt::Key_Tab);
  EXPECT_THAT(delegate_->keys, testing::Contains(std::pair<char, int>('d', 0xFFFF)));
  EXPECT_THAT(delegate_->keys, testing::Not(testing::Contains(std::pair<char, int>('d', 49))));
}

TEST_F(OVRecorderWindowTest, AHeldKeyRepeatsItsDownAndComesUpOnce) {
  send(QEvent::KeyPress, Qt::Key_Space);
  for (int i = 0; i < 3; ++i) {
    send(QEvent::KeyRelease, Qt::Key_Space, true);
    send(QEvent::KeyPress, Qt::Key_Space, true);
  }
  send(QEvent::KeyRelease, Qt::Key_Space);
  EXPECT_EQ(delegate_->keys, (Keys{{'d', 49}, {'d', 49}, {'d', 49}, {'d', 49}, {'u', 49}}));
}

TEST_F(OVRecorderWindowTest, ButtonsInsideDoNotTakeTheKeys) {
  auto* button = new OVTransportButton(window_->centralWidget());
  button->setGeometry(10, 10, 46, 32);
  button->show();
  QTest::mouseClick(window_->windowHandle(), Qt::LeftButton, {},
                    button->mapTo(window_.data(), QPoint(20, 10)));
  QTest::keyClick(window_->windowHandle(), Qt::Key_Space);
  EXPECT_EQ(delegate_->keys, (Keys{{'d', 49}, {'u', 49}}));
  EXPECT_FALSE(button->isHighlighted());
}

TEST_F(OVRecorderWindowTest, MenuShortcutsWithModifiersKeepWorking) {
  int saved = 0;
  QMenu* menu = window_->menuBar()->addMenu(QStringLiteral("File"));
  menu->addAction(QStringLiteral("Save"), QKeySequence(Qt::CTRL | Qt::Key_S), window_,
                  [&saved] { ++saved; });
  QTest::keyClick(window_->windowHandle(), Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(saved, 1);
  // Control itself went down; the S of the shortcut is only reported as released.
  EXPECT_EQ(delegate_->keys, (Keys{{'d', 0xFFFF}, {'u', 0xFFFF}, {'u', 0xFFFF}}));
}

TEST_F(OVRecorderWindowTest, ACommandKeyIsNoTransportKey) {
  QTest::keyPress(window_->windowHandle(), Qt::Key_R, Qt::ControlModifier);
  EXPECT_EQ(delegate_->keys, (Keys{{'d', 0xFFFF}, {'d', 0xFFFF}}));  // Control, and R with it
  QTest::keyRelease(window_->windowHandle(), Qt::Key_R, Qt::ControlModifier);
}

TEST_F(OVRecorderWindowTest, TheReleaseOfACommandKeyIsNoTransportKeyEither) {
  for (const auto key : {Qt::Key_R, Qt::Key_Return, Qt::Key_Space}) {
    delegate_->keys.clear();
    send(QEvent::KeyPress, key, false, Qt::ControlModifier);
    send(QEvent::KeyRelease, key);  // Control was released first
    EXPECT_EQ(delegate_->keys, (Keys{{'d', 0xFFFF}, {'u', 0xFFFF}})) << key;
  }
}

TEST_F(OVRecorderWindowTest, AReleaseWhosePressWentElsewhereIsUnmapped) {
  send(QEvent::KeyRelease, Qt::Key_Space);  // a menu closed at the press
  EXPECT_EQ(delegate_->keys, (Keys{{'u', 0xFFFF}}));
}

TEST_F(OVRecorderWindowTest, AHeldKeyWhosePressWentElsewhereStaysUnmapped) {
  send(QEvent::KeyPress, Qt::Key_Space, false, Qt::ControlModifier);
  send(QEvent::KeyRelease, Qt::Key_Space, true);
  send(QEvent::KeyPress, Qt::Key_Space, true);  // Control was released, Space repeats
  send(QEvent::KeyRelease, Qt::Key_Space);
  EXPECT_EQ(delegate_->keys, (Keys{{'d', 0xFFFF}, {'d', 0xFFFF}, {'u', 0xFFFF}}));
}

TEST_F(OVRecorderWindowTest, AKeyThatWentDownPlainComesUpUnderAModifierToo) {
  send(QEvent::KeyPress, Qt::Key_Space);
  send(QEvent::KeyRelease, Qt::Key_Space, true, Qt::ControlModifier);
  send(QEvent::KeyPress, Qt::Key_Space, true, Qt::ControlModifier);
  send(QEvent::KeyRelease, Qt::Key_Space, false, Qt::ControlModifier);
  EXPECT_EQ(delegate_->keys, (Keys{{'d', 49}, {'d', 0xFFFF}, {'u', 49}}));
}

TEST_F(OVRecorderWindowTest, APlainPressIsCancelledWhenTheWindowLosesTheKeyboard) {
  send(QEvent::KeyPress, Qt::Key_Space);
  loseTheKeyboard();
  EXPECT_EQ(delegate_->keys, (Keys{{'d', 49}, {'c', 49}}));
  send(QEvent::KeyRelease, Qt::Key_Space);
  EXPECT_EQ(delegate_->keys, (Keys{{'d', 49}, {'c', 49}, {'u', 0xFFFF}}));
}

TEST_F(OVRecorderWindowTest, EveryKeyThatIsDownIsCancelledOnceAndNoOther) {
  send(QEvent::KeyPress, Qt::Key_Return);
  send(QEvent::KeyRelease, Qt::Key_Return);
  send(QEvent::KeyPress, Qt::Key_R);
  send(QEvent::KeyPress, Qt::Key_X);
  send(QEvent::KeyPress, Qt::Key_Space);
  delegate_->keys.clear();
  loseTheKeyboard();
  loseTheKeyboard();
  EXPECT_THAT(delegate_->keys,
              testing::UnorderedElementsAre(std::pair('c', 15), std::pair('c', 49)));
}

TEST_F(OVRecorderWindowTest, ACancelledKeyThatIsStillHeldRepeatsAsUnmapped) {
  send(QEvent::KeyPress, Qt::Key_Space);
  loseTheKeyboard();
  delegate_->keys.clear();
  send(QEvent::KeyRelease, Qt::Key_Space, true);
  send(QEvent::KeyPress, Qt::Key_Space, true);
  send(QEvent::KeyRelease, Qt::Key_Space);
  EXPECT_EQ(delegate_->keys, (Keys{{'d', 0xFFFF}, {'u', 0xFFFF}}));
}

TEST_F(OVRecorderWindowTest, LosingTheKeyboardWithoutADelegateForgetsTheKey) {
  send(QEvent::KeyPress, Qt::Key_Space);
  window_->setDelegate({});
  loseTheKeyboard();
  window_->setDelegate(delegate_);
  send(QEvent::KeyRelease, Qt::Key_Space);
  EXPECT_EQ(delegate_->keys, (Keys{{'d', 49}, {'u', 0xFFFF}}));
}

TEST_F(OVRecorderWindowTest, ACommandTakesThePlaceOfAPlainPressWhoseReleaseWasLost) {
  send(QEvent::KeyPress, Qt::Key_Space);
  send(QEvent::KeyPress, Qt::Key_Space, false, Qt::ControlModifier);
  send(QEvent::KeyRelease, Qt::Key_Space);
  EXPECT_EQ(delegate_->keys, (Keys{{'d', 49}, {'c', 49}, {'d', 0xFFFF}, {'u', 0xFFFF}}));
}

TEST_F(OVRecorderWindowTest, TwoKeysHeldTogetherEachComeUp) {
  send(QEvent::KeyPress, Qt::Key_R);
  send(QEvent::KeyPress, Qt::Key_Space);
  send(QEvent::KeyRelease, Qt::Key_R);
  send(QEvent::KeyRelease, Qt::Key_Space);
  EXPECT_EQ(delegate_->keys, (Keys{{'d', 15}, {'d', 49}, {'u', 15}, {'u', 49}}));
}

TEST_F(OVRecorderWindowTest, WithoutADelegateKeysDoNothing) {
  delegate_.reset();
  QTest::keyClick(window_->windowHandle(), Qt::Key_R);
  EXPECT_EQ(window_->delegate(), nullptr);
  EXPECT_TRUE(window_->isVisible());
}

TEST_F(OVRecorderWindowTest, ClosingAsksThenTellsThenDeletesTheWindow) {
  window_->performClose();
  EXPECT_EQ(delegate_->asked, 1);
  EXPECT_EQ(delegate_->told, 1);
  EXPECT_FALSE(window_->isVisible());
  deleteWhatIsDue();
  EXPECT_TRUE(window_.isNull());
}

TEST_F(OVRecorderWindowTest, ARefusalKeepsTheWindowOpenAndIsAskedAgain) {
  delegate_->mayClose = false;
  window_->performClose();
  window_->close();
  deleteWhatIsDue();
  ASSERT_FALSE(window_.isNull());
  EXPECT_TRUE(window_->isVisible());
  EXPECT_EQ(delegate_->asked, 2);
  EXPECT_EQ(delegate_->told, 0);
  delegate_->mayClose = true;
  window_->performClose();
  EXPECT_EQ(delegate_->told, 1);
}

TEST_F(OVRecorderWindowTest, ASecondCloseBeforeTheWindowIsGoneTellsNobody) {
  window_->performClose();
  window_->performClose();
  EXPECT_EQ(delegate_->asked, 1);
  EXPECT_EQ(delegate_->told, 1);
}

TEST_F(OVRecorderWindowTest, ClosingFromWithinTheQuestionTellsOnce) {
  delegate_->whileAsked = [this](OVRecorderWindow* window) {
    delegate_->whileAsked = nullptr;
    QCloseEvent again;
    QCoreApplication::sendEvent(window, &again);
  };
  window_->performClose();
  EXPECT_EQ(delegate_->told, 1);
}

TEST_F(OVRecorderWindowTest, TheDelegateMayEndWhileItIsTold) {
  const std::weak_ptr<Delegate> weak = delegate_;
  delegate_->whileTold = [this] { delegate_.reset(); };
  window_->performClose();
  EXPECT_TRUE(weak.expired());
  deleteWhatIsDue();
  EXPECT_TRUE(window_.isNull());
}

TEST_F(OVRecorderWindowTest, WithoutADelegateItSimplyCloses) {
  delegate_.reset();
  window_->performClose();
  deleteWhatIsDue();
  EXPECT_TRUE(window_.isNull());
}

TEST_F(OVRecorderWindowTest, TheEditedStateShowsInTheTitle) {
  window_->setTitle(QStringLiteral("Orvo - Unnamed"));
  EXPECT_FALSE(window_->isDocumentEdited());
  window_->setDocumentEdited(true);
  EXPECT_TRUE(window_->isDocumentEdited());
  EXPECT_TRUE(window_->isWindowModified());
  EXPECT_TRUE(window_->windowTitle().endsWith(QStringLiteral("[*]")));
  EXPECT_EQ(window_->title(), QStringLiteral("Orvo - Unnamed"));
  window_->setDocumentEdited(false);
  EXPECT_FALSE(window_->isWindowModified());
}

TEST_F(OVRecorderWindowTest, AFileNameWithTheMarkInItIsShownAsItStands) {
  window_->setTitle(QStringLiteral("Orvo - a[*]b.wav"));
  EXPECT_EQ(window_->title(), QStringLiteral("Orvo - a[*]b.wav"));
  EXPECT_EQ(window_->windowTitle(), QStringLiteral("Orvo - a[*][*]b.wav[*]"));
}

}  // namespace
