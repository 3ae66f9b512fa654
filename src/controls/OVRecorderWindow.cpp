#include "controls/OVRecorderWindow.h"

#include <utility>

#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QKeyEvent>
#include <QLayout>
#include <QMenuBar>
#include <QMimeData>

#include "controls/OVRecorderWindowDelegate.h"
#include "controls/buttons/OVTrackingButton.h"
#include "platform/desktop/FileUri.h"
#include "platform/mainloop/MainQueue.h"
#include "platform/views/KeyCodes.h"

namespace {

constexpr QSize kContentSize(640, 330);             // points
const QString kEditedMark = QStringLiteral("[*]");  // where Qt shows the mark for unsaved changes

// From the URIs as sent: QUrl replaces bytes of a name that are not UTF-8.
std::vector<std::string> localFiles(const QMimeData& data) {
  std::vector<std::string> paths;
  for (const QByteArray& line : data.data(QStringLiteral("text/uri-list")).split('\n')) {
    if (auto path = platform::pathOfFileUri(line.trimmed().toStdString())) {
      paths.push_back(*std::move(path));
    }
  }
  return paths;
}

}  // namespace

OVRecorderWindow::OVRecorderWindow(QWidget* parent) : QMainWindow(parent) {
  setAttribute(Qt::WA_DeleteOnClose);
  setTitle(QString());
}

std::shared_ptr<OVRecorderWindowDelegate> OVRecorderWindow::delegate() const {
  return delegate_.lock();
}

void OVRecorderWindow::setDelegate(std::weak_ptr<OVRecorderWindowDelegate> delegate) {
  delegate_ = std::move(delegate);
}

void OVRecorderWindow::performClose() {
  platform::assertMainThread();
  close();
}

bool OVRecorderWindow::isDocumentEdited() const {
  return isWindowModified();
}

void OVRecorderWindow::setDocumentEdited(bool edited) {
  platform::assertMainThread();
  setWindowModified(edited);
}

QString OVRecorderWindow::title() const {
  QString text = windowTitle();
  if (text.endsWith(kEditedMark)) {
    text.chop(kEditedMark.size());
  }
  return text.replace(kEditedMark + kEditedMark, kEditedMark);
}

void OVRecorderWindow::setTitle(const QString& title) {
  platform::assertMainThread();
  // A mark in a file's name is doubled, so that Qt shows it literally.
  QString escaped = title;
  escaped.replace(kEditedMark, kEditedMark + kEditedMark);
  setWindowTitle(escaped + kEditedMark);
}

QSize OVRecorderWindow::sizeHint() const {
  const QWidget* bar = menuWidget();
  const bool barInWindow = bar != nullptr && !bar->isHidden();
  const int barHeight = barInWindow ? layout()->menuBar()->heightForWidth(kContentSize.width()) : 0;
  return kContentSize + QSize(0, qMax(barHeight, 0));
}

void OVRecorderWindow::setVisible(bool visible) {
  // By default, Qt would shrink the window to two thirds of the screen.
  if (visible && !testAttribute(Qt::WA_Resized)) {
    resize(sizeHint());
  }
  QMainWindow::setVisible(visible);
}

// A repeating key is down only if its first press was reported as such: Ctrl+Space continues as
// plain Space if Control is released first.
std::uint16_t OVRecorderWindow::codeOfPress(const QKeyEvent& event) {
  const std::uint16_t code = platform::hardwareKeyCode(event);
  if (event.isAutoRepeat()) {
    return keysDown_.count(code) > 0 ? code : platform::kKeyCodeUnmapped;
  }
  if (code == platform::kKeyCodeUnmapped) {
    cancelKey(platform::plainKeyCode(event));  // its release was lost
  } else {
    keysDown_.insert(code);
  }
  return code;
}

std::uint16_t OVRecorderWindow::codeOfRelease(const QKeyEvent& event) {
  const std::uint16_t code = platform::hardwareKeyCode(event);
  return keysDown_.erase(code) > 0 ? code : platform::kKeyCodeUnmapped;
}

void OVRecorderWindow::cancelKey(std::uint16_t code) {
  platform::assertMainThread();
  const bool wasDown = keysDown_.erase(code) > 0;
  if (const auto delegate = delegate_.lock(); delegate != nullptr && wasDown) {
    delegate->windowDidCancelKey(this, code);
  }
}

void OVRecorderWindow::keyPressEvent(QKeyEvent* event) {
  event->accept();
  const std::uint16_t code = codeOfPress(*event);
  if (const auto delegate = delegate_.lock()) {
    delegate->windowDidReceiveKeyDown(this, code);
  }
}

void OVRecorderWindow::keyReleaseEvent(QKeyEvent* event) {
  event->accept();
  // A held key arrives as pairs of release and press; only the last release is real.
  if (event->isAutoRepeat()) {
    return;
  }
  const std::uint16_t code = codeOfRelease(*event);
  if (const auto delegate = delegate_.lock()) {
    delegate->windowDidReceiveKeyUp(this, code);
  }
}

bool OVRecorderWindow::event(QEvent* event) {
  if (event->type() == QEvent::WindowDeactivate) {
    while (!keysDown_.empty()) {
      cancelKey(*keysDown_.begin());  // another window receives its release
    }
    for (OVTrackingButton* const button : findChildren<OVTrackingButton*>()) {
      button->cancelPress();  // the mouse too
    }
  }
  return QMainWindow::event(event);
}

void OVRecorderWindow::closeEvent(QCloseEvent* event) {
  event->accept();
  if (closed_) {
    return;  // already closed, waiting to be deleted
  }
  const auto delegate = delegate_.lock();
  if (delegate == nullptr) {
    closed_ = true;
    return;
  }
  if (!delegate->windowShouldClose(this)) {
    event->ignore();
    return;
  }
  if (closed_) {
    return;  // closed from within the question
  }
  closed_ = true;
  delegate->windowWillClose(this);
}

// Dropped files -----------------------------------------------------------------------------------

void OVRecorderWindow::setDropHandler(DropHandler handler) {
  dropHandler_ = std::move(handler);
  setAcceptDrops(dropHandler_ != nullptr);
}

void OVRecorderWindow::dragEnterEvent(QDragEnterEvent* event) {
  if (!localFiles(*event->mimeData()).empty()) {
    event->setDropAction(Qt::CopyAction);
    event->accept();
  }
}

void OVRecorderWindow::dropEvent(QDropEvent* event) {
  event->setDropAction(Qt::CopyAction);
  event->accept();
  // The program at the other end of the drag waits until this call returns.
  const auto paths = localFiles(*event->mimeData());
  platform::mainQueue().async([handler = dropHandler_, paths] { handler(paths); });
}
