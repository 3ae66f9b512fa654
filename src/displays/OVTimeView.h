#pragma once

#include <atomic>

#include <QString>
#include <QWidget>

#include "displays/OVTimeText.h"

/// Shows the current position and the total length as one line of text at the bottom right, on
/// a transparent background. Setting a time does not redraw; the caller requests it.
///
/// Threads: main; any for setting and reading the times. Real-time: not safe.
class OVTimeView : public QWidget {
  Q_OBJECT
  Q_PROPERTY(QString accessibleValue READ text)

 public:
  explicit OVTimeView(QWidget* parent = nullptr);

  /// Position to show, in seconds.
  [[nodiscard]] double currentTimeInSeconds() const;
  void setCurrentTimeInSeconds(double seconds);

  /// Total length to show, in seconds.
  [[nodiscard]] double durationInSeconds() const;
  void setDurationInSeconds(double seconds);

  /// The line as it is drawn.
  [[nodiscard]] QString text() const;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  // A loading job sets the duration. Each is read by itself at the next redraw: relaxed order.
  std::atomic<double> currentTimeInSeconds_{0.0};
  std::atomic<double> durationInSeconds_{0.0};

  // Fixed after construction.
  OVTimeText drawStringAttributes_;
};
