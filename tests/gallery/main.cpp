// Writes pictures of every view in every state, of the whole window and of every dialog and alert
// to a folder.
//
//   orvo_gallery pictures FOLDER     views and windows at 1x, 1.25x, 1.5x and 2x; dialogs and
//                                    alerts at 1x and 2x, light and dark, and in every language
//   orvo_gallery dialogs FOLDER      dialogs and alerts alone
//   orvo_gallery references FOLDER   the tests' reference pictures: the pages alone
#include <cstdio>
#include <memory>

#include <QApplication>
#include <QDir>
#include <QLocale>
#include <QLoggingCategory>
#include <QSettings>
#include <QTemporaryDir>

#include "app/OVTranslations.h"
#include "gallery/GalleryAlerts.h"
#include "gallery/GalleryDialogs.h"
#include "gallery/GalleryHome.h"
#include "gallery/GalleryPages.h"
#include "gallery/GalleryPanels.h"
#include "gallery/GalleryScreen.h"
#include "gallery/GalleryWindows.h"
#include "platform/desktop/DialogStyle.h"
#include "support/DarkPalette.h"

namespace {

bool save(const QImage& picture, const QString& folder, const QString& name, double scale) {
  const QString file = QStringLiteral("%1/%2-%3x.png").arg(folder, name).arg(scale);
  if (!picture.save(file)) {
    std::fprintf(stderr, "%s cannot be written\n", qPrintable(file));
    return false;
  }
  std::printf("%s\n", qPrintable(file));
  return true;
}

bool savePages(const QString& folder) {
  for (const double scale : kScaleFactors) {
    for (const auto& page : makeGalleryPages()) {
      if (!showOnScreenOfScale(*page, scale) ||
          !save(pictureOfWindow(*page), folder, page->name(), scale)) {
        return false;
      }
    }
  }
  return true;
}

bool saveWindows(const QString& folder) {
  bool saved = true;
  for (const double scale : kScaleFactors) {
    forEachGalleryWindow(scale, [&](const QString& name, QWidget& window) {
      saved = saved && save(pictureOfWindow(window), folder, name, scale);
    });
  }
  return saved;
}

/// Saves dialogs and alerts in the colours and the language of the moment, which `look` names.
bool saveDialogs(const QString& folder, double scale, const QString& look, const GalleryHome& home,
                 const std::vector<GalleryAlerts>& alerts) {
  bool saved = true;
  const auto saveDialog = [&](const QString& name, QWidget& dialog) {
    saved = saved &&
            save(pictureOfWindow(dialog), folder, QLatin1String("dialog-") + name + look, scale);
  };
  const bool shown = forEachGalleryDialog(scale, home, saveDialog);
  forEachGalleryPanel(scale, saveDialog);
  forEachAlertSheet(scale, alerts, [&](const QString& name, const QImage& sheet) {
    saved = saved && save(sheet, folder, QLatin1String("alerts-") + name + look, scale);
  });
  return saved && shown;
}

bool saveDialogs(const QString& folder) {
  const GalleryHome home;
  const std::vector<GalleryAlerts> alerts = galleryAlerts(home);
  for (const double scale : {1.0, 2.0}) {
    for (const bool isDark : {false, true}) {
      const auto dark = isDark ? std::make_unique<support::DarkPalette>() : nullptr;
      const QString look = isDark ? QStringLiteral("-dark-desktop") : QString();
      if (!saveDialogs(folder, scale, look, home, alerts)) {
        return false;
      }
    }
  }
  bool saved = true;
  const QLocale usual;
  for (const QString& language : OVTranslations::languages()) {
    const OVTranslations translations({language});
    QLocale::setDefault(QLocale(language));
    const auto translated = galleryAlerts(home);
    for (const double scale : {1.0, 2.0}) {
      saved = saved && saveDialogs(folder, scale, QLatin1Char('-') + language, home, translated);
    }
  }
  QLocale::setDefault(usual);
  return saved;
}

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", ORVO_GALLERY_PLATFORM);
  QApplication application(argc, argv);
  platform::DialogStyle::install();
  QLoggingCategory::setFilterRules(QStringLiteral("default.warning=false"));  // of the platform
  const QTemporaryDir settings;
  QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
  qputenv("XDG_DATA_HOME", settings.path().toUtf8());
  QApplication::setApplicationVersion(QStringLiteral(ORVO_VERSION));
  const QStringList words = QApplication::arguments();
  const QString what = words.value(1);
  if (words.size() != 3 || !QStringList({"pictures", "dialogs", "references"}).contains(what)) {
    std::fprintf(stderr, "usage: orvo_gallery pictures|dialogs|references FOLDER\n");
    return 2;
  }
  const QString folder = words[2];
  if (!QDir().mkpath(folder)) {
    std::fprintf(stderr, "%s cannot be made\n", qPrintable(folder));
    return 1;
  }
  const bool all = what == QLatin1String("pictures");
  const bool dialogs = what == QLatin1String("dialogs");
  return (dialogs || savePages(folder)) && (!all || saveWindows(folder)) &&
                 ((!all && !dialogs) || saveDialogs(folder))
             ? 0
             : 1;
}
