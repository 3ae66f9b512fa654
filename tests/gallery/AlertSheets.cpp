#include <algorithm>
#include <cmath>

#include <QApplication>
#include <QMessageBox>
#include <QPainter>
#include <QTimer>

#include "app/OVApplicationServices.h"
#include "gallery/GalleryAlerts.h"
#include "gallery/GalleryScreen.h"

namespace {

constexpr std::size_t kRows = 6;  // of a sheet, with two alerts each
constexpr double kMargin = 16.0;  // points

/// Two columns. Each row is as high as its higher picture.
QImage sheetOf(const std::vector<QImage>& pictures, double scale) {
  const int margin = static_cast<int>(std::lround(kMargin * scale));
  int width = 0;
  int height = margin;
  for (std::size_t i = 0; i < pictures.size(); i += 2) {
    const QImage& left = pictures[i];
    const QImage right = i + 1 < pictures.size() ? pictures[i + 1] : QImage();
    width = std::max({width, left.width(), right.width()});
    height += std::max(left.height(), right.height()) + margin;
  }
  QImage sheet(2 * width + 3 * margin, height, QImage::Format_RGB32);
  sheet.fill(QColor(128, 134, 142));
  QPainter painter(&sheet);
  int y = margin;
  for (std::size_t i = 0; i < pictures.size(); ++i) {
    QImage picture = pictures[i];
    picture.setDevicePixelRatio(1.0);
    const bool isLeft = i % 2 == 0;
    painter.drawImage(isLeft ? margin : width + 2 * margin, y, picture);
    if (!isLeft) {
      y += std::max(picture.height(), pictures[i - 1].height()) + margin;
    }
  }
  return sheet;
}

}  // namespace

void showAlertBox(const support::RecordedAlert& alert, double scale,
                  const std::function<void(QMessageBox&)>& look) {
  QTimer user;
  QObject::connect(&user, &QTimer::timeout, &user, [&] {
    auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    if (box == nullptr) {
      return;
    }
    user.stop();
    static_cast<void>(showOnScreenOfScale(*box, scale));
    look(*box);
    box->close();
  });
  user.start(0);
  OVApplicationServices({}).showModalAlert(alert.title, alert.message);
}

void forEachAlertSheet(double scale, const std::vector<GalleryAlerts>& all,
                       const std::function<void(const QString&, const QImage&)>& show) {
  for (const GalleryAlerts& part : all) {
    std::vector<QImage> pictures;
    int number = 0;
    for (const support::RecordedAlert& alert : part.alerts) {
      showAlertBox(alert, scale,
                   [&](QMessageBox& box) { pictures.push_back(pictureOfWindow(box)); });
      if (pictures.size() == 2 * kRows || &alert == &part.alerts.back()) {
        show(QStringLiteral("%1-%2").arg(part.subject).arg(++number), sheetOf(pictures, scale));
        pictures.clear();
      }
    }
  }
}
