#include "platform/views/ViewAccessibility.h"

#include <QAccessibleWidget>
#include <QVariant>

namespace platform {

namespace {

constexpr char kRoleProperty[] = "accessibleRole";
constexpr char kValueProperty[] = "accessibleValue";

class AccessibleView final : public QAccessibleWidget {
 public:
  AccessibleView(QWidget* view, QAccessible::Role role) : QAccessibleWidget(view, role) {}

  [[nodiscard]] QString text(QAccessible::Text kind) const override {
    QString own = QAccessibleWidget::text(kind);
    // Not every desktop exposes the value of a view that is not a slider; all expose descriptions.
    if (kind == QAccessible::Value || (kind == QAccessible::Description && own.isEmpty())) {
      return object()->property(kValueProperty).toString();
    }
    return own;
  }
};

QAccessibleInterface* makeAccessibleView(const QString&, QObject* object) {
  auto* view = qobject_cast<QWidget*>(object);
  const QVariant role = view == nullptr ? QVariant() : view->property(kRoleProperty);
  if (!role.isValid()) {
    return nullptr;
  }
  return new AccessibleView(view, static_cast<QAccessible::Role>(role.toInt()));
}

}  // namespace

void describeView(QWidget* view, const QString& name, QAccessible::Role role) {
  // Before the name, since naming a view creates its interface, which is then kept. Installing the
  // same factory again has no effect.
  QAccessible::installFactory(makeAccessibleView);
  view->setProperty(kRoleProperty, static_cast<int>(role));
  view->setAccessibleName(name);
}

void QtAnnouncer::announce(QWidget* view, [[maybe_unused]] const QString& text) {
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
  QAccessibleAnnouncementEvent announcement(view, text);
  send_(&announcement);
#else
  QAccessibleEvent alert(view, QAccessible::Alert);
  send_(&alert);
  if (view->isVisible()) {  // otherwise showing it sends this event
    QAccessibleEvent shown(view, QAccessible::ObjectShow);
    send_(&shown);
  }
#endif
}

std::shared_ptr<Announcer> Announcer::whenNoneIsInstalled() {
  return std::make_shared<QtAnnouncer>();
}

}  // namespace platform
