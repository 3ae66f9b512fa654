#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <QPointer>
#include <QWidget>

#include "platform/desktop/FileDialogs.h"
#include "platform/mainloop/MainQueue.h"

namespace support {

/// Dialogs that a test answers in place of the user, in the order in which they were shown.
/// Threads: main.
class ScriptedFileDialogs : public platform::FileDialogs {
 public:
  void beginOpenPanel(const platform::OpenPanelRequest& request, OpenAnswer answer) override {
    accessories_.emplace_back(request.accessoryView);
    open_.push_back({request, std::move(answer)});
  }
  void beginSavePanel(const platform::SavePanelRequest& request, SaveAnswer answer) override {
    accessories_.emplace_back(request.accessoryView);
    save_.push_back({request, std::move(answer)});
  }
  void beginSheet(const platform::SheetRequest& request, SheetAnswer answer) override {
    if (everySheet_) {
      platform::mainQueue().async([answer, code = *everySheet_] { answer(code); });
    } else {
      sheets_.push_back({request, std::move(answer)});
    }
  }

  /// From now on the main loop answers each sheet with this code; nothing returns to answerSheet().
  void answerEverySheetWith(std::optional<int> returnCode) { everySheet_ = returnCode; }

  [[nodiscard]] std::size_t openPanels() const { return open_.size(); }
  [[nodiscard]] std::size_t savePanels() const { return save_.size(); }
  [[nodiscard]] std::size_t sheets() const { return sheets_.size(); }

  /// The panel shown longest.
  [[nodiscard]] const platform::OpenPanelRequest& openPanel() const { return open_.at(0).first; }
  [[nodiscard]] const platform::SavePanelRequest& savePanel() const { return save_.at(0).first; }
  [[nodiscard]] const platform::SheetRequest& sheet() const { return sheets_.at(0).first; }

  void answerOpen(const std::vector<std::string>& paths) { take(open_)(paths); }
  void answerSave(const std::optional<std::string>& path) { take(save_)(path); }
  void answerSheet(int returnCode) { take(sheets_)(returnCode); }

 private:
  template <typename Request, typename Answer>
  using Shown = std::deque<std::pair<Request, Answer>>;

  // Removes the panel before its answer arrives.
  template <typename Request, typename Answer>
  static Answer take(Shown<Request, Answer>& shown) {
    Answer answer = std::move(shown.at(0).second);
    shown.pop_front();
    return answer;
  }

  std::optional<int> everySheet_;
  Shown<platform::OpenPanelRequest, OpenAnswer> open_;
  Shown<platform::SavePanelRequest, SaveAnswer> save_;
  Shown<platform::SheetRequest, SheetAnswer> sheets_;
  std::vector<std::unique_ptr<QWidget>> accessories_;
};

/// Scripted dialogs as a member of a test fixture, installed while it lives.
class InstalledScriptedPanels {
 public:
  ScriptedFileDialogs* operator->() { return &panels_; }

 private:
  ScriptedFileDialogs panels_;
  platform::Installed<platform::FileDialogs>::Scope installation_{panels_};
};

}  // namespace support
