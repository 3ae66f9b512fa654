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

/// What a panel that chooses files to open shows.
struct OpenPanelRequest {
  QPointer<QWidget> window = nullptr;  ///< the window it belongs to and blocks; null for none
  QString title;
  QString acceptLabel;  ///< title of the default button
  bool allowsMultipleSelection = false;
  std::vector<std::string> fileTypes;  ///< suffixes without the dot, the usual ones first
};

/// What a panel that chooses where to save shows.
struct SavePanelRequest {
  QPointer<QWidget> window = nullptr;
  QString title;
  std::string directory;      ///< where it begins; empty for where the last panel was
  std::string suggestedName;  ///< without the suffix, which follows from acceptedSuffixes

  /// Shown below the files; the panel takes it over and deletes it. Null for none.
  QWidget* accessoryView = nullptr;

  /// The suffixes, without the dot, that the file may have as the accessory stands now; the first
  /// is appended to a name that has none of them. Asked again whenever a choice of the accessory
  /// changes: the name that is shown then takes over the new suffix.
  std::function<std::vector<std::string>()> acceptedSuffixes;
};

/// A question with named answers, attached to a window.
struct SheetRequest {
  QPointer<QWidget> window = nullptr;
  QString title;
  QString message;
  struct Button {
    QString title;
    int returnCode = 0;
    enum class Role { accept, destructive, reject } role = Role::accept;
  };
  std::vector<Button> buttons;  ///< the first is the default; Escape answers the one that rejects
};

/// The system's file dialogs and sheets. They block their window alone; the answer comes later,
/// from the main loop, exactly once, and not at all when the window goes before. With none
/// installed, a request is written to standard error and answered as cancelled.
///
/// Threads: main. Real-time: not safe.
class FileDialogs {
 public:
  virtual ~FileDialogs() = default;
  static std::shared_ptr<FileDialogs> whenNoneIsInstalled();

  /// The chosen paths; none when it was cancelled.
  using OpenAnswer = std::function<void(const std::vector<std::string>& paths)>;
  /// The chosen path with its suffix, after the question whether an existing file is to be
  /// replaced; nothing when it was cancelled.
  using SaveAnswer = std::function<void(const std::optional<std::string>& path)>;
  using SheetAnswer = std::function<void(int returnCode)>;
  /// The code of a sheet that was closed without a button: as the one that rejects.
  static constexpr int kNoAnswer = -1;

  virtual void beginOpenPanel(const OpenPanelRequest& request, OpenAnswer answer) = 0;
  virtual void beginSavePanel(const SavePanelRequest& request, SaveAnswer answer) = 0;
  virtual void beginSheet(const SheetRequest& request, SheetAnswer answer) = 0;
};

inline std::shared_ptr<FileDialogs> fileDialogs() {
  return Installed<FileDialogs>::get();
}

}  // namespace platform
