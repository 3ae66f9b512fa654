#pragma once

#include <functional>

#include <QString>
#include <QWidget>

/// Shows the panels that are windows of their own, one after the other, on the screen of a scale
/// factor: the question about recovered recordings, their list, also empty, and the question before
/// some are deleted. `show` receives each panel and its picture's name.
///
/// Threads: main.
void forEachGalleryPanel(double scale, const std::function<void(const QString&, QWidget&)>& show);
