#include "controls/OVButtonAccessibility.h"

#include <QAccessible>
#include <QAccessibleWidget>

#include "controls/OVTrackingButton.h"

namespace {

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
  OVTrackingButton* button_;  // the interface goes when its button goes
};

QAccessibleInterface* makeInterface(const QString& className, QObject* object) {
  // Asked for each class of the object from the most derived one upward.
  if (className == QLatin1String(OVTrackingButton::staticMetaObject.className())) {
    return new ButtonInterface(static_cast<OVTrackingButton*>(object));
  }
  return nullptr;
}

}  // namespace

void OVInstallButtonAccessibility() {
  [[maybe_unused]] static const bool installed = [] {
    QAccessible::installFactory(makeInterface);
    return true;
  }();
}

void OVAnnounceButtonState(OVTrackingButton* button) {
  if (!QAccessible::isActive() || !button->isSwitch()) {
    return;
  }
  QAccessible::State changed;
  changed.checked = true;
  QAccessibleStateChangeEvent event(button, changed);
  QAccessible::updateAccessibility(&event);
}
