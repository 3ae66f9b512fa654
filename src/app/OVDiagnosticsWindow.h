#pragma once

#include <string>

#include <QPlainTextEdit>

/// The diagnostics console: a read-only list of lines, the newest last. It keeps the last
/// kMaximumLines.
///
/// Threads: main. Real-time: not safe.
class OVDiagnosticsWindow : public QPlainTextEdit {
  Q_OBJECT

 public:
  static constexpr int kMaximumLines = 5000;

  explicit OVDiagnosticsWindow(QWidget* parent = nullptr);

  void appendLine(const std::string& text);
};
