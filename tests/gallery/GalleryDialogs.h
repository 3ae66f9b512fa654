#pragma once

#include <functional>

#include <QString>
#include <QWidget>

class GalleryHome;

/// Shows every panel and question of the program, About, the diagnostics window, the menus and the
/// lists of the panels, one after the other, on the screen of a scale factor. Each is brought up by
/// the command that does so in the program, from a document in `home`. `show` receives each and its
/// picture's name. False, after a line on standard error, if one did not appear.
///
/// Threads: main.
[[nodiscard]] bool forEachGalleryDialog(double scale, const GalleryHome& home,
                                        const std::function<void(const QString&, QWidget&)>& show);
