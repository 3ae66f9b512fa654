#include "gallery/GalleryPanels.h"

#include <memory>
#include <vector>

#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>

#include "app/OVRecoveredPanel.h"
#include "app/OVRecoveredRecordings.h"
#include "gallery/GalleryScreen.h"
#include "platform/base/AudioTypes.h"
#include "platform/desktop/QtFileDialogs.h"
#include "support/MainLoop.h"
#include "support/RecoveredFolder.h"

namespace {

using Occasion = OVRecoveredPanel::Occasion;
using Show = std::function<void(const QString&, QWidget&)>;

OVRecoveredFile file(const QDateTime& start, std::uint64_t seconds,
                     OVRecoveredFile::State state = OVRecoveredFile::State::whole) {
  OVRecoveredFile file;
  file.path = start.toString(Qt::ISODate).toStdString();
  file.start = start;
  file.frames = seconds * platform::kWorkingRate;
  file.state = state;
  return file;
}

std::vector<OVRecoveredFile> files() {
  const QDate day(2026, 11, 21);
  return {file({day, QTime(14, 2)}, 751),
          file({day, QTime(15, 40)}, 8, OVRecoveredFile::State::damaged),
          file({day.addDays(1), QTime(9, 0)}, 7500),
          file({day.addDays(1), QTime(11, 5)}, 60, OVRecoveredFile::State::beingWritten)};
}

void showPanel(double scale, const QString& name, Occasion occasion,
               const std::vector<OVRecoveredFile>& shown, const Show& show) {
  OVRecoveredPanel panel(occasion, {});
  panel.setAttribute(Qt::WA_DeleteOnClose, false);
  panel.setFiles(shown);
  static_cast<void>(showOnScreenOfScale(panel, scale));
  show(QStringLiteral("recovered-") + name, panel);
}

/// The real question before a file is deleted.
void showDeletion(double scale, const Show& show) {
  platform::QtFileDialogs real;
  const platform::Installed<platform::FileDialogs>::Scope installation(real);
  const QTemporaryDir data;
  const support::RecoveredFolder folder(data.path().toStdString());
  folder.add("Orvo recording 2026-11-21 14.02.31.caf", {0.5F, 0.5F});
  OVRecoveredRecordings recordings(folder.path(),
                                   {.open = [](const auto&) {}, .mayAsk = [] { return true; }});
  recordings.show();
  static_cast<void>(runMainLoopUntil([&] { return recordings.panel() != nullptr; }));
  recordings.panel()->findChild<QPushButton*>("deleteRecovered")->click();
  auto* const question = recordings.panel()->findChild<QMessageBox*>("sheet");
  static_cast<void>(showOnScreenOfScale(*question, scale));
  show(QStringLiteral("recovered-delete"), *question);
  question->reject();
}

}  // namespace

void forEachGalleryPanel(double scale, const Show& show) {
  showPanel(scale, "question", Occasion::unexpectedEnd, files(), show);
  showPanel(scale, "question-one", Occasion::unexpectedEnd, {files().front()}, show);
  std::vector<OVRecoveredFile> many;
  for (std::uint64_t i = 0; i < 25; ++i) {
    many.push_back(file(files().front().start.addSecs(static_cast<qint64>(3600 * i)), 60 * i + 7));
  }
  showPanel(scale, "list-long", Occasion::command, many, show);
  showPanel(scale, "list-empty", Occasion::command, {}, show);
  showPanel(scale, "list-disk-full", Occasion::command,
            {files().front(),
             file({{2026, 11, 22}, QTime(17, 20)}, 5400, OVRecoveredFile::State::waitingForRoom)},
            show);
  showDeletion(scale, show);
}
