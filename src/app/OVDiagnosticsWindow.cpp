#include "app/OVDiagnosticsWindow.h"

#include <QFontDatabase>
#include <QVBoxLayout>

#include "platform/mainloop/Localization.h"

OVDiagnosticsWindow::OVDiagnosticsWindow(QWidget* parent)
    : QWidget(parent, Qt::Window), console_(new QPlainTextEdit) {
  setAttribute(Qt::WA_QuitOnClose, false);
  setObjectName("diagnosticsWindow");
  setWindowTitle(platform::localized("Orvo Diagnostics"));
  setAccessibleName(windowTitle());
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(console_);
  console_->setObjectName("debugConsole");
  console_->setAccessibleName(windowTitle());
  console_->setReadOnly(true);
  console_->setPlaceholderText(platform::localized("Nothing has been reported."));
  console_->setFrameStyle(QFrame::NoFrame);
  console_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  console_->setMaximumBlockCount(kMaximumLines);
  resize(640, 320);
}
