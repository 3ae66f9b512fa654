#include "document/files/OVDocumentFile.h"

#include <filesystem>
#include <utility>

#include <QDateTime>

#include "audio/AudioFileFailure.h"
#include "audio/OVFileKinds.h"
#include "controls/OVRecorderWindow.h"
#include "platform/mainloop/ShownName.h"

using platform::localized;

namespace {

constexpr std::int32_t kUsualType = 0;  // WAV

// The same in every region, so that names sort by time; a colon is no part of a name everywhere.
std::string nameOfNewTake() {
  return localized("Recording %1")
      .arg(QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd HH.mm")))
      .toStdString();
}

}  // namespace

// Without arg(): a name may contain a placeholder.
QString OVDocumentFile::titleWithName(const QString& name) {
  return localized("Orvo") + QStringLiteral(" - ") + name;
}

void OVDocumentFile::connect(OVRecorderWindow* window) {
  window_ = window;
  forget();
}

void OVDocumentFile::take(const std::string& path, std::int32_t type) {
  currentFilename_ = path;
  currentFiletype_ = type;
  if (window_) {
    window_->setTitle(titleWithName(shownName()));
  }
  if (taken_) {
    taken_(path);
  }
}

void OVDocumentFile::forget() {
  nameWithoutFile({}, {});
}

void OVDocumentFile::nameWithoutFile(const QString& shown, std::string suggested) {
  currentFilename_.clear();
  tags_ = std::make_shared<const platform::AudioFileTags>();
  nameWithoutFile_ = shown;
  suggestedWithoutFile_ = std::move(suggested);
  if (window_) {
    window_->setTitle(titleWithName(shownName()));
  }
}

QString OVDocumentFile::shownName() const {
  if (!currentFilename_.empty()) {
    return platform::shownName(lastPathComponent(currentFilename_));
  }
  return nameWithoutFile_.isEmpty() ? localized("Unnamed") : nameWithoutFile_;
}

std::string OVDocumentFile::suggestedName() const {
  if (!currentFilename_.empty()) {
    return nameWithoutSuffix(currentFilename_);
  }
  return suggestedWithoutFile_.empty() ? nameOfNewTake() : suggestedWithoutFile_;
}

std::int32_t OVDocumentFile::suggestedType() const {
  for (const std::int32_t type : {currentFiletype_, fileTypeOfPath(currentFilename_)}) {
    if (fileKindOfType(type) != nullptr) {
      return type;
    }
  }
  return kUsualType;
}

bool OVDocumentFile::canBeSaved() const {
  return !currentFilename_.empty() && fileKindOfType(currentFiletype_) != nullptr;
}

std::string OVDocumentFile::folder() const {
  return std::filesystem::path(currentFilename_).parent_path().string();
}

QString sentenceWithName(platform::TextKey sentence, const std::string& path) {
  return localized(sentence).arg(QString::fromStdString(shownFileName(path)));
}
