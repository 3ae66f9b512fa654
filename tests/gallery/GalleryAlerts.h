#pragma once

#include <functional>
#include <vector>

#include <QImage>
#include <QMessageBox>
#include <QString>

#include "support/fakes/RecordingServices.h"

class GalleryHome;

/// Alerts with one subject.
struct GalleryAlerts {
  QString subject;
  std::vector<support::RecordedAlert> alerts;
};

/// Every alert of the program in the language of the moment, as the code asks for it whose failure
/// is brought about: of sound devices, temporary files, windows and pages, and of files that cannot
/// be opened, read, loaded or saved.
///
/// Threads: main.
[[nodiscard]] std::vector<GalleryAlerts> galleryAlerts(const GalleryHome& home);

/// The same, each part for itself.
[[nodiscard]] GalleryAlerts soundAlerts();
[[nodiscard]] GalleryAlerts storageAlerts();
[[nodiscard]] GalleryAlerts applicationAlerts();
[[nodiscard]] GalleryAlerts openingAlerts();
[[nodiscard]] GalleryAlerts readingAlerts(const GalleryHome& home);
[[nodiscard]] GalleryAlerts loadingAlerts(const GalleryHome& home);
[[nodiscard]] GalleryAlerts writingAlerts();
[[nodiscard]] GalleryAlerts savingAlerts(const GalleryHome& home);

/// Shows an alert in the program's own message box, calls `look`, and presses its button.
///
/// Threads: main.
void showAlertBox(const support::RecordedAlert& alert, double scale,
                  const std::function<void(QMessageBox&)>& look);

/// Pictures of alerts in the program's own message box, in device pixels of a screen of this scale
/// factor, many on a sheet. `show` receives each sheet with its name, the subject and a number.
///
/// Threads: main.
void forEachAlertSheet(double scale, const std::vector<GalleryAlerts>& all,
                       const std::function<void(const QString&, const QImage&)>& show);
