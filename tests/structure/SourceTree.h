#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

/// A tree of source files and what is asked of it.
///
/// Threads: any.
namespace structure {

/// Path below the tree's root, with '/', and the file's whole text.
using SourceTree = std::map<std::string, std::string>;

/// One line of the answer to "what is wrong": file and reason. Empty means: nothing.
using Complaints = std::vector<std::string>;

/// Reads every .h and .cpp below a folder.
[[nodiscard]] SourceTree readSources(const std::string& folder);

/// Reads a list of absolute paths, one a line, as paths below `folder`.
[[nodiscard]] std::set<std::string> readFileList(const std::string& listPath,
                                                 const std::string& folder);

struct Include {
  std::string name;  ///< as written between the quotes or angle brackets
  bool own = false;  ///< written with quotes
};
[[nodiscard]] std::vector<Include> includesOf(const std::string& text);

/// Includes that go against the arrows between the rooms, name no file of the tree, or come from a
/// folder that is no room. Rooms side by side do not include each other.
[[nodiscard]] Complaints complaintsAboutArrows(const SourceTree& tree);

/// Includes of FFmpeg's or cubeb's headers outside the room whose module links the library.
[[nodiscard]] Complaints complaintsAboutLateLibraries(const SourceTree& tree);

/// Chains of includes that lead back to the unit where they began. A unit is a header with its
/// source.
[[nodiscard]] Complaints complaintsAboutCircles(const SourceTree& tree);

/// Files among `pure` that include more than the standard library, POSIX and one another.
[[nodiscard]] Complaints complaintsAboutPureFiles(const SourceTree& tree,
                                                  const std::set<std::string>& pure);

/// Headers of POSIX outside the rooms that adapt the program to its operating system.
[[nodiscard]] Complaints complaintsAboutPosix(const SourceTree& tree);

/// Sources that do not include the header of their name, or, where there is none because a header
/// is served by several sources, no header of their folder. main.cpp has none.
[[nodiscard]] Complaints complaintsAboutMissingHeaders(const SourceTree& tree);

/// Headers whose first line is not "#pragma once".
[[nodiscard]] Complaints complaintsAboutGuards(const SourceTree& tree);

}  // namespace structure
