#pragma once

#include <memory>
#include <vector>

#include <QString>
#include <QStringList>
#include <QTranslator>

/// The language of what the user reads, for as long as the object lives: Orvo's own texts, and
/// those of Qt's dialogs where its translations are installed. What is not translated, and every
/// language that is not there, is English, which needs no file and looks for none.
///
/// Threads: main. Real-time: not safe.
class OVTranslations {
 public:
  /// Takes the first of the languages that there is, as QLocale::uiLanguages() lists them
  /// ("zh-Hans-CN", "fr"), and installs its translators. Needs the QCoreApplication.
  explicit OVTranslations(const QStringList& uiLanguages);
  ~OVTranslations();
  OVTranslations(const OVTranslations&) = delete;
  OVTranslations& operator=(const OVTranslations&) = delete;

  /// The language that is shown, as its file is named ("de", "zh_CN"); empty for English.
  [[nodiscard]] const QString& language() const { return language_; }

  /// The first of the languages for which there is a translation; empty for English, also when
  /// none of them is known. Every kind of Simplified Chinese is "zh_CN", and Traditional Chinese is
  /// not that.
  [[nodiscard]] static QString languageOf(const QStringList& uiLanguages);

  /// The languages that there are, beside English.
  [[nodiscard]] static QStringList languages();

 private:
  void install(const QString& name, const QString& folder);

  QString language_;
  std::vector<std::unique_ptr<QTranslator>> translators_;
};
