#pragma once

#include <functional>

#include <QString>
#include <QWidget>

/// Shows alerts, questions, file panels, the diagnostics window and a menu, one after the other, on
/// the screen of a scale factor, on a light and on a dark desktop, and questions and panels in
/// every language. `show` receives each and its picture's name.
///
/// Threads: main.
void forEachGalleryDialog(double scale, const std::function<void(const QString&, QWidget&)>& show);
