#pragma once

#include <QIcon>
#include <QMessageBox>
#include <QPixmap>
#include <QString>

/// The look of every alert and question: the program's icon, a bold title with the message below
/// it, both as plain text, since they contain file names, and buttons without icons: add them by
/// text, with a key letter, never as a standard button, which some desktops give an icon.
///
/// Threads: main. Real-time: not safe.
namespace platform {

[[nodiscard]] QIcon programIcon();

/// The program's icon for a view of a dialog, sharp on its screen.
[[nodiscard]] QPixmap programPicture(const QWidget& dialog);

/// Fills a message box that has no buttons yet. `message` may be empty.
void fillMessageBox(QMessageBox& box, const QString& title, const QString& message);

}  // namespace platform
