#pragma once

#include <array>
#include <utility>

#include <QKeyEvent>
#include <QMouseEvent>

#include "document/FileFixture.h"

/// A document with a window whose transport buttons are held by a key or by the mouse.
class HeldPressFixture : public DocumentFileFixture {
 protected:
  static constexpr auto kSwitches = std::to_array<std::pair<Qt::Key, const char*>>(
      {{Qt::Key_R, "recButton"}, {Qt::Key_Space, "playButton"}});

  void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier,
             bool autoRepeat = false) {
    send(QEvent::KeyPress, key, modifiers, autoRepeat);
  }
  void release(Qt::Key key) { send(QEvent::KeyRelease, key, Qt::NoModifier, false); }
  void strike(Qt::Key key) {
    press(key);
    release(key);
  }

  void click(const char* name) { QTest::mouseClick(button(name), Qt::LeftButton); }
  void holdMouse(const char* name) { QTest::mousePress(button(name), Qt::LeftButton); }
  void releaseMouse(const char* name) { QTest::mouseRelease(button(name), Qt::LeftButton); }
  void dragOutAndRelease(const char* name) {
    sendOutside(QEvent::MouseMove, name);
    sendOutside(QEvent::MouseButtonRelease, name);
  }

  /// As when an alert or another window comes up.
  void loseTheKeyboard() {
    QEvent deactivate(QEvent::WindowDeactivate);
    QCoreApplication::sendEvent(document_->window(), &deactivate);
  }

  bool recording() { return document_->recorder() && document_->recorder()->isRecording(); }
  bool playing() { return document_->player() && document_->player()->isPlaying(); }

  void expectShown(const char* name, bool on, bool highlighted) {
    EXPECT_EQ(button(name)->isOn(), on) << name;
    EXPECT_EQ(button(name)->isHighlighted(), highlighted) << name;
  }

  /// Until the main loop runs, the transport is disabled.
  void beginToSave() {
    document_->saveFileNamed(at("take.wav"), 0);
    ASSERT_FALSE(transportEnabled());
  }

 private:
  void send(QEvent::Type type, Qt::Key key, Qt::KeyboardModifiers modifiers, bool autoRepeat) {
    QKeyEvent event(type, key, modifiers, QString(), autoRepeat);
    QCoreApplication::sendEvent(document_->window(), &event);
  }

  void sendOutside(QEvent::Type type, const char* name) {
    const QPointF outside(-5.0, -5.0);
    const bool moves = type == QEvent::MouseMove;
    QMouseEvent event(type, outside, button(name)->mapToGlobal(outside),
                      moves ? Qt::NoButton : Qt::LeftButton, moves ? Qt::LeftButton : Qt::NoButton,
                      Qt::NoModifier);
    QCoreApplication::sendEvent(button(name), &event);
  }
};
