#include "support/programs/AccessibilityBus.h"

#include <filesystem>
#include <regex>

namespace support {

namespace {

constexpr char kRegistry[] = "org.a11y.atspi.Registry";
constexpr char kRoot[] = "/org/a11y/atspi/accessible/root";
constexpr char kAccessible[] = "org.a11y.atspi.Accessible.";
constexpr char kAction[] = "org.a11y.atspi.Action.";
constexpr int kMax = 12;  // maximum depth of nested elements

/// A quoted text as it is meant: a backslash and an n are a new line.
std::string unquoted(const std::string& text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\' || i + 1 == text.size()) {
      result += text[i];
    } else {
      const char next = text[++i];
      result += next == 'n' ? '\n' : next;
    }
  }
  return result;
}

/// The quoted texts of a reply, in order.
std::vector<std::string> textsIn(const std::string& answer) {
  static const std::regex quoted(R"re('((?:[^'\\]|\\.)*)'|"((?:[^"\\]|\\.)*)")re");
  std::vector<std::string> texts;
  for (std::sregex_iterator at(answer.begin(), answer.end(), quoted), end; at != end; ++at) {
    texts.push_back(unquoted((*at)[1].matched ? (*at)[1].str() : (*at)[2].str()));
  }
  return texts;
}

std::string firstTextIn(const std::string& answer) {
  const auto texts = textsIn(answer);
  return texts.empty() ? std::string() : texts.front();
}

}  // namespace

std::unique_ptr<AccessibilityBus> AccessibilityBus::start(std::string& error) {
  std::unique_ptr<AccessibilityBus> bus(new AccessibilityBus);
  const std::string socket = bus->folder_.file("bus");
  bus->session_ = "unix:path=" + socket;
  bus->daemon_ = ChildProcess::start(
      {"dbus-daemon", "--session", "--nofork", "--nopidfile", "--address=" + bus->session_},
      with(cleanEnvironment(), {{"XDG_RUNTIME_DIR", bus->folder_.makeFolder("run")}}), error);
  if (!bus->daemon_) {
    return nullptr;
  }
  if (!eventually([&] { return std::filesystem::exists(socket); })) {
    error = "the message bus does not start: " + bus->daemon_->errorOutput();
    return nullptr;
  }
  bus->accessibility_ = firstTextIn(
      bus->call(bus->session_, "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus.GetAddress"));
  if (bus->accessibility_.empty()) {
    error = "the accessibility service does not answer";
    return nullptr;
  }
  return bus;
}

Environment AccessibilityBus::environment() const {
  return {{"DBUS_SESSION_BUS_ADDRESS", session_}, {"QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1"}};
}

std::string AccessibilityBus::call(const std::string& address, const std::string& bus,
                                   const std::string& path, const std::string& method,
                                   const std::vector<std::string>& arguments) const {
  std::vector<std::string> words{"gdbus", "call",          "--address", address,    "--dest",
                                 bus,     "--object-path", path,        "--method", method};
  words.insert(words.end(), arguments.begin(), arguments.end());
  const Finished finished = runToEnd(words, cleanEnvironment());
  return finished.status.succeeded() ? finished.output : std::string();
}

std::string AccessibilityBus::ask(const Place& place, const std::string& method,
                                  const std::vector<std::string>& arguments) const {
  return call(accessibility_, place.bus, place.path, method, arguments);
}

std::string AccessibilityBus::property(const Place& place, const std::string& name) const {
  return firstTextIn(
      ask(place, "org.freedesktop.DBus.Properties.Get", {"org.a11y.atspi.Accessible", name}));
}

std::vector<AccessibilityBus::Place> AccessibilityBus::childrenOf(const Place& place) const {
  const auto texts = textsIn(ask(place, std::string(kAccessible) + "GetChildren"));
  std::vector<Place> children;
  for (std::size_t i = 0; i + 1 < texts.size(); i += 2) {
    children.push_back({texts[i], texts[i + 1]});
  }
  return children;
}

AccessibilityBus::Node AccessibilityBus::describe(const Place& place) const {
  Node node{place.bus, place.path, {}, {}, {}, {}};
  node.role = firstTextIn(ask(place, std::string(kAccessible) + "GetRoleName"));
  node.name = property(place, "Name");
  node.description = property(place, "Description");
  const auto actions = textsIn(ask(place, std::string(kAction) + "GetActions"));
  for (std::size_t i = 0; i < actions.size(); i += 3) {  // name, description, keys
    node.actions.push_back(actions[i]);
  }
  return node;
}

void AccessibilityBus::collect(const Place& place, std::vector<Node>& nodes, int depth) const {
  if (depth == 0) {
    return;
  }
  nodes.push_back(describe(place));
  for (const Place& child : childrenOf(place)) {
    collect(child, nodes, depth - 1);
  }
}

std::vector<AccessibilityBus::Place> AccessibilityBus::programsOf(pid_t pid) const {
  auto programs = childrenOf({kRegistry, kRoot});
  std::erase_if(programs, [&](const Place& program) {
    return call(accessibility_, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                "org.freedesktop.DBus.GetConnectionUnixProcessID",
                {program.bus}) != "(uint32 " + std::to_string(pid) + ",)\n";
  });
  return programs;
}

std::vector<AccessibilityBus::Node> AccessibilityBus::nodesOf(pid_t pid) const {
  std::vector<Node> nodes;
  for (const Place& program : programsOf(pid)) {
    collect(program, nodes, kMax);
  }
  return nodes;
}

std::vector<AccessibilityBus::Node> AccessibilityBus::windowsOf(pid_t pid) const {
  std::vector<Node> nodes;
  for (const Place& program : programsOf(pid)) {
    for (const Place& window : childrenOf(program)) {
      nodes.push_back(describe(window));
    }
  }
  return nodes;
}

std::vector<AccessibilityBus::Node> AccessibilityBus::nodesFrom(const Node& node) const {
  std::vector<Node> nodes;
  collect({node.bus, node.path}, nodes, kMax);
  return nodes;
}

bool AccessibilityBus::hasState(const Node& node, int state) const {
  // The reply has two 32-bit words: "([uint32 1090519296, 0],)".
  const std::string answer = ask({node.bus, node.path}, std::string(kAccessible) + "GetState");
  static const std::regex words(R"(\[uint32 (\d+), (\d+)\])");
  std::smatch found;
  if (!std::regex_search(answer, found, words)) {
    return false;
  }
  const unsigned long word = std::stoul(found[state < 32 ? 1 : 2].str());
  return ((word >> (state % 32)) & 1U) != 0;
}

bool AccessibilityBus::act(const Node& node, const std::string& action) const {
  for (std::size_t i = 0; i < node.actions.size(); ++i) {
    if (node.actions[i] == action) {
      return ask({node.bus, node.path}, std::string(kAction) + "DoAction", {std::to_string(i)}) ==
             "(true,)\n";
    }
  }
  return false;
}

}  // namespace support
