#include "structure/RepositoryText.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <regex>
#include <sstream>

#include "support/programs/ChildProcess.h"

namespace structure {

namespace {

/// A pattern is tried only on lines that hold its trigger, since most hold none. Both are put
/// together from pieces, so that this file does not complain of itself.
struct Rule {
  std::string trigger;  ///< lower case
  std::regex pattern;
  const char* reason;
};

constexpr char kMachine[] = "a folder of someone's machine";
constexpr char kHost[] = "a host from which packages come";

std::regex anyCase(const std::string& pattern) {
  return std::regex(pattern, std::regex::ECMAScript | std::regex::icase | std::regex::optimize);
}

/// An absolute path that begins with this folder; a folder of that name inside another is none,
/// and the home of a made-up "me" is nobody's.
Rule machineFolder(const std::string& name) {
  return {"/" + name + "/", anyCase("(^|[\\s'\"`=:(<,\\[])/" + name + "/(?!me/)[a-z0-9._]"),
          kMachine};
}

const std::vector<Rule>& rules() {
  static const std::vector<Rule> all{
      machineFolder("home"),
      machineFolder("users"),
      machineFolder("root"),
      machineFolder("work"),
      {"debian.", anyCase("\\b(deb|ftp|snapshot|security)\\.debian\\.[a-z]+"), kHost},
      {"registry.", anyCase("\\bregistry\\.[a-z0-9.-]+\\.[a-z]+"), kHost},
  };
  return all;
}

std::string lowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

std::vector<std::string> filesKnownToGit(const std::string& root) {
  std::vector<std::string> files;
  const support::Finished list =
      support::runToEnd({"git", "-c", "safe.directory=" + root, "-C", root, "ls-files", "--cached",
                         "--others", "--exclude-standard", "-z"},
                        support::cleanEnvironment());
  std::istringstream names(list.output);
  for (std::string name; std::getline(names, name, '\0');) {
    // A file that was taken away, but not yet committed as such, is no longer there to be read.
    if (std::filesystem::is_regular_file(std::filesystem::path(root) / name)) {
      files.push_back(name);
    }
  }
  return files;
}

std::vector<std::string> filesThatAreNotBuilt(const std::string& root) {
  std::vector<std::string> files;
  std::filesystem::recursive_directory_iterator entry(root);
  for (; entry != std::filesystem::recursive_directory_iterator(); ++entry) {
    const std::string path = entry->path().lexically_relative(root).generic_string();
    if (path == ".git" || path == "build" || path == "out" || path == ".cache") {
      entry.disable_recursion_pending();
    } else if (entry->is_regular_file()) {
      files.push_back(path);
    }
  }
  return files;
}

}  // namespace

std::vector<std::string> repositoryFiles(const std::string& root) {
  std::vector<std::string> files = filesKnownToGit(root);
  return files.empty() ? filesThatAreNotBuilt(root) : files;
}

std::vector<std::string> complaintsAboutText(const std::string& text) {
  std::vector<std::string> complaints;
  std::istringstream lines(text);
  int number = 0;
  for (std::string line; std::getline(lines, line);) {
    ++number;
    const std::string lower = lowerCase(line);
    for (const Rule& rule : rules()) {
      if (lower.find(rule.trigger) == std::string::npos || !std::regex_search(line, rule.pattern)) {
        continue;
      }
      complaints.push_back(std::to_string(number) + ": names " + rule.reason);
      break;
    }
  }
  return complaints;
}

}  // namespace structure
