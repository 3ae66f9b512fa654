#include "platform/desktop/MessageBox.h"

#include <QLabel>

#include "platform/mainloop/Localization.h"

namespace platform {
namespace {

constexpr QSize kPictureSize(48, 48);  // points

}  // namespace

QIcon programIcon() {
  QIcon icon;
  for (const int size : {16, 32, 48, 64, 128, 256}) {
    icon.addFile(QStringLiteral(":/images/orvo-%1.png").arg(size), QSize(size, size));
  }
  return icon;
}

QPixmap programPicture(const QWidget& dialog) {
  return programIcon().pixmap(kPictureSize, dialog.devicePixelRatioF());
}

void fillMessageBox(QMessageBox& box, const QString& title, const QString& message) {
  box.setWindowTitle(localized("Orvo"));
  box.setIconPixmap(programPicture(box));
  box.setText(title);
  box.setInformativeText(message);
  for (QLabel* const label : box.findChildren<QLabel*>()) {
    label->setTextFormat(Qt::PlainText);
  }
  if (auto* const heading = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"))) {
    QFont font = heading->font();
    font.setBold(true);
    heading->setFont(font);
  }
}

}  // namespace platform
