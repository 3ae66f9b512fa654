#pragma once

#include <QColor>
#include <QFont>
#include <QPainter>
#include <QSizeF>
#include <QString>

/// The line of text of the time display: how times are written and where they stand.
///
/// Threads: main, the formatting any. Real-time: not safe.
class OVTimeText {
 public:
  OVTimeText();

  /// "HH:MM:SS.hh" of a time in seconds. Every field is cut off toward zero, never rounded, and a
  /// negative time shows the sign in each field: -1.5 is "00:00:-01.-50". Times from 2^31 seconds
  /// on show the largest that fits, with their sign; what is not a number shows as 0.
  [[nodiscard]] static QString formatTime(double seconds);

  /// Both times in seconds, "current / duration".
  [[nodiscard]] static QString formatTimes(double current, double duration);

  /// Draws into a painter in view coordinates, one point in from the right edge of a view of
  /// `size` and one point below its bottom edge.
  void draw(QPainter& painter, QSizeF size, const QString& text) const;

  [[nodiscard]] const QFont& font() const { return font_; }
  [[nodiscard]] const QColor& color() const { return color_; }

 private:
  QFont font_;
  QColor color_;
};
