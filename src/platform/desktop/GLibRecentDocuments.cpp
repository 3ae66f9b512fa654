#include "platform/desktop/GLibRecentDocuments.h"

#include <fcntl.h>
#include <glib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <set>
#include <utility>

#include <QDir>
#include <QFile>

#include "platform/base/ApplicationServices.h"
#include "platform/desktop/FileUri.h"
#include "platform/files/AbsolutePath.h"
#include "platform/files/PosixFile.h"
#include "platform/files/ReplacementFile.h"
#include "platform/mainloop/FailureReason.h"

namespace platform {
namespace {

namespace fs = std::filesystem;

constexpr char kApplication[] = "Orvo";
constexpr char kCommand[] = "orvo %u";
// GLib drops entries without a registered program, so the desktop's opener is registered for them.
constexpr char kOpener[] = "xdg-open";
constexpr char kOpenerCommand[] = "xdg-open %u";
constexpr char kUnknownType[] = "application/octet-stream";
constexpr mode_t kPrivateFolder = 0700;
// Limits retries when another program keeps rewriting the list.
constexpr int kMaximumAttempts = 10;

template <auto destroy>
struct Destroy {
  template <typename T>
  void operator()(T* object) const {
    destroy(object);
  }
};
using Bookmarks = std::unique_ptr<GBookmarkFile, Destroy<g_bookmark_file_free>>;
using Time = std::unique_ptr<GDateTime, Destroy<g_date_time_unref>>;
using Error = std::unique_ptr<GError, Destroy<g_error_free>>;
using Text = std::unique_ptr<char, Destroy<g_free>>;

struct ListText {
  std::string text;
  std::string failure;  // why it could not be read, empty for success
};

std::string tooLong() {
  return "It is longer than " + std::to_string(GLibRecentDocuments::kMaxList) + " bytes.";
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
  if (static_cast<std::uint64_t>(status.st_size) > GLibRecentDocuments::kMaxList) {
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

struct ParsedList {
  Bookmarks bookmarks;  // null for a text that is not a list
  std::string failure;
};

ParsedList parse(const std::string& text) {
  ParsedList list{.bookmarks = Bookmarks(g_bookmark_file_new()), .failure = {}};
  GError* error = nullptr;
  if (!text.empty() && g_bookmark_file_load_from_data(list.bookmarks.get(), text.data(),
                                                      text.size(), &error) == FALSE) {
    list.failure = Error(error)->message;
    list.bookmarks.reset();
  }
  return list;
}

std::vector<std::string> urisOf(GBookmarkFile* bookmarks) {
  gsize count = 0;
  const std::unique_ptr<char*, Destroy<g_strfreev>> uris(
      g_bookmark_file_get_uris(bookmarks, &count));
  return {uris.get(), uris.get() + count};
}

// The entry of a file, however its URI is written; a new one has the usual URI.
std::string uriOf(GBookmarkFile* bookmarks, const std::string& path) {
  std::string usual = fileUriOf(path);
  if (g_bookmark_file_has_item(bookmarks, usual.c_str()) != FALSE) {
    return usual;
  }
  const auto uris = urisOf(bookmarks);
  const auto found = std::find_if(uris.begin(), uris.end(), [&path](const std::string& uri) {
    return pathOfFileUri(uri) == path;
  });
  return found == uris.end() ? usual : *found;
}

Time timeOf(std::chrono::system_clock::time_point now) {
  const Time epoch(g_date_time_new_from_unix_utc(0));
  const auto sinceEpoch =
      std::chrono::duration_cast<std::chrono::microseconds>(now.time_since_epoch());
  return Time(g_date_time_add(epoch.get(), sinceEpoch.count()));
}

void enter(GBookmarkFile* bookmarks, const std::string& path, const std::string& mimeType,
           GDateTime* now) {
  const std::string uri = uriOf(bookmarks, path);
  if (g_bookmark_file_has_item(bookmarks, uri.c_str()) == FALSE) {
    g_bookmark_file_set_added_date_time(bookmarks, uri.c_str(), now);
  }
  if (const Text known(g_bookmark_file_get_mime_type(bookmarks, uri.c_str(), nullptr)); !known) {
    g_bookmark_file_set_mime_type(bookmarks, uri.c_str(),
                                  mimeType.empty() ? kUnknownType : mimeType.c_str());
  }
  constexpr int kOneMore = -1;
  g_bookmark_file_set_application_info(bookmarks, uri.c_str(), kApplication, kCommand, kOneMore,
                                       now, nullptr);
  g_bookmark_file_set_modified_date_time(bookmarks, uri.c_str(), now);
  g_bookmark_file_set_visited_date_time(bookmarks, uri.c_str(), now);
}

void keepEntriesOfNobody(GBookmarkFile* bookmarks) {
  for (const std::string& uri : urisOf(bookmarks)) {
    gsize count = 0;
    const std::unique_ptr<char*, Destroy<g_strfreev>> applications(
        g_bookmark_file_get_applications(bookmarks, uri.c_str(), &count, nullptr));
    if (count > 0) {
      continue;
    }
    GDateTime* const modified =
        g_bookmark_file_get_modified_date_time(bookmarks, uri.c_str(), nullptr);
    const Time kept(g_date_time_ref(modified));
    g_bookmark_file_set_application_info(bookmarks, uri.c_str(), kOpener, kOpenerCommand, 1,
                                         kept.get(), nullptr);
    g_bookmark_file_set_modified_date_time(bookmarks, uri.c_str(), kept.get());
  }
}

bool hasUncountedProgram(GBookmarkFile* bookmarks, const std::string& uri) {
  const std::unique_ptr<char*, Destroy<g_strfreev>> programs(
      g_bookmark_file_get_applications(bookmarks, uri.c_str(), nullptr, nullptr));
  for (char** program = programs.get(); program != nullptr && *program != nullptr; ++program) {
    unsigned count = 0;
    g_bookmark_file_get_application_info(bookmarks, uri.c_str(), *program, nullptr, &count, nullptr,
                                         nullptr);
    if (count == 0) {
      return true;
    }
  }
  return false;
}

std::string textOf(GBookmarkFile* bookmarks) {
  gsize length = 0;
  const Text text(g_bookmark_file_to_data(bookmarks, &length, nullptr));
  return {text.get(), length};
}

// Empty for a list that would not be the same when it is read again. GLib leaves out programs that
// are said to have opened a file never, writes the name of a kind as it is, ampersand and all, and
// reads a line break within a name as a blank.
std::string writableTextOf(GBookmarkFile* bookmarks) {
  const auto uris = urisOf(bookmarks);
  if (std::any_of(uris.begin(), uris.end(), [bookmarks](const std::string& uri) {
        return hasUncountedProgram(bookmarks, uri);
      })) {
    return {};
  }
  std::string text = textOf(bookmarks);
  const ParsedList again = parse(text);
  const bool isSame = again.bookmarks && textOf(again.bookmarks.get()) == text;
  return isSame ? text : std::string();
}

// Failures show when the list is written there.
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

GLibRecentDocuments::GLibRecentDocuments(std::string file, MimeTypeOf mimeTypeOf, Clock clock)
    : file_(std::move(file)), mimeTypeOf_(std::move(mimeTypeOf)), clock_(std::move(clock)) {}

std::string GLibRecentDocuments::desktopFile() {
  QByteArray folder = qgetenv("XDG_DATA_HOME");
  if (!folder.startsWith('/')) {
    folder = QFile::encodeName(QDir::homePath()) + "/.local/share";
  }
  return folder.toStdString() + "/recently-used.xbel";
}

void GLibRecentDocuments::noteNewRecentDocument(const std::string& path) {
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

GLibRecentDocuments::Outcome GLibRecentDocuments::tryToNote(const std::string& document) {
  const ListText before = readList(file_);
  if (!before.failure.empty()) {
    reportFailure(file_, before.failure);
    return Outcome::failed;
  }
  const ParsedList list = parse(before.text);
  if (!list.bookmarks) {
    reportFailure(file_, list.failure);
    return Outcome::failed;
  }
  enter(list.bookmarks.get(), document, mimeTypeOf_(document), timeOf(clock_()).get());
  keepEntriesOfNobody(list.bookmarks.get());
  const std::string after = writableTextOf(list.bookmarks.get());
  if (after.empty()) {
    reportFailure(file_, "An entry of it cannot be written.");
    return Outcome::failed;
  }
  if (after.size() > kMaxList) {
    reportFailure(file_, tooLong());
    return Outcome::failed;
  }
  return replace(before.text, after);
}

// The new list is on disk before the last check of the old one, so that nothing slow happens
// between that check and the replacement.
GLibRecentDocuments::Outcome GLibRecentDocuments::replace(const std::string& before,
                                                          const std::string& after) const {
  makeFolder(fs::path(file_).parent_path());
  const auto replacement = ReplacementFile::beside(file_, ReplacementFile::NewFile::ownerOnly);
  if (!replacement) {
    reportFailure(file_, failureReason(replacement.error()));
    return Outcome::failed;
  }
  int error = replacement->write(after.data(), after.size());
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

std::vector<std::string> GLibRecentDocuments::recentDocuments(std::size_t most) const {
  struct Found {
    std::string path;
    GDateTime* time;  // belongs to the list
  };
  const ListText text = readList(file_);
  const ParsedList list = parse(text.text);
  if (!text.failure.empty() || !list.bookmarks) {
    return {};
  }
  std::vector<Found> found;
  for (const std::string& uri : urisOf(list.bookmarks.get())) {
    GDateTime* time = nullptr;
    if (g_bookmark_file_get_application_info(list.bookmarks.get(), uri.c_str(), kApplication,
                                             nullptr, nullptr, &time, nullptr) == FALSE) {
      continue;
    }
    auto path = pathOfFileUri(uri);
    if (path && !mimeTypeOf_(*path).empty()) {
      found.push_back({*std::move(path), time});
    }
  }
  std::stable_sort(found.begin(), found.end(), [](const Found& a, const Found& b) {
    return g_date_time_compare(a.time, b.time) > 0;
  });
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
