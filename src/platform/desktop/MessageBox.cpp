#include "platform/desktop/MessageBox.h"

#include <QGridLayout>
#include <QLabel>

#include "platform/mainloop/Localization.h"

namespace platform {
namespace {

constexpr QSize kPictureSize(48, 48);   // points
constexpr int kMinimumTextWidth = 340;  // points: a short title makes no column of single words

// A column of a message box, not its label: the box would then not wrap a longer text.
void widen(QGridLayout& grid, QLabel* text) {
  int row = 0;
  int column = 0;
  int rows = 0;
  int columns = 0;
  grid.getItemPosition(grid.indexOf(text), &row, &column, &rows, &columns);
  grid.setColumnMinimumWidth(column, kMinimumTextWidth);
}

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
    widen(*qobject_cast<QGridLayout*>(box.layout()), heading);
  }
}

}  // namespace platform
