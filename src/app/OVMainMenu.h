#pragma once

#include <functional>
#include <memory>

#include <QAction>
#include <QMainWindow>
#include <QMenu>
#include <QObject>
#include <QPointer>

#include "document/VLRecorderWindowController.h"
#include "platform/mainloop/Localization.h"

/// The menus of one recorder window. Document items call its controller and are enabled by its
/// validateMenuItem(); application items run the given commands.
///
/// R, Return and Space are the window's own keys; the transport items only show them as hints.
///
/// Threads: main. Real-time: not safe.
class OVMainMenu : public QObject {
  Q_OBJECT

 public:
  struct ApplicationCommands {
    std::function<void()> spawnNewRecorderWindow;
    std::function<void(QWidget* window)> openFile;
    std::function<std::vector<std::string>()> recentFiles;  ///< paths, the latest first
    std::function<void(const std::string& path)> openRecentFile;
    std::function<void()> terminate;
    std::function<void()> openDocumentation;
    std::function<void()> showRecovered;
    std::function<void()> showDiagnostics;
    std::function<void()> showAbout;
  };

  /// Fills the window's menu bar; the window then owns this object.
  OVMainMenu(const std::shared_ptr<VLRecorderWindowController>& controller,
             ApplicationCommands commands);

  /// Updates the document's items: names of Undo and Redo, enabled and checked states.
  void update();

 private:
  using Controller = VLRecorderWindowController;
  using Command = void (Controller::*)(QObject*);

  QMenu* addMenu(platform::TextKey title);
  QAction* addCommand(QMenu* menu, platform::TextKey title, std::function<void()> command);
  QAction* addDocumentCommand(QMenu* menu, platform::TextKey title, Controller::MenuAction kind,
                              std::function<void(Controller&)> command);
  void addFileMenu();
  void fillRecentMenu();
  [[nodiscard]] bool canOpen() const;
  void addEditMenu();
  void addTransportMenu();
  void addViewMenu();
  void addHelpMenu();

  std::weak_ptr<Controller> controller_;
  ApplicationCommands commands_;
  QPointer<QMainWindow> window_;
  QMenu* recent_ = nullptr;
  QAction* undo_ = nullptr;
  QAction* redo_ = nullptr;
  QAction* spectrum_ = nullptr;  // checked while the spectrum is shown
  std::vector<std::pair<QAction*, Controller::MenuAction>> validated_;
};
