#pragma once

#include <memory>
#include <string>
#include <vector>

#include "support/TemporaryFolder.h"
#include "support/programs/ChildProcess.h"

namespace support {

/// A private message bus with the desktop's accessibility service, seen as a screen reader sees it.
///
/// Every operation that can fail gives nothing or false.
///
/// Threads: the one that started it, which must outlive it.
class AccessibilityBus {
 public:
  /// One thing that a program shows.
  struct Node {
    std::string bus;   ///< name of the program on the bus
    std::string path;  ///< of the thing within the program
    std::string role;  ///< "push button", …
    std::string name;
    std::string description;
    std::vector<std::string> actions;  ///< names, in the order of their numbers
  };

  /// Starts the bus. Null with `error` set (a plain sentence) when it cannot be had.
  [[nodiscard]] static std::unique_ptr<AccessibilityBus> start(std::string& error);

  /// What a program needs to be seen here.
  [[nodiscard]] Environment environment() const;

  /// Everything that the program with this process id shows now, from its windows down; empty while
  /// it is not on the bus.
  [[nodiscard]] std::vector<Node> nodesOf(pid_t pid) const;

  /// A thing as it is now, and everything inside it.
  [[nodiscard]] std::vector<Node> nodesFrom(const Node& node) const;

  /// Whether a thing is in the state of this number of the accessibility service (4 is checked).
  [[nodiscard]] bool hasState(const Node& node, int state) const;

  /// Does one of a thing's actions, by name.
  [[nodiscard]] bool act(const Node& node, const std::string& action) const;

 private:
  struct Place {
    std::string bus;
    std::string path;
  };

  AccessibilityBus() = default;

  [[nodiscard]] std::string call(const std::string& address, const std::string& bus,
                                 const std::string& path, const std::string& method,
                                 const std::vector<std::string>& arguments = {}) const;
  [[nodiscard]] std::string ask(const Place& place, const std::string& method,
                                const std::vector<std::string>& arguments = {}) const;
  [[nodiscard]] std::string property(const Place& place, const std::string& name) const;
  [[nodiscard]] std::vector<Place> childrenOf(const Place& place) const;
  void collect(const Place& place, std::vector<Node>& nodes, int depth) const;

  TemporaryFolder folder_;
  std::string session_;        ///< address of the private message bus
  std::string accessibility_;  ///< address of the bus that screen readers use
  std::unique_ptr<ChildProcess> daemon_;
};

}  // namespace support
