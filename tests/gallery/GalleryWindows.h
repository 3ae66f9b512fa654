#pragma once

#include <functional>

#include <QString>
#include <QWidget>

/// Shows the whole recorder window with its menus in each state, one after the other, on the screen
/// of a scale factor: empty, recorded, recording, with notices and the lamp, playing, with the
/// spectrum, at its smallest size, loading a file and drawing it, in every language, saving,
/// redrawing after a cut, and on a dark desktop. Jobs are real, held half-way. `show` receives each
/// window and its picture's name.
///
/// Threads: main.
void forEachGalleryWindow(double scale, const std::function<void(const QString&, QWidget&)>& show);
