#include "app/OVMainMenu.h"

#include <optional>
#include <utility>

#include <QMainWindow>
#include <QMenuBar>

#include "audio/OVFileKinds.h"
#include "controls/OVRecorderWindow.h"
#include "platform/mainloop/Localization.h"
#include "platform/mainloop/ShownName.h"

using platform::localized;
using platform::TextKey;
using platform::textKey;

namespace {

// An item's name is its English text without the key letter.
QString nameOf(TextKey title) {
  return QString::fromUtf8(title.english()).remove(QLatin1Char('&'));
}

}  // namespace

OVMainMenu::OVMainMenu(const std::shared_ptr<VLRecorderWindowController>& controller,
                       ApplicationCommands commands)
    : QObject(controller->window()),
      controller_(controller),
      commands_(std::move(commands)),
      window_(controller->window()) {
  addFileMenu();
  addEditMenu();
  addTransportMenu();
  addViewMenu();
  addHelpMenu();
  controller->setCommandsChangedHandler([menu = QPointer<OVMainMenu>(this)] {
    if (menu) {
      menu->update();
    }
  });
  if (const auto manager = controller->windowWillReturnUndoManager()) {
    manager->setChangeHandler([menu = QPointer<OVMainMenu>(this)] {
      if (menu) {
        menu->update();
      }
    });
  }
  update();
}

QMenu* OVMainMenu::addMenu(TextKey title) {
  QMenu* const menu = window_->menuBar()->addMenu(localized(title));
  connect(menu, &QMenu::aboutToShow, this, &OVMainMenu::update);
  return menu;
}

QAction* OVMainMenu::addCommand(QMenu* menu, TextKey title, std::function<void()> command) {
  QAction* const action = menu->addAction(localized(title));
  action->setObjectName(nameOf(title));
  connect(action, &QAction::triggered, this, std::move(command));
  return action;
}

QAction* OVMainMenu::addDocumentCommand(QMenu* menu, TextKey title, Controller::MenuAction kind,
                                        std::function<void(Controller&)> command) {
  QAction* const action =
      addCommand(menu, title, [controller = controller_, command = std::move(command)] {
        if (const auto document = controller.lock()) {
          command(*document);
        }
      });
  validated_.emplace_back(action, kind);
  return action;
}

void OVMainMenu::addFileMenu() {
  QMenu* const menu = addMenu(textKey("&File"));
  using Kind = Controller::MenuAction;
  const auto add = [&](TextKey title, Command command) {
    return addDocumentCommand(menu, title, Kind::file,
                              [command](Controller& c) { (c.*command)(nullptr); });
  };
  addCommand(menu, textKey("&New Recorder"), commands_.spawnNewRecorderWindow)
      ->setShortcut(QKeySequence::New);
  QAction* const open = addCommand(menu, textKey("&Open…"), [this] {
    if (canOpen()) {
      commands_.openFile(window_);
    }
  });
  open->setShortcut(QKeySequence::Open);
  validated_.emplace_back(open, Kind::open);
  recent_ = menu->addMenu(localized("Open &Recent"));
  recent_->setObjectName("Open Recent");
  connect(menu, &QMenu::aboutToShow, this, &OVMainMenu::fillRecentMenu);
  add(textKey("&Import…"), &Controller::importFile)
      ->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_I));
  menu->addSeparator();
  add(textKey("&Save"), &Controller::saveFile)->setShortcut(QKeySequence::Save);
  add(textKey("Save &As…"), &Controller::saveFileAs)
      ->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S));
  menu->addSeparator();
  add(textKey("Export Rin&gtone…"), &Controller::exportRingtone);
  add(textKey("Export &Waveform Picture…"), &Controller::dumpWaveform);
  menu->addSeparator();
  addCommand(menu, textKey("&Close"), [window = window_] {
    if (window) {
      window->close();
    }
  })->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_W));
  addCommand(menu, textKey("&Quit"), commands_.terminate)
      ->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
}

// Names have no key letter of their own: the first ten are numbered 1 to 9 and 0.
void OVMainMenu::fillRecentMenu() {
  constexpr qsizetype kKeys = 10;
  recent_->clear();
  for (const std::string& path : commands_.recentFiles()) {
    QString name = platform::shownName(lastPathComponent(path));
    name.replace(QLatin1Char('&'), QLatin1String("&&"));
    const qsizetype number = recent_->actions().size() + 1;
    if (number <= kKeys) {
      name.prepend(QStringLiteral("&%1 ").arg(number % kKeys));
    }
    QAction* const action = recent_->addAction(name);
    action->setToolTip(platform::shownName(path).toHtmlEscaped());
    connect(action, &QAction::triggered, this, [this, path] {
      if (canOpen()) {
        commands_.openRecentFile(path);
      }
    });
  }
  recent_->setToolTipsVisible(true);
  recent_->setEnabled(!recent_->isEmpty() && canOpen());
}

bool OVMainMenu::canOpen() const {
  const auto document = controller_.lock();
  return document && document->validateMenuItem(Controller::MenuAction::open);
}

void OVMainMenu::addEditMenu() {
  QMenu* const menu = addMenu(textKey("&Edit"));
  using Kind = Controller::MenuAction;
  undo_ = addDocumentCommand(menu, textKey("&Undo"), Kind::undo,
                             [](Controller& c) { c.undoCommand(); });
  undo_->setShortcut(QKeySequence::Undo);
  redo_ = addDocumentCommand(menu, textKey("&Redo"), Kind::redo,
                             [](Controller& c) { c.redoCommand(); });
  redo_->setShortcut(QKeySequence::Redo);
  menu->addSeparator();
  addDocumentCommand(menu, textKey("Remove &After Marker"), Kind::edit,
                     [](Controller& c) { c.removeAfterMarker(nullptr); });
  addDocumentCommand(menu, textKey("Remove &Before Marker"), Kind::edit,
                     [](Controller& c) { c.removeBeforeMarker(nullptr); });
  addDocumentCommand(menu, textKey("Re&verse Audio"), Kind::reverseBuffer,
                     [](Controller& c) { c.reverseBuffer(nullptr); });
}

void OVMainMenu::addTransportMenu() {
  QMenu* const menu = addMenu(textKey("&Transport"));
  using Kind = Controller::MenuAction;
  const auto add = [&](TextKey title, std::optional<TextKey> keyHint, Command command) {
    QAction* const action = addDocumentCommand(menu, title, Kind::transport,
                                               [command](Controller& c) { (c.*command)(nullptr); });
    if (keyHint) {
      action->setText(localized(title) + QLatin1Char('\t') + localized(*keyHint));
    }
  };
  add(textKey("&Record"), textKey("R"), &Controller::recMenu);
  add(textKey("&Play"), textKey("Space"), &Controller::playMenu);
  add(textKey("&Stop"), std::nullopt, &Controller::stopMenu);
  menu->addSeparator();
  add(textKey("&To Start"), textKey("Return"), &Controller::prevMenu);
  add(textKey("To &End"), std::nullopt, &Controller::nextMenu);
}

void OVMainMenu::addViewMenu() {
  QMenu* const menu = addMenu(textKey("&View"));
  spectrum_ = addDocumentCommand(menu, textKey("&Spectrum"), Controller::MenuAction::other,
                                 [](Controller& c) { c.toggleFFT(nullptr); });
  spectrum_->setCheckable(true);
}

void OVMainMenu::addHelpMenu() {
  QMenu* const menu = addMenu(textKey("&Help"));
  addCommand(menu, textKey("&Documentation"), commands_.openDocumentation)
      ->setShortcut(QKeySequence::HelpContents);
  menu->addSeparator();
  addCommand(menu, textKey("&Recovered Recordings…"), commands_.showRecovered);
  addCommand(menu, textKey("D&iagnostics"), commands_.showDiagnostics);
  addCommand(menu, textKey("&About Orvo"), commands_.showAbout);
}

void OVMainMenu::update() {
  const auto document = controller_.lock();
  if (!document) {
    return;
  }
  for (const auto& [action, kind] : validated_) {
    action->setEnabled(document->validateMenuItem(kind));
  }
  recent_->setEnabled(!recent_->isEmpty() && canOpen());
  spectrum_->setChecked(document->isSpectrumShown());
  const auto manager = document->windowWillReturnUndoManager();
  const auto title = [](TextKey alone, TextKey withAction, const std::string& name) {
    return name.empty() ? localized(alone)
                        : localized(withAction).arg(QString::fromStdString(name));
  };
  if (manager) {
    undo_->setText(title(textKey("&Undo"), textKey("&Undo %1"), manager->undoActionName()));
    redo_->setText(title(textKey("&Redo"), textKey("&Redo %1"), manager->redoActionName()));
  }
}
