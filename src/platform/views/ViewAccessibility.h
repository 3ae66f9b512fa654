#pragma once

#include <QAccessible>
#include <QString>
#include <QWidget>

namespace platform {

/// Tells assistive technology what a self-drawn view is: its localised name and its role. A view
/// with something to read out besides gives it as a property "accessibleValue" of text type, which
/// becomes its value and, unless it has one of its own, its description.
///
/// Threads: main. Real-time: not safe.
void describeView(QWidget* view, const QString& name, QAccessible::Role role);

}  // namespace platform
