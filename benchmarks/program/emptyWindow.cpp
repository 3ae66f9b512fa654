// The yardstick for starting and idling: an empty window of Orvo's size.
#include <QApplication>
#include <QWidget>

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  QWidget window;
  window.setWindowTitle("Empty");
  window.resize(640, 349);
  window.show();
  return QApplication::exec();
}
