#pragma once

#include <QString>
#include <QStringView>

/// The columns that a text takes on a terminal: two for each wide character, as those of Chinese
/// and Japanese are, none for a combining mark.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] int columnsOf(QStringView text);

/// Lines of at most `columns` columns, each indented by `indentation` of them and ended by a
/// newline. Breaks between words, and beside wide characters where the rules of their languages
/// allow it; paths and options stay whole. A word that is too long stands alone.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] QString wrappedText(const QString& text, int indentation, int columns);
