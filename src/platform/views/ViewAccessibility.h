#pragma once

#include <QAccessible>
#include <QString>
#include <QWidget>

namespace platform {

/// Sets a self-drawn view's localised name and role for assistive technology. A view with a text
/// property "accessibleValue" exposes it as its value and, unless it has its own, as its
/// description.
///
/// Threads: main. Real-time: not safe.
void describeView(QWidget* view, const QString& name, QAccessible::Role role);

}  // namespace platform
