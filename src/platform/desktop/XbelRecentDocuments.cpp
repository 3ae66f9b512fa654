#include "platform/desktop/XbelRecentDocuments.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

#include <QDir>
#include <QFile>

#include "platform/base/ApplicationServices.h"
#include "platform/desktop/FileAddress.h"
#include "platform/desktop/XbelRegistration.h"
#include "platform/files/AbsolutePath.h"
#include "platform/files/PosixFile.h"
#include "platform/files/ReplacementFile.h"
#include "platform/mainloop/FailureReason.h"

namespace platform {
namespace {

namespace fs = std::filesystem;

constexpr char kApplication[] = "Orvo";
constexpr char kCommand[] = "'orvo %u'";
constexpr mode_t kPrivateFile = 0600;
constexpr mode_t kPrivateFolder = 0700;
// A program that rewrites the list all the time is not waited for.
constexpr int kMaximumAttempts = 10;

struct AudioType {
  std::string_view suffix;
  const char* mimeType;
};

// The types are those of the program's desktop entry.
constexpr std::array kAudioTypes{
    AudioType{".caf", "audio/x-caf"},   AudioType{".aif", "audio/x-aiff"},
    AudioType{".aiff", "audio/x-aiff"}, AudioType{".wav", "audio/x-wav"},
    AudioType{".mp3", "audio/mpeg"},    AudioType{".mp4", "video/mp4"},
    AudioType{".m4a", "audio/mp4"},     AudioType{".m4r", "audio/mp4"},
    AudioType{".aac", "audio/aac"},
};
constexpr char kUnknownType[] = "application/octet-stream";

// Null for a file that is not an audio file by its name.
const char* audioTypeOf(const std::string& path) {
  std::string suffix = fs::path(path).extension().string();
  for (char& c : suffix) {
    c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  }
  const auto* found =
      std::find_if(kAudioTypes.begin(), kAudioTypes.end(),
                   [&suffix](const AudioType& type) { return type.suffix == suffix; });
  return found == kAudioTypes.end() ? nullptr : found->mimeType;
}

struct ListText {
  std::string text;
  std::string failure;  // why it could not be read, empty for success
};

std::string tooLong() {
  return "It is longer than " + std::to_string(XbelRecentDocuments::kMaxList) + " bytes.";
}

// A missing list is an empty one. Without O_NONBLOCK, opening a pipe would wait for its other end.
ListText readList(const std::string& path) {
  const int descriptor = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  if (descriptor < 0) {
    const int error = errno;
    return {.text = {}, .failure = error == ENOENT ? "" : failureReason(error)};
  }
  PosixFile file(descriptor);
  ListText list;
  struct stat status = {};
  if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) {
    list.failure = failureReason(S_ISDIR(status.st_mode) ? EISDIR : EINVAL);
    return list;
  }
  if (static_cast<std::uint64_t>(status.st_size) > XbelRecentDocuments::kMaxList) {
    list.failure = tooLong();
    return list;
  }
  list.text.resize(static_cast<std::size_t>(status.st_size));
  const FileTransfer transfer = file.readAt(list.text.data(), list.text.size(), 0);
  if (transfer.error != 0) {
    list.failure = failureReason(transfer.error);
  }
  list.text.resize(transfer.byteCount);
  return list;
}

// Writes the new list beside the old one and brings it to the disk. 0, or the errno of the failure.
int writeNew(const std::string& path, const std::string& text) {
  const int descriptor = ::open(path.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC);
  if (descriptor < 0) {
    return errno;
  }
  PosixFile file(descriptor);
  if (::fchmod(descriptor, kPrivateFile) != 0) {
    return errno;
  }
  const FileTransfer transfer = file.writeAt(text.data(), text.size(), 0);
  if (transfer.error != 0) {
    return transfer.error;
  }
  return ::fsync(descriptor) == 0 ? 0 : errno;
}

// A failure shows when the list is written there.
void makeFolder(const fs::path& folder) {
  std::error_code error;
  if (folder.empty() || fs::exists(folder, error)) {
    return;
  }
  makeFolder(folder.parent_path());
  ::mkdir(folder.c_str(), kPrivateFolder);
}

void reportFailure(const std::string& list, const std::string& reason) {
  ConsoleLog("The list of recent files \"%s\" was left as it is: %s", list.c_str(), reason.c_str());
}

}  // namespace

XbelRecentDocuments::XbelRecentDocuments(std::string file, Clock clock)
    : file_(std::move(file)), clock_(std::move(clock)) {}

std::string XbelRecentDocuments::desktopFile() {
  QByteArray folder = qgetenv("XDG_DATA_HOME");
  if (!folder.startsWith('/')) {
    folder = QFile::encodeName(QDir::homePath()) + "/.local/share";
  }
  return folder.toStdString() + "/recently-used.xbel";
}

void XbelRecentDocuments::noteNewRecentDocument(const std::string& path) {
  const std::string document = absolutePathOf(path);
  if (document.empty()) {
    return;
  }
  for (int attempt = 0; attempt < kMaximumAttempts; ++attempt) {
    if (tryToNote(document) != Outcome::changedMeanwhile) {
      return;
    }
  }
  reportFailure(file_, "Another program is changing it all the time.");
}

XbelRecentDocuments::Outcome XbelRecentDocuments::tryToNote(const std::string& document) {
  const ListText before = readList(file_);
  if (!before.failure.empty()) {
    reportFailure(file_, before.failure);
    return Outcome::failed;
  }
  const char* type = audioTypeOf(document);
  const auto after = withRegistration(
      before.text, {.path = document,
                    .mimeType = type == nullptr ? kUnknownType : type,
                    .application = kApplication,
                    .command = kCommand,
                    .time = std::chrono::time_point_cast<std::chrono::microseconds>(clock_())});
  if (!after) {
    reportFailure(file_, "It is not a list of bookmarks that can be read.");
    return Outcome::failed;
  }
  if (after->size() > kMaxList) {
    reportFailure(file_, tooLong());
    return Outcome::failed;
  }
  return replace(before.text, *after);
}

// The new list is on the disk before the old one is looked at for the last time, so that nothing
// slow lies between that look and the replacement.
XbelRecentDocuments::Outcome XbelRecentDocuments::replace(const std::string& before,
                                                          const std::string& after) const {
  makeFolder(fs::path(file_).parent_path());
  const auto replacement = ReplacementFile::beside(file_);
  if (!replacement) {
    reportFailure(file_, failureReason(replacement.error()));
    return Outcome::failed;
  }
  int error = writeNew(replacement->path(), after);
  if (error == 0) {
    const ListText now = readList(file_);
    if (!now.failure.empty() || now.text != before) {
      return Outcome::changedMeanwhile;
    }
    error = replacement->commit();
  }
  if (error != 0) {
    reportFailure(file_, failureReason(error));
    return Outcome::failed;
  }
  return Outcome::noted;
}

std::vector<std::string> XbelRecentDocuments::recentDocuments(std::size_t most) const {
  struct Found {
    std::string path;
    XbelTime time;
  };
  std::vector<Found> found;
  const ListText list = readList(file_);
  const auto root = readXbel(list.text, kApplication, [&found](const XbelBookmark& bookmark) {
    if (!bookmark.application) {
      return;
    }
    auto path = pathOfFileAddress(bookmark.address);
    if (path && audioTypeOf(*path) != nullptr) {
      found.push_back({std::move(*path), registrationTimeOf(bookmark)});
    }
  });
  if (!list.failure.empty() || !root) {
    return {};
  }
  std::reverse(found.begin(), found.end());  // of equal times the one appended last comes first
  std::stable_sort(found.begin(), found.end(),
                   [](const Found& a, const Found& b) { return a.time > b.time; });
  std::vector<std::string> paths;
  std::set<std::string> seen;
  for (const Found& document : found) {
    if (paths.size() == most) {
      break;
    }
    std::error_code error;
    if (seen.insert(document.path).second && fs::is_regular_file(document.path, error)) {
      paths.push_back(document.path);
    }
  }
  return paths;
}

}  // namespace platform
