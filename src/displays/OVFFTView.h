#pragma once

#include <cstdint>
#include <vector>

#include <QWidget>

#include "displays/OVFFTDrawing.h"
#include "platform/base/Mutex.h"

/// Draws the last set magnitudes as a line graph over a flat dark background. It keeps a copy of
/// them and knows nothing of frequencies or decibels. Setting data does not redraw; the caller
/// requests it.
///
/// Threads: main; any for setting and reading the values. Real-time: not safe.
class OVFFTView : public QWidget {
  Q_OBJECT

 public:
  explicit OVFFTView(QWidget* parent = nullptr);

  /// The number of values (size() is the widget's own). Set it before the data.
  [[nodiscard]] std::uint64_t dataSize() const;
  void setSize(std::uint64_t size);

  /// A copy of the values.
  [[nodiscard]] std::vector<float> magnitudes() const;

  /// Copies as many values as setSize() specified.
  void setData(const float* magnitudes);

  /// The waveform's background, drawn for the view's size into a painter in view coordinates. Not
  /// part of the view's own drawing.
  void drawGradient(QPainter& painter);
  void drawGrid(QPainter& painter);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  mutable platform::Mutex lock_;
  // The analysing thread writes, the redraw reads. Empty until the first setData().
  std::vector<float> data_ GUARDED_BY(lock_);
  std::uint64_t size_ GUARDED_BY(lock_) = 0;

  // Main thread only.
  std::vector<float> drawnData_;
  OVFFTDrawing drawing_;
};
