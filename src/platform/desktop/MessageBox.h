#pragma once

#include <QIcon>
#include <QLabel>
#include <QMessageBox>
#include <QString>

/// The look of every alert and question: the program's icon, a bold title with the message below
/// it, both as plain text, since they contain file names, and buttons without icons: add them by
/// text, with a key letter, never as a standard button, which some desktops give an icon.
///
/// Threads: main. Real-time: not safe.
namespace platform {

[[nodiscard]] QIcon programIcon();

/// Shows the program's icon in a label of a dialog, sharp on the screen where the dialog is shown.
void showProgramPicture(QLabel& label);

/// The look of a title: bold.
void makeTitle(QLabel& label);

/// Fills a message box that has no buttons yet. `message` may be empty.
void fillMessageBox(QMessageBox& box, const QString& title, const QString& message);

}  // namespace platform
