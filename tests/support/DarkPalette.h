#pragma once

#include <QApplication>
#include <QPalette>

namespace support {

/// The colours of a dark desktop while it lives.
class DarkPalette {
 public:
  DarkPalette() : before_(QApplication::palette()) {
    const QColor ground(45, 45, 48);
    const QColor text(235, 235, 235);
    QPalette dark(ground);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
      dark.setColor(role, text);
    }
    dark.setColor(QPalette::Base, QColor(30, 30, 32));
    QApplication::setPalette(dark);
  }
  ~DarkPalette() { QApplication::setPalette(before_); }
  DarkPalette(const DarkPalette&) = delete;
  DarkPalette& operator=(const DarkPalette&) = delete;

 private:
  QPalette before_;
};

}  // namespace support
