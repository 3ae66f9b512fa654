#include "platform/desktop/FileDialogs.h"

#include <cstdio>
#include <utility>

#include "platform/mainloop/MainQueue.h"

namespace platform {
namespace {

void log(const QString& title) {
  std::fprintf(stderr, "no dialog for \"%s\"\n", qUtf8Printable(title));
}

class StandardErrorDialogs : public FileDialogs {
 public:
  void beginOpenPanel(const OpenPanelRequest& request, OpenAnswer answer) override {
    log(request.title);
    delete request.accessoryView;
    mainQueue().async([answer = std::move(answer)] { answer({}); });
  }
  void beginSavePanel(const SavePanelRequest& request, SaveAnswer answer) override {
    log(request.title);
    delete request.accessoryView;
    mainQueue().async([answer = std::move(answer)] { answer(std::nullopt); });
  }
  void beginSheet(const SheetRequest& request, SheetAnswer answer) override {
    log(request.title);
    mainQueue().async([answer = std::move(answer)] { answer(kNoAnswer); });
  }
};

}  // namespace

std::shared_ptr<FileDialogs> FileDialogs::whenNoneIsInstalled() {
  return std::make_shared<StandardErrorDialogs>();
}

}  // namespace platform
