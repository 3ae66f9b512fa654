#pragma once

#include <cstdint>
#include <vector>

#include <QString>
#include <QWidget>

#include "waveform/views/OVLossMarksDrawing.h"

/// Shows where sound was lost: a transparent view laid over the waveform view as its child, beside
/// the marker's, which draws a small amber bar at its upper edge for each loss. Hidden, it takes no
/// part in any redraw. Mouse input passes through to the waveform, whose tooltip names the loss
/// under the pointer.
///
/// Threads: main. Real-time: not safe.
class OVLossMarksView : public QWidget {
  Q_OBJECT
  Q_PROPERTY(QString accessibleValue READ summary)

 public:
  /// How far from a mark, in points, the pointer still is on it.
  static constexpr int kReach = 4;

  explicit OVLossMarksView(QWidget* parent = nullptr);

  /// All losses, and all of them in words, for assistive technology.
  void setMarks(std::vector<OVLossMark> marks, const QString& summary);
  [[nodiscard]] const std::vector<OVLossMark>& marks() const { return marks_; }
  [[nodiscard]] const QString& summary() const { return summary_; }

  /// How much audio the width stands for. Setting another length redraws the marks.
  void setLengthInFrames(std::uint64_t frames);
  [[nodiscard]] std::uint64_t lengthInFrames() const { return lengthInFrames_; }

  /// The losses at this point of the view, one in a line; empty if there is none.
  [[nodiscard]] QString textAt(QPoint point) const;

 protected:
  void paintEvent(QPaintEvent* event) override;
  /// Of the parent.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  [[nodiscard]] QRect strip() const;

  std::vector<OVLossMark> marks_;
  QString summary_;
  std::uint64_t lengthInFrames_ = 0;
};
