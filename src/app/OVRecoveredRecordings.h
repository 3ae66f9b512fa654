#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <QFileSystemWatcher>
#include <QPointer>
#include <QTimer>

#include "app/OVRecoveredPanel.h"
#include "document/files/recoveredFiles.h"
#include "platform/base/SerialQueue.h"

/// Offers the recordings that were kept when the program ended unexpectedly: asks once about each,
/// at launch or when it appears, and lists them on command. The folder is read on a queue of its
/// own.
///
/// The files shown are claimed while the panel is shown, so that another running Orvo does not
/// offer them as well; a file that is opened passes its claim to the document.
///
/// Threads: main. Real-time: not safe.
class OVRecoveredRecordings {
 public:
  struct Callbacks {
    /// Opens a file in a window of its own.
    std::function<void(const OVRecoveredFile&)> open;
    /// Whether a question disturbs nothing now.
    std::function<bool()> mayAsk;
  };

  OVRecoveredRecordings(std::string folder, Callbacks callbacks);
  ~OVRecoveredRecordings();
  OVRecoveredRecordings(const OVRecoveredRecordings&) = delete;
  OVRecoveredRecordings& operator=(const OVRecoveredRecordings&) = delete;

  /// From now on asks about files that are there or appear.
  void begin();
  /// The command: shows the list, also an empty one.
  void show();

  /// The question or the list on the screen; null for none.
  [[nodiscard]] OVRecoveredPanel* panel() const { return panel_; }
  /// Whether the folder is being read.
  [[nodiscard]] bool isListing() const { return listing_ != Listing::none; }

 private:
  enum class Listing { none, running, runningAndOutOfDate };
  using Files = std::vector<OVRecoveredFile>;
  using Paths = OVRecoveredPanel::Paths;

  void folderChanged();
  void list();
  void listed(const Files& held, const OVRecoveredListing& listing);
  [[nodiscard]] bool watch(const std::string& folder);
  void lookAgainLater(const OVRecoveredListing& listing);
  void present();
  [[nodiscard]] bool hasNews() const;
  void noteOffered();
  void showPanel(OVRecoveredPanel::Occasion occasion, bool activates);
  void panelClosed();
  [[nodiscard]] Files take(const Paths& paths);
  void open(const Paths& paths);
  void askToDelete(const Paths& paths);
  void deleteFiles(const Paths& paths);

  const std::string folder_;
  const Callbacks callbacks_;
  platform::SerialQueue queue_{"recovered recordings"};
  Listing listing_ = Listing::none;
  Files files_;  // claimed, as long as they are or will be shown
  std::set<std::pair<std::string, std::uint64_t>> offered_;  // path and number: questions named it
  bool isWanted_ = false;                                    // the command waits for the list
  bool isAtLaunch_ = true;                                   // until the folder was read once
  int folderError_ = 0;                                      // errno of the last listing
  int nextLook_;  // milliseconds until an unsettled folder is read again
  QPointer<OVRecoveredPanel> panel_;
  std::unique_ptr<QFileSystemWatcher> watcher_;  // from begin() on
  QTimer askAgain_;
  QTimer lookAgain_;
  std::shared_ptr<OVRecoveredRecordings*> life_;  // of blocks that arrive later
};
