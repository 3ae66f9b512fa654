#pragma once

#include <QPlainTextEdit>
#include <QWidget>

/// The diagnostics window: a read-only list of lines, the newest last. It keeps the last
/// kMaximumLines.
///
/// Threads: main. Real-time: not safe.
class OVDiagnosticsWindow : public QWidget {
  Q_OBJECT

 public:
  static constexpr int kMaximumLines = 5000;

  explicit OVDiagnosticsWindow(QWidget* parent = nullptr);

  /// The text view inside, to which lines are appended.
  [[nodiscard]] QPlainTextEdit* console() const { return console_; }

 private:
  QPlainTextEdit* const console_;
};
