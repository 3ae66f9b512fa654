#include "controls/buttons/OVTrackingButton.h"

#include <utility>

#include <QAccessible>
#include <QAccessibleWidget>
#include <QKeyEvent>
#include <QMouseEvent>

namespace {

/// What assistive technology sees.
class ButtonInterface : public QAccessibleWidget {
 public:
  explicit ButtonInterface(OVTrackingButton* button)
      : QAccessibleWidget(button, QAccessible::Button), button_(button) {}

  QAccessible::State state() const override {
    QAccessible::State state = QAccessibleWidget::state();
    state.checkable = button_->isSwitch();
    state.checked = button_->isSwitch() && button_->isOn();
    state.pressed = button_->isHighlighted();
    return state;
  }

  QStringList actionNames() const override {
    if (!button_->isEnabled()) {
      return {};
    }
    return QStringList{pressAction()} + QAccessibleWidget::actionNames();
  }

  void doAction(const QString& name) override {
    if (name == pressAction()) {
      button_->performClick();
    } else {
      QAccessibleWidget::doAction(name);
    }
  }

  QStringList keyBindingsForAction(const QString& name) const override {
    return name == pressAction() ? QStringList{QStringLiteral("Ctrl+Return")} : QStringList{};
  }

 private:
  OVTrackingButton* button_;  // Qt deletes the interface together with the button
};

QAccessibleInterface* makeInterface(const QString& className, QObject* object) {
  // Called for each class of the object, from the most derived one upward.
  if (className == QLatin1String(OVTrackingButton::staticMetaObject.className())) {
    return new ButtonInterface(static_cast<OVTrackingButton*>(object));
  }
  return nullptr;
}

// Runs before a button's interface is first requested.
void installAccessibility() {
  [[maybe_unused]] static const bool installed = [] {
    QAccessible::installFactory(makeInterface);
    return true;
  }();
}

bool isReturn(const QKeyEvent& event) {
  return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

// Half open: a point on the right or bottom edge is outside.
bool isInside(const QWidget& widget, const QPointF& point) {
  return point.x() >= 0.0 && point.y() >= 0.0 && point.x() < widget.width() &&
         point.y() < widget.height();
}

}  // namespace

OVTrackingButton::OVTrackingButton(QWidget* parent) : QWidget(parent) {
  installAccessibility();
  setFocusPolicy(Qt::TabFocus);
}

void OVTrackingButton::setIsOn(bool isOn) {
  showOn(isOn);
  update();
}

void OVTrackingButton::setTarget(std::weak_ptr<void> target) {
  target_ = std::move(target);
}

void OVTrackingButton::setAction(Action action) {
  action_ = std::move(action);
}

void OVTrackingButton::cancelPress() {
  if (std::exchange(isTracking_, false) && isSwitch_) {
    showOn(prevOn_);
  }
  isHighlighted_ = false;
  update();
}

void OVTrackingButton::performClick() {
  if (!isEnabled()) {
    return;
  }
  if (isSwitch_) {
    setIsOn(!isOn_);
  }
  sendAction();
}

bool OVTrackingButton::tracks(const QMouseEvent* event) const {
  const bool left = event->button() == Qt::LeftButton ||
                    (event->type() == QEvent::MouseMove && (event->buttons() & Qt::LeftButton));
  return left && isEnabled();
}

void OVTrackingButton::mousePressEvent(QMouseEvent* event) {
  if (!tracks(event)) {
    event->ignore();
    return;
  }
  isTracking_ = true;
  isHighlighted_ = true;
  if (isSwitch_) {
    prevOn_ = isOn_;
    showOn(!prevOn_);
  }
  update();
}

void OVTrackingButton::mouseMoveEvent(QMouseEvent* event) {
  if (!isTracking_ || !tracks(event)) {
    event->ignore();
    return;
  }
  isHighlighted_ = isInside(*this, event->position());
  if (isSwitch_) {
    showOn(isHighlighted_ ? !prevOn_ : prevOn_);
  }
  update();
}

void OVTrackingButton::mouseReleaseEvent(QMouseEvent* event) {
  if (!isTracking_ || !tracks(event)) {
    event->ignore();
    return;
  }
  isTracking_ = false;
  isHighlighted_ = false;
  update();
  if (isInside(*this, event->position())) {
    sendAction();  // last: the action may delete the button
  }
}

void OVTrackingButton::keyPressEvent(QKeyEvent* event) {
  if (!isReturn(*event) || !event->modifiers().testFlag(Qt::ControlModifier)) {
    event->ignore();
    return;
  }
  if (!event->isAutoRepeat()) {
    isKeyDown_ = true;
    performClick();  // last: the action may delete the button
  }
}

void OVTrackingButton::keyReleaseEvent(QKeyEvent* event) {
  // The window, for which plain Return is a command, must not see half a key press.
  if (!isKeyDown_ || !isReturn(*event)) {
    event->ignore();
  } else if (!event->isAutoRepeat()) {
    isKeyDown_ = false;
  }
}

void OVTrackingButton::focusInEvent(QFocusEvent* event) {
  if (focusRing_.handle(*event)) {
    update();
  }
}

void OVTrackingButton::focusOutEvent(QFocusEvent* event) {
  isKeyDown_ = false;
  if (focusRing_.handle(*event)) {
    update();
  }
}

void OVTrackingButton::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::EnabledChange) {
    update();
  }
}

void OVTrackingButton::showOn(bool isOn) {
  if (isOn == isOn_) {
    return;
  }
  isOn_ = isOn;
  announceState();
}

void OVTrackingButton::announceState() {
  if (!QAccessible::isActive() || !isSwitch_) {
    return;
  }
  QAccessible::State changed;
  changed.checked = true;
  QAccessibleStateChangeEvent event(this, changed);
  QAccessible::updateAccessibility(&event);
}

void OVTrackingButton::sendAction() {
  const std::shared_ptr<void> target = target_.lock();
  const Action action = action_;  // a copy: the action may replace itself
  if (target != nullptr && action) {
    action(this);
  }
}
