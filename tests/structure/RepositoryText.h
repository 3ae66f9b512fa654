#pragma once

#include <string>
#include <vector>

/// What no file of the repository may hold.
///
/// Threads: any.
namespace structure {

/// Paths of the files that belong to the repository, below `root`: those that git knows or would
/// take, or, in a copy without git, all but what is built.
[[nodiscard]] std::vector<std::string> repositoryFiles(const std::string& root);

/// Lines of a text that name a folder of someone's machine or a host from which packages come. One
/// complaint a line, with its number.
[[nodiscard]] std::vector<std::string> complaintsAboutText(const std::string& text);

}  // namespace structure
