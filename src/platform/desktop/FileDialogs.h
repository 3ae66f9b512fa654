#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <QPointer>
#include <QString>
#include <QWidget>

#include "platform/base/Installed.h"

namespace platform {

struct OpenPanelRequest {
  QPointer<QWidget> window = nullptr;  ///< the window that it blocks; null for none
  QString title;
  QString acceptLabel;  ///< title of the default button
  /// Initial folder; empty for the last panel's or, before the first, the user's Music folder. If
  /// it cannot be shown, the home folder is.
  std::string directory = {};
  bool allowsMultipleSelection = false;
  std::vector<std::string> fileTypes;  ///< suffixes without the dot, most common first

  /// Shown below the files; the panel takes ownership. Null for none.
  QWidget* accessoryView = nullptr;
  /// Called with the path of the file that is selected or typed, whenever it changes; empty for
  /// none. The file need not exist. Not called after the answer.
  std::function<void(const std::string& path)> selectionChanged = nullptr;
};

struct SavePanelRequest {
  QPointer<QWidget> window = nullptr;
  QString title;
  std::string directory;      ///< initial folder, as for OpenPanelRequest
  std::string suggestedName;  ///< without the suffix, which acceptedSuffixes provides
  /// Suffixes, without the dot, of the files that are listed; if empty, those accepted.
  std::vector<std::string> fileTypes = {};

  /// Shown below the files; the panel takes ownership. Null for none.
  QWidget* accessoryView = nullptr;

  /// The suffixes, without the dot, allowed by the accessory's current choice; the first is
  /// appended to a name that has none of them. Called again whenever that choice changes; the shown
  /// name then takes the new suffix.
  std::function<std::vector<std::string>()> acceptedSuffixes;

  /// What gets lost when the existing file at a path is replaced, a sentence below the question
  /// about it; empty for nothing. Runs on a thread of its own, perhaps after the panel has gone.
  std::function<QString(const std::string& path)> lossOfReplacing = nullptr;
};

/// A question with named buttons, attached to a window.
struct SheetRequest {
  QPointer<QWidget> window = nullptr;
  QString title;
  QString message;
  struct Button {
    QString title;
    int returnCode = 0;
    enum class Role { accept, destructive, reject } role = Role::accept;
  };
  std::vector<Button> buttons;  ///< the first is the default; Escape presses the one that rejects
};

/// The system's file dialogs and sheets. They block only their window. The answer arrives from the
/// main loop, exactly once, but never if the window is destroyed first. With none installed, a
/// request is written to standard error and answered as cancelled.
///
/// Threads: main. Real-time: not safe.
class FileDialogs {
 public:
  virtual ~FileDialogs() = default;
  static std::shared_ptr<FileDialogs> whenNoneIsInstalled();

  /// The chosen paths; empty when cancelled.
  using OpenAnswer = std::function<void(const std::vector<std::string>& paths)>;
  /// The chosen path with its suffix, once replacing an existing file was confirmed; nothing when
  /// cancelled.
  using SaveAnswer = std::function<void(const std::optional<std::string>& path)>;
  using SheetAnswer = std::function<void(int returnCode)>;
  /// The code of a sheet closed without pressing a button; treat it as a rejection.
  static constexpr int kNoAnswer = -1;

  virtual void beginOpenPanel(const OpenPanelRequest& request, OpenAnswer answer) = 0;
  virtual void beginSavePanel(const SavePanelRequest& request, SaveAnswer answer) = 0;
  virtual void beginSheet(const SheetRequest& request, SheetAnswer answer) = 0;
};

inline std::shared_ptr<FileDialogs> fileDialogs() {
  return Installed<FileDialogs>::get();
}

}  // namespace platform
