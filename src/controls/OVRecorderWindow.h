#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <QMainWindow>

class OVRecorderWindowDelegate;

/// The window of one document. It passes every plain key to its delegate instead of its views,
/// asks the delegate before it closes, and deletes itself once it has closed.
///
/// Menu shortcuts come first: a key that triggers one never reaches the delegate as key-down. A
/// transport key is reported as key-up only after its key-down: if a command, a menu or another
/// window took the press, its repeats and release are reported as unmapped. A key that is down when
/// the window loses the keyboard is cancelled instead, and so is a button that the mouse holds. The
/// views inside take the focus only by Tab and pass plain keys on, so that R, Return and Space
/// always reach the window.
///
/// Threads: main. Real-time: not safe.
class OVRecorderWindow : public QMainWindow {
  Q_OBJECT

 public:
  explicit OVRecorderWindow(QWidget* parent = nullptr);

  [[nodiscard]] std::shared_ptr<OVRecorderWindowDelegate> delegate() const;
  void setDelegate(std::weak_ptr<OVRecorderWindowDelegate> delegate);

  /// Does what the close button does: asks windowShouldClose and, on yes, calls
  /// windowWillClose and closes.
  void performClose();

  /// Whether the document has unsaved changes; shown in the title bar.
  [[nodiscard]] bool isDocumentEdited() const;
  void setDocumentEdited(bool edited);

  /// The title without the mark for unsaved changes. Any text is shown literally.
  [[nodiscard]] QString title() const;
  void setTitle(const QString& title);

  /// Called with the local files dropped on the window. Without a handler, nothing can be dropped.
  using DropHandler = std::function<void(const std::vector<std::string>& paths)>;
  void setDropHandler(DropHandler handler);

  /// The size at which the content below the menu bar has 640 x 330 points.
  [[nodiscard]] QSize sizeHint() const override;

  /// A window without an explicit size appears at its size hint.
  void setVisible(bool visible) override;

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  bool event(QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  [[nodiscard]] std::uint16_t codeOfPress(const QKeyEvent& event);
  [[nodiscard]] std::uint16_t codeOfRelease(const QKeyEvent& event);
  void cancelKey(std::uint16_t code);

  std::weak_ptr<OVRecorderWindowDelegate> delegate_;
  std::set<std::uint16_t> keysDown_;  // transport keys that the delegate knows to be down
  DropHandler dropHandler_;
  bool closed_ = false;
};
