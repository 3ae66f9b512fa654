// A window like a file manager's: files can be dragged out of it, as URIs that keep every byte of
// their names.
//
//   orvo_drag_source FILE…
//
// Prints "accepted" when the window under the mouse accepts the files, and "dropped" when it has
// received them.

#include <iostream>
#include <utility>

#include <QApplication>
#include <QDrag>
#include <QMimeData>
#include <QWidget>

namespace {

class DragSource : public QWidget {
 public:
  explicit DragSource(QByteArray addresses) : addresses_(std::move(addresses)) {
    setWindowTitle("Drag Source");
    setGeometry(20, 40, 200, 100);
  }

 protected:
  void mouseMoveEvent(QMouseEvent*) override {
    auto* const drag = new QDrag(this);  // deleted by Qt when it is over
    auto* const mimeData = new QMimeData;
    mimeData->setData("text/uri-list", addresses_);
    drag->setMimeData(mimeData);
    connect(drag, &QDrag::actionChanged, this, [](Qt::DropAction action) {
      tell(action == Qt::IgnoreAction ? "refused" : "accepted");
    });
    tell(drag->exec(Qt::CopyAction) == Qt::CopyAction ? "dropped" : "nothing came of it");
  }

 private:
  static void tell(const char* text) { std::cout << text << '\n' << std::flush; }

  const QByteArray addresses_;
};

}  // namespace

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  QByteArray addresses;
  for (int i = 1; i < argc; ++i) {
    addresses += "file://" + QByteArray(argv[i]).toPercentEncoding("/") + "\r\n";
  }
  DragSource source(addresses);
  source.show();
  return QApplication::exec();
}
