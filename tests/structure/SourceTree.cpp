#include "structure/SourceTree.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <optional>
#include <sstream>

namespace structure {

namespace {

/// What a file of each room may include besides its own room. A room is a folder that stands here;
/// the folders below it belong to it.
const std::map<std::string, std::set<std::string>>& arrows() {
  static const std::map<std::string, std::set<std::string>> below{
      {"platform/base", {}},
      {"platform/files", {"platform/base"}},
      {"platform/process", {"platform/base"}},
      {"platform/sound", {"platform/base"}},
      {"platform/cubeb", {"platform/sound"}},
      {"platform/media", {"platform/files"}},
      {"platform/ffmpeg", {"platform/media"}},
      {"platform/mainloop", {"platform/base"}},
      {"platform/views", {"platform/mainloop"}},
      {"platform/desktop", {"platform/mainloop", "platform/files"}},
      {"storage", {"platform/files"}},
      {"recovery", {"platform/process"}},
      {"keeper", {"recovery", "storage"}},
      {"waveform", {"storage"}},
      {"waveform/views", {"waveform", "platform/views"}},
      {"audio", {"storage", "platform/sound", "platform/media", "platform/mainloop"}},
      {"displays", {"platform/views"}},
      {"controls/buttons", {"platform/views"}},
      {"controls", {"controls/buttons", "platform/views", "platform/desktop"}},
      {"document/summaries", {"waveform/views"}},
      {"document/editing", {"document/summaries", "controls", "recovery"}},
      {"document/transport", {"document/editing", "audio"}},
      {"document/display", {"document/transport", "displays"}},
      {"document/spectrum", {"storage", "platform/media", "controls", "displays"}},
      {"document/files", {"document/display", "platform/desktop"}},
      {"document", {"document/files", "document/spectrum"}},
      {"app", {"document"}},
  };
  return below;
}

/// The room of a file: the longest of its folders that is one. Empty for none.
std::string roomOf(const std::string& path) {
  std::string folder = path;
  while (!folder.empty() && !arrows().contains(folder)) {
    const std::size_t slash = folder.rfind('/');
    folder.resize(slash == std::string::npos ? 0 : slash);
  }
  return folder;
}

/// Whether a room may include another one, in one step or over rooms between them.
bool mayInclude(const std::string& room, const std::string& other) {
  const auto& below = arrows().at(room);
  return room == other || std::any_of(below.begin(), below.end(), [&](const std::string& next) {
           return mayInclude(next, other);
         });
}

/// A header and its source are one unit.
std::string unitOf(const std::string& path) {
  return path.substr(0, path.rfind('.'));
}

/// Headers that the build makes: interface files and the meta-object compiler's output.
bool isGenerated(const std::string& name) {
  return name.starts_with("ui_") || name.ends_with(".moc") || name.starts_with("moc_");
}

/// The headers of POSIX that the tree could use, those below sys/ aside. <time.h> and <signal.h>
/// are the language's as well.
bool isPosixHeader(const std::string& name) {
  static const std::set<std::string> known{
      "dirent.h", "dlfcn.h", "fcntl.h",     "ftw.h",   "glob.h",    "poll.h",    "pthread.h",
      "pwd.h",    "sched.h", "semaphore.h", "spawn.h", "strings.h", "termios.h", "unistd.h"};
  return name.starts_with("sys/") || name.starts_with("linux/") || known.contains(name);
}

/// Whether a file may include a header of POSIX: everything in files/, process/ and mainloop/ and
/// the keeper, elsewhere what one unit hides from the rest.
bool mayIncludePosix(const std::string& path, const std::string& header) {
  static const std::map<std::string, std::set<std::string>> exceptions{
      {"platform/base", {"dlfcn.h"}},  // libraries that are loaded late
      // the wake-up that the device's thread posts
      {"platform/sound", {"linux/futex.h", "linux/time_types.h", "sys/syscall.h", "unistd.h"}},
      {"platform/desktop", {"fcntl.h", "sys/stat.h", "unistd.h"}},  // the list of recent files
  };
  const std::string room = roomOf(path);
  const auto exception = exceptions.find(room);
  static const std::set<std::string> rooms{"platform/files", "platform/process",
                                           "platform/mainloop", "keeper"};
  return rooms.contains(room) ||
         (exception != exceptions.end() && exception->second.contains(header));
}

/// Headers of the language and of the system have a lower-case name without a library's folder in
/// front.
bool isSystemHeader(const std::string& name) {
  if (name.empty() || std::isupper(static_cast<unsigned char>(name.front())) != 0) {
    return false;
  }
  const std::size_t slash = name.find('/');
  const std::string folder = slash == std::string::npos ? std::string() : name.substr(0, slash);
  return folder.empty()
             ? !name.starts_with("cubeb") && !name.starts_with("glib") && !name.starts_with("qt")
             : folder == "sys" || folder == "linux" || folder == "dispatch";
}

}  // namespace

SourceTree readSources(const std::string& folder) {
  SourceTree tree;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    const std::string extension = entry.path().extension().string();
    if (!entry.is_regular_file() || (extension != ".h" && extension != ".cpp")) {
      continue;
    }
    std::ifstream file(entry.path(), std::ios::binary);
    tree[std::filesystem::relative(entry.path(), folder).generic_string()] =
        std::string((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  }
  return tree;
}

std::set<std::string> readFileList(const std::string& listPath, const std::string& folder) {
  std::set<std::string> files;
  std::ifstream list(listPath);
  for (std::string line; std::getline(list, line);) {
    if (!line.empty()) {
      files.insert(std::filesystem::path(line).lexically_relative(folder).generic_string());
    }
  }
  return files;
}

std::vector<Include> includesOf(const std::string& text) {
  std::vector<Include> includes;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    std::erase_if(line, [](char c) { return c == ' ' || c == '\t' || c == '\r'; });
    constexpr std::string_view kDirective = "#include";
    if (!line.starts_with(kDirective) || line.size() < kDirective.size() + 3) {
      continue;
    }
    const bool own = line[kDirective.size()] == '"';
    const std::size_t begin = kDirective.size() + 1;
    const std::size_t end = line.find(own ? '"' : '>', begin);
    includes.push_back({line.substr(begin, end - begin), own});
  }
  return includes;
}

Complaints complaintsAboutArrows(const SourceTree& tree) {
  Complaints complaints;
  for (const auto& [path, text] : tree) {
    const std::string room = roomOf(path);
    if (room.empty()) {
      complaints.push_back(path + ": stands in no room of the house");
      continue;
    }
    for (const Include& include : includesOf(text)) {
      if (!include.own || isGenerated(include.name)) {
        continue;
      }
      if (!tree.contains(include.name)) {
        complaints.push_back(path + ": includes \"" + include.name + "\", which is not there");
      } else if (const std::string other = roomOf(include.name);
                 other.empty() || !mayInclude(room, other)) {
        complaints.push_back(path + ": includes \"" + include.name + "\" against the arrows");
      }
    }
  }
  return complaints;
}

Complaints complaintsAboutLateLibraries(const SourceTree& tree) {
  const auto homeOf = [](const std::string& name) -> std::string {
    if (name.starts_with("libav") || name.starts_with("libsw")) {
      return "platform/ffmpeg";
    }
    return name.starts_with("cubeb") ? "platform/cubeb" : "";
  };
  Complaints complaints;
  for (const auto& [path, text] : tree) {
    for (const Include& include : includesOf(text)) {
      const std::string home = include.own ? "" : homeOf(include.name);
      if (!home.empty() && roomOf(path) != home) {
        complaints.push_back(path + ": includes <" + include.name + "> outside its module");
      }
    }
  }
  return complaints;
}

Complaints complaintsAboutCircles(const SourceTree& tree) {
  std::map<std::string, std::set<std::string>> units;
  for (const auto& [path, text] : tree) {
    auto& included = units[unitOf(path)];
    for (const Include& include : includesOf(text)) {
      if (include.own && tree.contains(include.name)) {
        included.insert(unitOf(include.name));
      }
    }
  }
  enum class Visit { kOpen, kDone };
  std::map<std::string, Visit> visits;
  Complaints complaints;
  const std::function<void(const std::string&)> visit = [&](const std::string& unit) {
    visits[unit] = Visit::kOpen;
    for (const std::string& other : units.at(unit)) {
      const auto seen = visits.find(other);
      if (seen == visits.end()) {
        visit(other);
      } else if (seen->second == Visit::kOpen && other != unit) {
        complaints.push_back(unit + ": \"" + other + "\" leads back here");
      }
    }
    visits[unit] = Visit::kDone;
  };
  for (const auto& [unit, included] : units) {
    if (!visits.contains(unit)) {
      visit(unit);
    }
  }
  return complaints;
}

Complaints complaintsAboutPureFiles(const SourceTree& tree, const std::set<std::string>& pure) {
  Complaints complaints;
  for (const std::string& path : pure) {
    const auto file = tree.find(path);
    if (file == tree.end()) {
      complaints.push_back(path + ": belongs to a target, but is not there");
      continue;
    }
    for (const Include& include : includesOf(file->second)) {
      const bool allowed = include.own ? pure.contains(include.name) : isSystemHeader(include.name);
      if (!allowed) {
        complaints.push_back(path + ": sees more than the standard library, " + include.name);
      }
    }
  }
  return complaints;
}

Complaints complaintsAboutPosix(const SourceTree& tree) {
  Complaints complaints;
  for (const auto& [path, text] : tree) {
    for (const Include& include : includesOf(text)) {
      if (!include.own && isPosixHeader(include.name) && !mayIncludePosix(path, include.name)) {
        complaints.push_back(path + ": includes <" + include.name + "> of POSIX");
      }
    }
  }
  return complaints;
}

Complaints complaintsAboutMissingHeaders(const SourceTree& tree) {
  Complaints complaints;
  for (const auto& file : tree) {
    const std::string& path = file.first;
    if (!path.ends_with(".cpp") || path.ends_with("/main.cpp")) {
      continue;
    }
    const std::string ownHeader = path.substr(0, path.rfind('.')) + ".h";
    const auto includes = includesOf(file.second);
    const bool found = std::any_of(includes.begin(), includes.end(), [&](const Include& include) {
      return tree.contains(ownHeader)
                 ? include.name == ownHeader
                 : tree.contains(include.name) && roomOf(include.name) == roomOf(path);
    });
    if (!found) {
      complaints.push_back(path + ": does not include the header that it belongs to");
    }
  }
  return complaints;
}

Complaints complaintsAboutGuards(const SourceTree& tree) {
  Complaints complaints;
  for (const auto& [path, text] : tree) {
    if (path.ends_with(".h") && !text.starts_with("#pragma once\n")) {
      complaints.push_back(path + ": does not begin with #pragma once");
    }
  }
  return complaints;
}

}  // namespace structure
