#include "support/programs/VirtualScreen.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <utility>

namespace support {

std::unique_ptr<VirtualScreen> VirtualScreen::start(std::string& error) {
  std::unique_ptr<VirtualScreen> screen(new VirtualScreen);
  screen->folder_.makeFolder("home/.config");
  screen->folder_.makeFolder("run");
  // The server chooses a free display and writes its number to the given descriptor.
  screen->server_ = ChildProcess::start(
      {"Xvfb", "-displayfd", "1", "-screen", "0", "1920x1400x24", "-nolisten", "tcp", "-noreset"},
      cleanEnvironment(), error);
  if (screen->server_ == nullptr) {
    return nullptr;
  }
  ChildProcess& server = *screen->server_;
  const bool hasNumber = eventually(
      [&] { return server.output().find('\n') != std::string::npos || !server.isRunning(); });
  const std::string number = server.output();
  if (!hasNumber || number.empty()) {
    error = "the virtual screen does not start: " + server.errorOutput();
    return nullptr;
  }
  screen->display_ = ":" + number.substr(0, number.find('\n'));
  screen->windowManager_ =
      ChildProcess::start({"openbox", "--sm-disable"}, screen->environment(), error);
  if (screen->windowManager_ == nullptr) {
    return nullptr;
  }
  // It announces itself before it manages windows, and a window shown in between is never managed.
  // Only an answered request proves that it is ready.
  const auto serves = [&] {
    return screen->run({"xdotool", "set_num_desktops", "1"}).status.succeeded() &&
           screen->run({"xdotool", "get_num_desktops"}).output == "1\n";
  };
  if (!eventually(serves)) {
    error = "the window manager does not start: " + screen->windowManager_->errorOutput();
    return nullptr;
  }
  return screen;
}

VirtualScreen::~VirtualScreen() {
  // Asked to end rather than killed, the server removes its lock file and socket.
  if (windowManager_ != nullptr) {
    windowManager_->end();
  }
  if (server_ != nullptr) {
    server_->end();
  }
}

Environment VirtualScreen::environment() const {
  return with(cleanEnvironment(), {{"DISPLAY", display_},
                                   {"QT_QPA_PLATFORM", "xcb"},
                                   {"HOME", folder_.file("home")},
                                   {"XDG_CONFIG_HOME", folder_.file("home/.config")},
                                   {"XDG_RUNTIME_DIR", folder_.file("run")},
                                   {"DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent"}});
}

Finished VirtualScreen::run(const std::vector<std::string>& arguments) const {
  return runToEnd(arguments, environment());
}

std::vector<VirtualScreen::Window> VirtualScreen::windowsOf(pid_t pid,
                                                            const std::string& titlePart) const {
  const Finished found = run({"xdotool", "search", "--onlyvisible", "--pid", std::to_string(pid)});
  std::vector<Window> windows;
  std::istringstream lines(found.output);
  for (std::string window; std::getline(lines, window);) {
    if (titlePart.empty() || titleOf(window).find(titlePart) != std::string::npos) {
      windows.push_back(window);
    }
  }
  // The ids of a client only grow.
  std::sort(windows.begin(), windows.end(),
            [](const Window& a, const Window& b) { return std::stoul(a) < std::stoul(b); });
  return windows;
}

VirtualScreen::Window VirtualScreen::waitForWindow(pid_t pid, const std::string& titlePart) const {
  std::vector<Window> windows;
  const bool found = eventually([&] {
    windows = windowsOf(pid, titlePart);
    return !windows.empty();
  });
  return found ? windows.back() : Window();
}

std::string VirtualScreen::titleOf(const Window& window) const {
  std::string title = run({"xdotool", "getwindowname", window}).output;
  std::erase(title, '\n');
  return title;
}

bool VirtualScreen::isVisible(const Window& window) const {
  const Finished information = run({"xwininfo", "-id", window});
  return information.status.succeeded() &&
         information.output.find("IsViewable") != std::string::npos;
}

bool VirtualScreen::waitUntilGone(const Window& window) const {
  return eventually([&] { return !isVisible(window); });
}

bool VirtualScreen::activate(const Window& window) const {
  // A window shown at the same moment can take the focus away again.
  constexpr std::chrono::milliseconds kAgain{500};
  return eventually([&] {
    return run({"xdotool", "windowactivate", window}).status.succeeded() &&
           eventually([&] { return hasKeyboard(window); }, kAgain);
  });
}

bool VirtualScreen::hasKeyboard(const Window& window) const {
  return run({"xdotool", "getwindowfocus"}).output == window + "\n";
}

bool VirtualScreen::pressKey(const std::string& key) const {
  return run({"xdotool", "key", key}).status.succeeded();
}

bool VirtualScreen::keyDown(const std::string& key) const {
  return run({"xdotool", "keydown", key}).status.succeeded();
}

bool VirtualScreen::keyUp(const std::string& key) const {
  return run({"xdotool", "keyup", key}).status.succeeded();
}

bool VirtualScreen::type(const std::string& text) const {
  return run({"xdotool", "type", "--delay", "4", "--", text}).status.succeeded();
}

bool VirtualScreen::click(const Window& window, int x, int y) const {
  return run({"xdotool", "mousemove", "--window", window, std::to_string(x), std::to_string(y),
              "click", "1"})
      .status.succeeded();
}

bool VirtualScreen::moveMouse(const Window& window, int x, int y) const {
  return run({"xdotool", "mousemove", "--window", window, std::to_string(x), std::to_string(y)})
      .status.succeeded();
}

bool VirtualScreen::mouseDown() const {
  return run({"xdotool", "mousedown", "1"}).status.succeeded();
}

bool VirtualScreen::mouseUp() const {
  return run({"xdotool", "mouseup", "1"}).status.succeeded();
}

VirtualScreen::Frame VirtualScreen::frameOf(const Window& window) const {
  const std::string information = run({"xwininfo", "-id", window}).output;
  const auto number = [&information](const std::string& label) {
    const auto at = information.find(label);
    return at == std::string::npos ? 0 : std::atoi(information.c_str() + at + label.size());
  };
  return {number("Absolute upper-left X:"), number("Absolute upper-left Y:"), number("Width:"),
          number("Height:")};
}

bool VirtualScreen::move(const Window& window, int x, int y) const {
  const Frame before = frameOf(window);
  if (!run({"xdotool", "windowmove", window, std::to_string(x), std::to_string(y)})
           .status.succeeded()) {
    return false;
  }
  Frame last = before;
  return eventually([&] {
    const Frame now = frameOf(window);
    const bool rests = now == std::exchange(last, now);
    return rests && (now.x != before.x || now.y != before.y);
  });
}

bool VirtualScreen::setMaximised(const Window& window, bool maximised) const {
  return run({"wmctrl", "-i", "-r", window, "-b",
              std::string(maximised ? "add" : "remove") + ",maximized_vert,maximized_horz"})
      .status.succeeded();
}

bool VirtualScreen::minimise(const Window& window) const {
  return run({"xdotool", "windowminimize", window}).status.succeeded() && waitUntilGone(window);
}

bool VirtualScreen::close(const Window& window) const {
  return run({"wmctrl", "-i", "-c", window}).status.succeeded();
}

bool VirtualScreen::screenshot(const Window& window, const std::string& path) const {
  return run({"import", "-window", window, path}).status.succeeded();
}

bool VirtualScreen::screenshotAtRest(const Window& window, const std::string& path) const {
  const std::string before = folder_.file("before.png");
  return screenshot(window, before) && eventually([&] {
           if (!screenshot(window, path)) {
             return false;
           }
           const bool rests = looksLike(before, path);
           std::filesystem::copy_file(path, before,
                                      std::filesystem::copy_options::overwrite_existing);
           return rests;
         });
}

bool VirtualScreen::keepTop(const std::string& path, int height) const {
  return run({"mogrify", "-crop", "x" + std::to_string(height) + "+0+0", "+repage", path})
      .status.succeeded();
}

bool VirtualScreen::looksLike(const std::string& path, const std::string& otherPath) const {
  const Finished difference = run({"compare", "-metric", "AE", path, otherPath, "null:"});
  return difference.status.succeeded() && difference.error == "0";
}

}  // namespace support
