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

std::string folderOf(const std::string& path) {
  return path.substr(0, path.find('/'));
}

/// Height of a folder in the house; a file may include what stands lower.
std::optional<int> heightOf(const std::string& folder) {
  static const std::map<std::string, int> heights{{"platform", 0}, {"storage", 1},  {"audio", 2},
                                                  {"waveform", 2}, {"displays", 2}, {"controls", 2},
                                                  {"document", 3}, {"app", 4}};
  const auto found = heights.find(folder);
  return found == heights.end() ? std::nullopt : std::optional<int>(found->second);
}

/// Headers that the build makes: interface files and the meta-object compiler's output.
bool isGenerated(const std::string& name) {
  return name.starts_with("ui_") || name.ends_with(".moc") || name.starts_with("moc_");
}

/// Headers of the language and of POSIX have a lower-case name without a library's folder in front.
bool isSystemHeader(const std::string& name) {
  if (name.empty() || std::isupper(static_cast<unsigned char>(name.front())) != 0) {
    return false;
  }
  const std::size_t slash = name.find('/');
  const std::string folder = slash == std::string::npos ? std::string() : name.substr(0, slash);
  return folder.empty() ? !name.starts_with("cubeb") && !name.starts_with("qt")
                        : folder == "sys" || folder == "linux";
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
    const auto height = heightOf(folderOf(path));
    if (!height) {
      complaints.push_back(path + ": stands in no folder of the house");
      continue;
    }
    for (const Include& include : includesOf(text)) {
      if (!include.own || isGenerated(include.name)) {
        continue;
      }
      if (!tree.contains(include.name)) {
        complaints.push_back(path + ": includes \"" + include.name + "\", which is not there");
      } else if (const auto other = heightOf(folderOf(include.name));
                 folderOf(include.name) != folderOf(path) && (!other || *other >= *height)) {
        complaints.push_back(path + ": includes \"" + include.name + "\" against the arrows");
      }
    }
  }
  return complaints;
}

Complaints complaintsAboutCircles(const SourceTree& tree) {
  enum class Visit { kOpen, kDone };
  std::map<std::string, Visit> visits;
  Complaints complaints;
  const std::function<void(const std::string&)> visit = [&](const std::string& path) {
    visits[path] = Visit::kOpen;
    for (const Include& include : includesOf(tree.at(path))) {
      if (!include.own || !tree.contains(include.name)) {
        continue;
      }
      const auto seen = visits.find(include.name);
      if (seen == visits.end()) {
        visit(include.name);
      } else if (seen->second == Visit::kOpen) {
        complaints.push_back(path + ": \"" + include.name + "\" leads back here");
      }
    }
    visits[path] = Visit::kDone;
  };
  for (const auto& [path, text] : tree) {
    if (!visits.contains(path)) {
      visit(path);
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
                 : tree.contains(include.name) && folderOf(include.name) == folderOf(path);
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
