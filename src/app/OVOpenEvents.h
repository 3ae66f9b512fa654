#pragma once

#include <functional>
#include <string>

#include <QObject>

/// Takes the desktop's open events from the application: where a desktop hands files over that way,
/// they arrive at launch and while the program runs.
///
/// Threads: main. Real-time: not safe.
class OVOpenEvents : public QObject {
  Q_OBJECT

 public:
  using Handler = std::function<void(const std::string& path)>;

  explicit OVOpenEvents(Handler handler) : handler_(std::move(handler)) {}

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  const Handler handler_;
};
