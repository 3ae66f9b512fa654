#pragma once

#include <functional>
#include <string>
#include <utility>

#include <QObject>

/// Handles the desktop's requests to open a file, at launch or while running, and to quit.
///
/// Threads: main. Real-time: not safe.
class OVApplicationEvents : public QObject {
  Q_OBJECT

 public:
  struct Handlers {
    std::function<void(const std::string& path)> openFile;
    std::function<void()> terminate;
  };

  explicit OVApplicationEvents(Handlers handlers) : handlers_(std::move(handlers)) {}

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  const Handlers handlers_;
};
