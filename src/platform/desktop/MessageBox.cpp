#include "platform/desktop/MessageBox.h"

#include <QEvent>
#include <QGridLayout>

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

/// A dialog knows its screen only once it is shown.
class SharpPicture : public QObject {
 public:
  explicit SharpPicture(QLabel& label) : QObject(&label), label_(label) { draw(); }

  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::Show || event->type() == QEvent::ScreenChangeInternal) {
      draw();
    }
    return QObject::eventFilter(watched, event);
  }

 private:
  void draw() { label_.setPixmap(programIcon().pixmap(kPictureSize, label_.devicePixelRatioF())); }

  QLabel& label_;
};

}  // namespace

QIcon programIcon() {
  QIcon icon;
  for (const int size : {16, 32, 48, 64, 128, 256}) {
    icon.addFile(QStringLiteral(":/images/orvo-%1.png").arg(size), QSize(size, size));
  }
  return icon;
}

void showProgramPicture(QLabel& label) {
  label.installEventFilter(new SharpPicture(label));
}

void makeTitle(QLabel& label) {
  QFont font = label.font();
  font.setBold(true);
  label.setFont(font);
}

void fillMessageBox(QMessageBox& box, const QString& title, const QString& message) {
  box.setWindowTitle(localized("Orvo"));
  box.setIconPixmap(programIcon().pixmap(kPictureSize));  // makes its label
  if (auto* const picture = box.findChild<QLabel*>(QStringLiteral("qt_msgboxex_icon_label"))) {
    showProgramPicture(*picture);
  }
  box.setText(title);
  box.setInformativeText(message);
  for (QLabel* const label : box.findChildren<QLabel*>()) {
    label->setTextFormat(Qt::PlainText);
  }
  if (auto* const heading = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"))) {
    makeTitle(*heading);
    widen(*qobject_cast<QGridLayout*>(box.layout()), heading);
  }
}

}  // namespace platform
