#include "app/OVDiagnosticsWindow.h"

#include <QFontDatabase>

#include "platform/Localization.h"

OVDiagnosticsWindow::OVDiagnosticsWindow(QWidget* parent) : QPlainTextEdit(parent) {
  setWindowFlag(Qt::Window);
  setAttribute(Qt::WA_QuitOnClose, false);
  setObjectName("diagnosticsWindow");
  setWindowTitle(platform::localized("Orvo Diagnostics"));
  setAccessibleName(windowTitle());
  setReadOnly(true);
  setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  setMaximumBlockCount(kMaximumLines);
  resize(640, 320);
}

void OVDiagnosticsWindow::appendLine(const std::string& text) {
  appendPlainText(QString::fromStdString(text));
}
