#include "gallery/GalleryApplication.h"

#include <vector>

#include <QAction>
#include <QApplication>
#include <QTreeView>

#include "gallery/GalleryScreen.h"
#include "support/MainLoop.h"

namespace {

std::vector<OVRecorderWindow*> shownWindows() {
  std::vector<OVRecorderWindow*> shown;
  for (QWidget* const widget : QApplication::topLevelWidgets()) {
    auto* const window = qobject_cast<OVRecorderWindow*>(widget);
    if (window != nullptr && window->isVisible()) {
      shown.push_back(window);
    }
  }
  return shown;
}

QWidget* windowNamed(const char* name) {
  for (QWidget* const widget : QApplication::topLevelWidgets()) {
    if (widget->isVisible() && widget->objectName() == QLatin1String(name)) {
      return widget;
    }
  }
  return nullptr;
}

void settle() {
  static_cast<void>(awaitGlobalQueue());
  static_cast<void>(drainMainQueue());
  QCoreApplication::processEvents();
}

}  // namespace

GalleryApplication::GalleryApplication(double scale)
    : scale_(scale),
      servicesInstallation_(
          std::make_shared<OVApplicationServices>(OVApplicationServices::Receivers{
              .logToConsole = [this](const std::string& text) { delegate_.logToConsole(text); },
              .registerTempFile = [](const std::string&) {},
              .cancelTermination = [this] { delegate_.cancelTermination(); }})) {}

GalleryApplication::~GalleryApplication() {
  for (OVRecorderWindow* const window : shownWindows()) {
    VLRecorderWindowController& document = documentOf(*window);
    static_cast<void>(runMainLoopUntil([&document] { return !document.isFileIOActive(); }));
    document.pauseButton(nullptr);
    document.setDocumentEdited(false);  // otherwise closing would ask
    window->performClose();
  }
  static_cast<void>(runMainLoopUntil([] { return shownWindows().empty(); }));
  settle();
}

OVRecorderWindow& GalleryApplication::shownWindow() const {
  OVRecorderWindow& window = *shownWindows().back();
  static_cast<void>(showOnScreenOfScale(window, scale_));
  return window;
}

OVRecorderWindow& GalleryApplication::newWindow() {
  delegate_.spawnNewRecorderWindow(nullptr);
  return shownWindow();
}

OVRecorderWindow& GalleryApplication::openedWindow(const std::string& path) {
  delegate_.applicationOpenFile(path);
  OVRecorderWindow& window = shownWindow();
  static_cast<void>(runMainLoopUntil([&window] { return !documentOf(window).isFileIOActive(); }));
  return window;
}

VLRecorderWindowController& GalleryApplication::documentOf(const OVRecorderWindow& window) {
  return *std::dynamic_pointer_cast<VLRecorderWindowController>(window.delegate());
}

void GalleryApplication::capture() {
  constexpr std::uint64_t kChunkFrames = 4096;
  const std::vector<float> samples(2 * kChunkFrames, 0.25F);
  for (int chunk = 0; chunk < 11; ++chunk) {
    captured_ += kChunkFrames;
    queues_.input().deliver(samples, captured_);
    queues_->capturedFrames = captured_;
    settle();
  }
}

void GalleryApplication::choose(const OVRecorderWindow& window, const char* command) {
  settle();
  window.findChild<QAction*>(QString::fromUtf8(command))->trigger();
}

QWidget* GalleryApplication::awaitWindow(const char* name) {
  static_cast<void>(runMainLoopUntil([name] { return windowNamed(name) != nullptr; }));
  return windowNamed(name);
}

platform::FilePanel* GalleryApplication::panelOf(const OVRecorderWindow& window,
                                                 const char* command, int rows) {
  choose(window, command);
  platform::FilePanel* panel = nullptr;
  const bool isListed = runMainLoopUntil([&] {
    panel = window.findChild<platform::FilePanel*>();
    if (panel == nullptr) {
      return false;
    }
    const QAbstractItemModel& model = *panel->findChild<QTreeView*>("listView")->model();
    return model.rowCount() == rows && !model.index(rows - 1, 2).data().toString().isEmpty();
  });
  return isListed ? panel : nullptr;
}
