// A window like one of a file manager: files can be dragged out of it.
//
//   orvo_drag_source FILE…
//
// Tells on standard output "accepted" when what the mouse is over takes the files, and "dropped"
// when it got them.

#include <iostream>
#include <utility>

#include <QApplication>
#include <QDrag>
#include <QMimeData>
#include <QUrl>
#include <QWidget>

namespace {

class DragSource : public QWidget {
 public:
  explicit DragSource(QList<QUrl> files) : files_(std::move(files)) {
    setWindowTitle("Drag Source");
    setGeometry(20, 40, 200, 100);
  }

 protected:
  void mouseMoveEvent(QMouseEvent*) override {
    auto* const drag = new QDrag(this);  // deleted by Qt when it is over
    auto* const mimeData = new QMimeData;
    mimeData->setUrls(files_);
    drag->setMimeData(mimeData);
    connect(drag, &QDrag::actionChanged, this, [](Qt::DropAction action) {
      tell(action == Qt::IgnoreAction ? "refused" : "accepted");
    });
    tell(drag->exec(Qt::CopyAction) == Qt::CopyAction ? "dropped" : "nothing came of it");
  }

 private:
  static void tell(const char* text) { std::cout << text << '\n' << std::flush; }

  const QList<QUrl> files_;
};

}  // namespace

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  QList<QUrl> files;
  for (const QString& path : QApplication::arguments().mid(1)) {
    files.append(QUrl::fromLocalFile(path));
  }
  DragSource source(files);
  source.show();
  return QApplication::exec();
}
