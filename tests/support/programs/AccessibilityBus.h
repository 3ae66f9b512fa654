#pragma once

#include <memory>
#include <string>
#include <vector>

#include "support/TemporaryFolder.h"
#include "support/programs/ChildProcess.h"

namespace support {

/// A private message bus with the desktop's accessibility service, as a screen reader sees it.
///
/// Every operation that can fail returns an empty result or false.
///
/// Threads: the one that started it, which must outlive it.
class AccessibilityBus {
 public:
  /// One accessible element of a program.
  struct Node {
    std::string bus;   ///< name of the program on the bus
    std::string path;  ///< of the element within the program
    std::string role;  ///< "push button", …
    std::string name;
    std::string description;
    std::vector<std::string> actions;  ///< names, in the order of their numbers
  };

  /// Starts the bus. Null with `error` set (a plain sentence) on failure.
  [[nodiscard]] static std::unique_ptr<AccessibilityBus> start(std::string& error);

  /// The environment that makes a program appear on this bus.
  [[nodiscard]] Environment environment() const;

  /// All current elements of the program with this process id, from its windows down; empty while
  /// it is not on the bus.
  [[nodiscard]] std::vector<Node> nodesOf(pid_t pid) const;

  /// Its windows only, without what is inside them.
  [[nodiscard]] std::vector<Node> windowsOf(pid_t pid) const;

  /// The current state of an element and of everything inside it.
  [[nodiscard]] std::vector<Node> nodesFrom(const Node& node) const;

  /// Whether an element has the accessibility service's state of this number (4 is checked).
  [[nodiscard]] bool hasState(const Node& node, int state) const;

  /// Performs one of an element's actions, by name.
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
  [[nodiscard]] std::vector<Place> programsOf(pid_t pid) const;
  [[nodiscard]] Node describe(const Place& place) const;
  void collect(const Place& place, std::vector<Node>& nodes, int depth) const;

  TemporaryFolder folder_;
  std::string session_;        ///< address of the private message bus
  std::string accessibility_;  ///< address of the bus that screen readers use
  std::unique_ptr<ChildProcess> daemon_;
};

}  // namespace support
