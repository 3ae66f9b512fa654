#pragma once

#include <functional>

#include <QString>
#include <QWidget>

/// Shows the whole recorder window with its menus in each state, one after the other, on the screen
/// of a scale factor: empty, recorded, recording, playing, with the spectrum, at its smallest,
/// loading a file and drawing it, in every language, saving, drawing anew after a cut, and in a
/// dark desktop. Jobs are real ones, held half-way. `show` is handed each with the name of its
/// picture.
///
/// Threads: main.
void forEachGalleryWindow(double scale, const std::function<void(const QString&, QWidget&)>& show);
