#pragma once

#include <QColor>
#include <QFont>
#include <QPainter>
#include <QSizeF>
#include <QString>

/// The line of text of the time display: how times are formatted and where they are drawn.
///
/// Threads: main; any for formatting. Real-time: not safe.
class OVTimeText {
 public:
  OVTimeText();

  /// "HH:MM:SS.hh" of a time in seconds. Every field is truncated toward zero, and a negative time
  /// shows the sign in each field: -1.5 is "00:00:-01.-50". Times of 2^31 seconds and more show the
  /// largest that fits, with their sign; NaN shows as 0.
  [[nodiscard]] static QString formatTime(double seconds);

  /// Both times in seconds, "current / duration".
  [[nodiscard]] static QString formatTimes(double current, double duration);

  /// Draws into a painter in view coordinates for a view of `size`. The text ends one point inside
  /// the view's right edge and one point below its bottom edge.
  void draw(QPainter& painter, QSizeF size, const QString& text) const;

  [[nodiscard]] const QFont& font() const { return font_; }
  [[nodiscard]] const QColor& color() const { return color_; }

 private:
  QFont font_;
  QColor color_;
};
