// Any bytes as the desktop's list of recent files, in which a document is then noted. What must
// hold: a list that GLib cannot read, or could not if it had written it, is left as it is, byte for
// byte, which is said once; in any other the document is there afterwards, and every entry that was
// there before, with its programs, its title, its description, its kind, its groups, its times and
// its privacy; nothing else is left in the folder.
#include <glib.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "fuzz/FuzzTarget.h"
#include "platform/desktop/FileUri.h"
#include "platform/desktop/GLibRecentDocuments.h"
#include "support/TemporaryFolder.h"
#include "support/fakes/RecordingServices.h"

namespace {

namespace fs = std::filesystem;
using platform::GLibRecentDocuments;

struct FreeText {
  void operator()(char* text) const { g_free(text); }
};

std::string taken(char* text) {
  const std::unique_ptr<char, FreeText> owner(text);
  return text == nullptr ? std::string() : std::string(text);
}

std::vector<std::string> taken(char** texts) {
  std::vector<std::string> copies;
  for (char** text = texts; text != nullptr && *text != nullptr; ++text) {
    copies.emplace_back(*text);
  }
  g_strfreev(texts);
  return copies;
}

std::int64_t executionBegan = 0;  // microseconds

// Microseconds, as exact as the list. GLib takes the time of the reading where there is none: 0.
std::int64_t microseconds(GDateTime* time) {
  const std::int64_t all = time == nullptr ? 0
                                           : g_date_time_to_unix(time) * G_USEC_PER_SEC +
                                                 g_date_time_get_microsecond(time);
  return all < executionBegan ? all : 0;
}

/// What GLib reads in an entry.
struct Entry {
  struct Program {
    std::string command;
    unsigned count = 0;
    std::int64_t time = 0;

    friend bool operator==(const Program&, const Program&) = default;
  };

  std::vector<std::string> texts;  // title, description, kind
  std::vector<std::string> groups;
  std::vector<std::int64_t> times;  // added, changed, visited
  bool isPrivate = false;
  std::map<std::string, Program> programs;
};

Entry entryOf(GBookmarkFile* list, const char* uri) {
  Entry entry;
  entry.texts = {taken(g_bookmark_file_get_title(list, uri, nullptr)),
                 taken(g_bookmark_file_get_description(list, uri, nullptr)),
                 taken(g_bookmark_file_get_mime_type(list, uri, nullptr))};
  entry.groups = taken(g_bookmark_file_get_groups(list, uri, nullptr, nullptr));
  entry.times = {microseconds(g_bookmark_file_get_added_date_time(list, uri, nullptr)),
                 microseconds(g_bookmark_file_get_modified_date_time(list, uri, nullptr)),
                 microseconds(g_bookmark_file_get_visited_date_time(list, uri, nullptr))};
  entry.isPrivate = g_bookmark_file_get_is_private(list, uri, nullptr) != FALSE;
  for (const std::string& name :
       taken(g_bookmark_file_get_applications(list, uri, nullptr, nullptr))) {
    char* command = nullptr;
    unsigned count = 0;
    GDateTime* time = nullptr;
    g_bookmark_file_get_application_info(list, uri, name.c_str(), nullptr, &count, &time, nullptr);
    // Fails for a command that no shell could read.
    g_bookmark_file_get_application_info(list, uri, name.c_str(), &command, nullptr, nullptr,
                                         nullptr);
    entry.programs[name] = {taken(command), count, microseconds(time)};
  }
  return entry;
}

using Entries = std::map<std::string, Entry>;  // by URI

/// Nothing if GLib cannot read it.
std::optional<Entries> entriesOf(const std::string& text) {
  const std::unique_ptr<GBookmarkFile, decltype(&g_bookmark_file_free)> list(g_bookmark_file_new(),
                                                                             &g_bookmark_file_free);
  if (!text.empty() &&
      g_bookmark_file_load_from_data(list.get(), text.data(), text.size(), nullptr) == FALSE) {
    return std::nullopt;
  }
  Entries entries;
  for (const std::string& uri : taken(g_bookmark_file_get_uris(list.get(), nullptr))) {
    entries[uri] = entryOf(list.get(), uri.c_str());
  }
  return entries;
}

bool isPlain(const std::string& name) {
  return name.find_first_of("&<\"\t\n\r") == std::string::npos;
}

/// GLib writes the name of a kind as it is, so that it could not read some again, reads line breaks
/// within names as blanks, and leaves out programs that have opened a file never. Only then may the
/// list be left alone.
bool isWritable(const Entries& entries) {
  return std::all_of(entries.begin(), entries.end(), [](const auto& each) {
    const Entry& entry = each.second;
    return isPlain(each.first) && isPlain(entry.texts.back()) &&
           std::all_of(entry.programs.begin(), entry.programs.end(), [](const auto& program) {
             return program.second.count > 0 && isPlain(program.first) &&
                    isPlain(program.second.command);
           });
  });
}

struct Desktop {
  support::TemporaryFolder folder;
  const std::string list = folder.file("list.xbel");
  const std::string document = folder.file("a.wav");
};

Desktop& desktop() {
  static Desktop instance;
  return instance;
}

void put(const std::string& text) {
  std::ofstream(desktop().list, std::ios::binary) << text;
}

std::string listText() {
  std::ifstream file(desktop().list, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// An entry that was there before; what GLib asks for may be added to one without a program.
void requireKept(const std::string& uri, const Entry& before, const Entry& after) {
  fuzz::require(after.texts == before.texts, "title, description and kind of " + uri);
  fuzz::require(after.groups == before.groups, "groups of " + uri);
  fuzz::require(after.isPrivate == before.isPrivate, "privacy of " + uri);
  fuzz::require(after.times == before.times, "times of " + uri);
  for (const auto& program : before.programs) {
    const auto found = after.programs.find(program.first);
    fuzz::require(found != after.programs.end() && found->second == program.second,
                  "program " + program.first + " of " + uri);
  }
}

void requireNoted(const Entries& before, const Entries& after) {
  bool isNoted = false;
  for (const auto& entry : after) {
    const bool isIt = platform::pathOfFileUri(entry.first) == desktop().document;
    isNoted = isNoted || (isIt && entry.second.programs.contains("Orvo"));
  }
  fuzz::require(isNoted, "the document is in the list");
  for (const auto& entry : before) {
    const auto found = after.find(entry.first);
    fuzz::require(found != after.end(), "no entry is lost: " + entry.first);
    if (platform::pathOfFileUri(entry.first) != desktop().document) {
      requireKept(entry.first, entry.second, found->second);
    }
  }
}

std::string kindOf(const std::string& path) {
  return path.ends_with(".txt") ? "" : "audio/x-wav";
}

}  // namespace

void fuzz::prepare() {
  std::ofstream(desktop().document) << "audio";
}

void fuzz::execute(const std::uint8_t* data, std::size_t size) {
  executionBegan = g_get_real_time();
  // Where the input says HERE, it means the folder of the document.
  std::string text(data, data + size);
  const std::string folder = platform::fileUriOf(desktop().folder.path());
  for (std::size_t at = text.find("HERE"); at != std::string::npos; at = text.find("HERE", at)) {
    text.replace(at, 4, folder);
    at += folder.size();
  }
  put(text);
  const support::InstalledRecordingServices services;
  GLibRecentDocuments documents(desktop().list, kindOf, [] {
    return std::chrono::system_clock::time_point(std::chrono::seconds(1'700'000'000));
  });
  static_cast<void>(documents.recentDocuments(100));
  documents.noteNewRecentDocument(desktop().document);

  const auto before = entriesOf(text);
  const bool isWritten = services->consoleLines().empty();
  require(isWritten || !before || !isWritable(*before), "a list that can be written is written");
  if (before && isWritten) {
    const auto after = entriesOf(listText());
    require(after.has_value(), "the list can be read again");
    requireNoted(*before, *after);
    const auto recent = documents.recentDocuments(10'000);
    require(std::count(recent.begin(), recent.end(), desktop().document) == 1,
            "the document is recent");
  } else {
    require(listText() == text, "a list that cannot be read or written is left as it is");
    require(services->consoleLines().size() == 1, "that is said once");
    require(before.has_value() || documents.recentDocuments(100).empty(), "nothing is read in it");
  }
  require(
      std::distance(fs::directory_iterator(desktop().folder.path()), fs::directory_iterator()) == 2,
      "nothing else is left");
}
