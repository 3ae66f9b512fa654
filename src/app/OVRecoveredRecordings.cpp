#include "app/OVRecoveredRecordings.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include <QApplication>
#include <QFile>
#include <QFileInfo>

#include "document/files/OVDocumentFile.h"
#include "platform/base/ApplicationServices.h"
#include "platform/base/MainThread.h"
#include "platform/desktop/FileDialogs.h"
#include "platform/mainloop/FailureReason.h"
#include "platform/mainloop/Localization.h"
#include "platform/mainloop/MainQueue.h"

using platform::localized;
using platform::textKey;

namespace {

constexpr int kDelete = 1;
constexpr int kAskAgain = 250;  // milliseconds
// A file that others hold: they may release it without a change in the folder.
constexpr int kFirstLook = 500;
constexpr int kLastLook = 30'000;
constexpr int kLastLookAtComplete = 4'000;  // likely open in another Orvo

bool isIn(const std::vector<OVRecoveredFile>& files, const std::string& path) {
  return std::any_of(files.begin(), files.end(),
                     [&path](const OVRecoveredFile& file) { return file.path == path; });
}

// Whether the user can do something about it: open it, or make room for it.
bool isForTheUser(const OVRecoveredFile& file) {
  return file.claim || file.state == OVRecoveredFile::State::waitingForRoom;
}

struct Undeleted {
  std::string path;
  int error = 0;
};

std::vector<Undeleted> deleteAll(const std::vector<OVRecoveredFile>& files) {
  std::vector<Undeleted> left;
  for (const OVRecoveredFile& file : files) {
    const int error = file.claim ? file.claim->remove() : 0;
    if (error != 0 && error != ENOENT) {
      left.push_back({file.path, error});
    }
  }
  return left;
}

}  // namespace

OVRecoveredRecordings::OVRecoveredRecordings(std::string folder, Callbacks callbacks)
    : folder_(std::move(folder)),
      callbacks_(std::move(callbacks)),
      nextLook_(kFirstLook),
      life_(std::make_shared<OVRecoveredRecordings*>(this)) {
  askAgain_.setSingleShot(true);
  lookAgain_.setSingleShot(true);
  QObject::connect(&askAgain_, &QTimer::timeout, &askAgain_, [this] { present(); });
  QObject::connect(&lookAgain_, &QTimer::timeout, &lookAgain_, [this] { list(); });
}

OVRecoveredRecordings::~OVRecoveredRecordings() {
  if (panel_) {
    panel_->disconnect(&askAgain_);
    delete panel_;
  }
}

void OVRecoveredRecordings::begin() {
  platform::assertMainThread();
  watcher_ = std::make_unique<QFileSystemWatcher>();
  QObject::connect(watcher_.get(), &QFileSystemWatcher::directoryChanged, watcher_.get(),
                   [this] { folderChanged(); });
  list();
}

void OVRecoveredRecordings::show() {
  platform::assertMainThread();
  if (panel_) {
    panel_->raise();
    panel_->activateWindow();
    return;
  }
  isWanted_ = true;
  list();
}

// Listing ---------------------------------------------------------------------------------------

void OVRecoveredRecordings::folderChanged() {
  nextLook_ = kFirstLook;
  list();
}

void OVRecoveredRecordings::list() {
  if (listing_ != Listing::none) {
    listing_ = Listing::runningAndOutOfDate;
    return;
  }
  listing_ = Listing::running;
  queue_.async([folder = folder_, held = files_, life = std::weak_ptr(life_)] {
    const OVRecoveredListing listing = recoveredFilesIn(folder, held);
    platform::mainQueue().async([life, held, listing] {
      if (const auto alive = life.lock()) {
        (*alive)->listed(held, listing);
      }
    });
  });
}

void OVRecoveredRecordings::listed(const Files& held, const OVRecoveredListing& listing) {
  const bool isOutOfDate = std::exchange(listing_, Listing::none) == Listing::runningAndOutOfDate;
  const int formerError = std::exchange(folderError_, listing.error);
  if (folderError_ != 0 && formerError == 0) {
    ConsoleLog("The folder of recovered recordings \"%s\" is not used (%d)", folder_.c_str(),
               folderError_);
  }
  Files now = listing.files;
  // Opened or deleted meanwhile.
  std::erase_if(now, [&](const OVRecoveredFile& file) {
    return file.claim && isIn(held, file.path) && !isIn(files_, file.path);
  });
  files_ = std::move(now);
  // What happened before the folder was watched is seen by one more look.
  if (watch(listing.nearest) || isOutOfDate) {
    list();
    return;
  }
  lookAgainLater(listing);
  present();
}

// While the recordings' own folder is missing, the nearest one above it is watched. Whether another
// look is needed since what is watched has changed, or is gone.
bool OVRecoveredRecordings::watch(const std::string& folder) {
  const QString path = QFile::decodeName(folder.c_str());
  if (!watcher_ || path.isEmpty() || folderError_ != 0 ||
      watcher_->directories() == QStringList{path}) {
    return false;
  }
  if (const QStringList former = watcher_->directories(); !former.isEmpty()) {
    watcher_->removePaths(former);
  }
  return watcher_->addPath(path) || !QFileInfo::exists(path);
}

void OVRecoveredRecordings::lookAgainLater(const OVRecoveredListing& listing) {
  const bool isWriting =
      std::any_of(listing.files.begin(), listing.files.end(),
                  [](const OVRecoveredFile& file) { return isBeingMade(file.state); });
  if (isWriting || (listing.lockedElsewhere > 0 && nextLook_ <= kLastLookAtComplete)) {
    lookAgain_.start(nextLook_);
    nextLook_ = std::min(2 * nextLook_, kLastLook);
  }
}

// Presenting ------------------------------------------------------------------------------------

bool OVRecoveredRecordings::hasNews() const {
  return std::any_of(files_.begin(), files_.end(), [this](const OVRecoveredFile& file) {
    return isForTheUser(file) && !offered_.contains({file.path, file.number});
  });
}

void OVRecoveredRecordings::present() {
  using Occasion = OVRecoveredPanel::Occasion;
  const bool atLaunch = std::exchange(isAtLaunch_, false);
  if (panel_) {
    panel_->setFiles(files_);
    noteOffered();
  } else if (std::exchange(isWanted_, false)) {
    showPanel(Occasion::command, true);
  } else if (!watcher_ || !hasNews()) {
    files_.clear();  // releases them
  } else if (callbacks_.mayAsk()) {
    showPanel(Occasion::unexpectedEnd, atLaunch);  // later, the user keeps the keyboard
  } else {
    askAgain_.start(kAskAgain);
  }
}

void OVRecoveredRecordings::noteOffered() {
  for (const OVRecoveredFile& file : files_) {
    if (isForTheUser(file)) {
      offered_.emplace(file.path, file.number);
    }
  }
}

void OVRecoveredRecordings::showPanel(OVRecoveredPanel::Occasion occasion, bool activates) {
  noteOffered();
  panel_ = new OVRecoveredPanel(occasion,
                                {.open = [this](const Paths& paths) { open(paths); },
                                 .remove = [this](const Paths& paths) { askToDelete(paths); }});
  QObject::connect(panel_, &QDialog::finished, &askAgain_, [this] { panelClosed(); });
  panel_->setFiles(files_);
  panel_->setAttribute(Qt::WA_ShowWithoutActivating, !activates);
  panel_->show();
  if (!activates) {
    QApplication::alert(panel_);
  }
}

void OVRecoveredRecordings::panelClosed() {
  panel_.clear();
  files_.clear();
}

// Removes the files from those shown.
OVRecoveredRecordings::Files OVRecoveredRecordings::take(const Paths& paths) {
  Files taken;
  for (const std::string& path : paths) {
    const auto found = std::find_if(files_.begin(), files_.end(),
                                    [&path](const auto& file) { return file.path == path; });
    if (found != files_.end()) {
      taken.push_back(*found);
      files_.erase(found);
    }
  }
  return taken;
}

void OVRecoveredRecordings::open(const Paths& paths) {
  const Files opened = take(paths);
  if (panel_) {
    panel_->accept();
  }
  for (const OVRecoveredFile& file : opened) {
    callbacks_.open(file);
  }
}

// Deleting --------------------------------------------------------------------------------------

void OVRecoveredRecordings::askToDelete(const Paths& paths) {
  using Role = platform::SheetRequest::Button::Role;
  platform::fileDialogs()->beginSheet(
      {.window = panel_.data(),
       .title = localized("Delete for good?"),
       .message =
           localized("Recordings to be deleted: %1. This cannot be undone.").arg(paths.size()),
       .buttons = {{localized("&Cancel"), platform::FileDialogs::kNoAnswer, Role::reject},
                   {localized("&Delete"), kDelete, Role::destructive}}},
      [life = std::weak_ptr(life_), paths](int answer) {
        const auto alive = life.lock();
        if (alive && answer == kDelete) {
          (*alive)->deleteFiles(paths);
        }
      });
}

void OVRecoveredRecordings::deleteFiles(const Paths& paths) {
  queue_.async([files = take(paths)] {
    for (const Undeleted& left : deleteAll(files)) {
      platform::applicationServices()->postModalAlert(
          sentenceWithName(textKey("%1 could not be deleted"), left.path).toStdString(),
          platform::failureReason(left.error));
    }
  });
  if (!panel_) {
    return;
  }
  if (files_.empty() && panel_->occasion() == OVRecoveredPanel::Occasion::unexpectedEnd) {
    panel_->accept();
  } else {
    panel_->setFiles(files_);
  }
}
