#pragma once

#include <memory>
#include <vector>

#include <QString>
#include <QStringList>
#include <QTranslator>

/// Sets the language of the user interface while the object exists: Orvo's own texts, and those of
/// Qt's dialogs where its translations are installed. Untranslated texts and missing languages fall
/// back to English, which needs no file.
///
/// Threads: main. Real-time: not safe.
class OVTranslations {
 public:
  /// Selects the first available one of the languages, named as in QLocale::uiLanguages()
  /// ("zh-Hans-CN", "fr"), and installs its translators. Needs the QCoreApplication.
  explicit OVTranslations(const QStringList& uiLanguages);
  ~OVTranslations();
  OVTranslations(const OVTranslations&) = delete;
  OVTranslations& operator=(const OVTranslations&) = delete;

  /// The selected language, named as its file ("de", "zh_CN"); empty for English.
  [[nodiscard]] const QString& language() const { return language_; }

  /// The first of the languages that has a translation; empty for English, and if none has one.
  /// Every kind of Simplified Chinese is "zh_CN"; Traditional Chinese is not.
  [[nodiscard]] static QString languageOf(const QStringList& uiLanguages);

  /// The available languages besides English.
  [[nodiscard]] static QStringList languages();

 private:
  void install(const QString& name, const QString& folder);

  QString language_;
  std::vector<std::unique_ptr<QTranslator>> translators_;
};
