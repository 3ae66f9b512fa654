#pragma once

#include <set>
#include <vector>

#include <QString>
#include <QStringList>

/// Files of translations, and what may be wrong with them.
///
/// Threads: any.
namespace translations {

struct Translation {
  QString key;         ///< the English text
  QString text;        ///< in the other language
  bool done = true;    ///< not marked as unfinished, and not empty
  bool needed = true;  ///< not kept although its key is gone
};

struct TranslationFile {
  QString language;  ///< as the file says of itself
  std::vector<Translation> translations;
  QStringList errors;  ///< what keeps it from being read, or from being found by the program
};

[[nodiscard]] TranslationFile readTranslations(const QString& path);

/// The texts of an interface file that are shown: all that is not marked as not to be translated.
/// What is shown and marked so all the same is appended to `complaints`.
[[nodiscard]] std::set<QString> textsOfInterface(const QString& path, QStringList& complaints);

/// Keys without a translation, translations without a key, keys that occur twice.
[[nodiscard]] QStringList complaintsAboutKeys(const TranslationFile& file,
                                              const std::set<QString>& keys);

/// What makes a translation useless or ugly: placeholders, key letters, paragraphs, spaces at the
/// ends or the sign at the end that differ from the key's; quotation marks and spaces before
/// punctuation that are not those of the language.
[[nodiscard]] QStringList complaintsAboutText(const Translation& translation,
                                              const QString& language);

}  // namespace translations
