#include "app/OVTranslations.h"

#include <utility>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QLibraryInfo>
#include <QLocale>

namespace {

const QString kFolder = QStringLiteral(":/translations");
const QString kPrefix = QStringLiteral("orvo_");
const QString kSuffix = QStringLiteral(".qm");

// The name of a language's translation: "de" for "de-AT", "zh_CN" for "zh-Hans-SG".
QString translationName(const QString& uiLanguage) {
  const QLocale locale(uiLanguage);
  if (locale.language() == QLocale::Chinese) {
    return locale.script() == QLocale::SimplifiedHanScript ? QStringLiteral("zh_CN")
                                                           : QStringLiteral("zh_TW");
  }
  // "C" is no language; Qt also uses it for unknown ones.
  return locale.language() == QLocale::C ? QString() : QLocale::languageToCode(locale.language());
}

}  // namespace

QString OVTranslations::languageOf(const QStringList& uiLanguages) {
  for (const QString& uiLanguage : uiLanguages) {
    QString name = translationName(uiLanguage);
    if (name == QLatin1String("en")) {
      return {};
    }
    if (!name.isEmpty() && QFile::exists(kFolder + QLatin1Char('/') + kPrefix + name + kSuffix)) {
      return name;
    }
  }
  return {};
}

QStringList OVTranslations::languages() {
  QStringList names;
  for (const QString& file : QDir(kFolder).entryList({kPrefix + QLatin1Char('*') + kSuffix})) {
    names << file.mid(kPrefix.size(), file.size() - kPrefix.size() - kSuffix.size());
  }
  return names;
}

OVTranslations::OVTranslations(const QStringList& uiLanguages)
    : language_(languageOf(uiLanguages)) {
  if (!language_.isEmpty()) {
    install(QStringLiteral("qtbase_") + language_,
            QLibraryInfo::path(QLibraryInfo::TranslationsPath));
    install(kPrefix + language_, kFolder);
  }
}

OVTranslations::~OVTranslations() {
  for (const auto& translator : translators_) {
    QCoreApplication::removeTranslator(translator.get());
  }
}

void OVTranslations::install(const QString& name, const QString& folder) {
  auto translator = std::make_unique<QTranslator>();
  if (translator->load(name, folder)) {
    QCoreApplication::installTranslator(translator.get());
    translators_.push_back(std::move(translator));
  }
}
