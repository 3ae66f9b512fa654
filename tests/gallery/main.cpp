// Writes pictures of every view in every state, of the whole window and of panels, to a folder.
//
//   orvo_gallery pictures FOLDER     everything, at 1x, 1.25x, 1.5x and 2x
//   orvo_gallery references FOLDER   the tests' reference pictures: the pages alone
#include <cstdio>

#include <QApplication>
#include <QDir>
#include <QLoggingCategory>
#include <QSettings>
#include <QTemporaryDir>

#include "gallery/GalleryDialogs.h"
#include "gallery/GalleryPages.h"
#include "gallery/GalleryPanels.h"
#include "gallery/GalleryScreen.h"
#include "gallery/GalleryWindows.h"

namespace {

bool save(QWidget& window, const QString& folder, const QString& name, double scale) {
  const QString file = QStringLiteral("%1/%2-%3x.png").arg(folder, name).arg(scale);
  if (!pictureOfWindow(window).save(file)) {
    std::fprintf(stderr, "%s cannot be written\n", qPrintable(file));
    return false;
  }
  std::printf("%s\n", qPrintable(file));
  return true;
}

bool savePages(const QString& folder) {
  for (const double scale : kScaleFactors) {
    for (const auto& page : makeGalleryPages()) {
      if (!showOnScreenOfScale(*page, scale) || !save(*page, folder, page->name(), scale)) {
        return false;
      }
    }
  }
  return true;
}

bool saveWindows(const QString& folder) {
  bool saved = true;
  for (const double scale : kScaleFactors) {
    const auto saveOne = [&](const QString& name, QWidget& window) {
      saved = saved && save(window, folder, name, scale);
    };
    forEachGalleryWindow(scale, saveOne);
    forEachGalleryPanel(scale, saveOne);
    forEachGalleryDialog(scale, saveOne);
  }
  return saved;
}

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", ORVO_GALLERY_PLATFORM);
  QApplication application(argc, argv);
  QLoggingCategory::setFilterRules(QStringLiteral("default.warning=false"));  // of the platform
  const QTemporaryDir settings;
  QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
  const QStringList words = QApplication::arguments();
  const bool references = words.value(1) == QLatin1String("references");
  if (words.size() != 3 || (!references && words[1] != QLatin1String("pictures"))) {
    std::fprintf(stderr, "usage: orvo_gallery pictures|references FOLDER\n");
    return 2;
  }
  const QString folder = words[2];
  if (!QDir().mkpath(folder)) {
    std::fprintf(stderr, "%s cannot be made\n", qPrintable(folder));
    return 1;
  }
  return savePages(folder) && (references || saveWindows(folder)) ? 0 : 1;
}
