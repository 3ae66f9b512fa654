// The yardstick for starting and idling: a window of Orvo's size with nothing in it.
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
