#pragma once

#include <memory>
#include <string>
#include <vector>

#include "support/TemporaryFolder.h"
#include "support/programs/ChildProcess.h"

namespace support {

/// An invisible screen with its own window manager, keyboard and mouse. It has 1920 × 1400 pixels,
/// so that a window at double size fits.
///
/// Every operation that can fail returns false or nothing after kPatience.
///
/// Threads: the one that started it, which must outlive it.
class VirtualScreen {
 public:
  /// A window's id in the X server, in decimal.
  using Window = std::string;

  /// A screen that is ready for windows. Null with `error` set (a plain sentence) on failure.
  [[nodiscard]] static std::unique_ptr<VirtualScreen> start(std::string& error);
  ~VirtualScreen();

  /// The environment that makes a program, also one of Qt, show its windows here.
  [[nodiscard]] Environment environment() const;

  /// Visible windows of a process whose title contains `titlePart`, oldest first.
  [[nodiscard]] std::vector<Window> windowsOf(pid_t pid, const std::string& titlePart = {}) const;
  /// Waits for such a window; empty if none appears.
  [[nodiscard]] Window waitForWindow(pid_t pid, const std::string& titlePart = {}) const;
  [[nodiscard]] std::string titleOf(const Window& window) const;
  /// Waits until a window is no longer visible.
  [[nodiscard]] bool waitUntilGone(const Window& window) const;
  [[nodiscard]] bool isVisible(const Window& window) const;

  /// Gives a window the keyboard focus and returns once it has it.
  [[nodiscard]] bool activate(const Window& window) const;
  [[nodiscard]] bool hasKeyboard(const Window& window) const;

  /// Presses and releases a key for the active window, by its xdotool name: "r", "space", "ctrl+n".
  [[nodiscard]] bool pressKey(const std::string& key) const;
  [[nodiscard]] bool keyDown(const std::string& key) const;
  [[nodiscard]] bool keyUp(const std::string& key) const;

  /// Types a text, in any language, into the view with the keyboard focus.
  [[nodiscard]] bool type(const std::string& text) const;

  /// Clicks at a position in a window, in pixels from its top left, y downward.
  [[nodiscard]] bool click(const Window& window, int x, int y) const;

  /// Moves the mouse to a position in a window, as click() does, and presses or releases its button
  /// in place.
  [[nodiscard]] bool moveMouse(const Window& window, int x, int y) const;
  [[nodiscard]] bool mouseDown() const;
  [[nodiscard]] bool mouseUp() const;

  /// Position and size of a window's content on the screen, in pixels, without its decorations.
  struct Frame {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    friend bool operator==(const Frame&, const Frame&) = default;
  };
  /// All zero for a window that is gone.
  [[nodiscard]] Frame frameOf(const Window& window) const;
  /// Moves a window and returns once it rests at the new position.
  [[nodiscard]] bool move(const Window& window, int x, int y) const;
  [[nodiscard]] bool setMaximised(const Window& window, bool maximised) const;
  /// Minimises a window and returns once it is no longer visible.
  [[nodiscard]] bool minimise(const Window& window) const;

  /// Asks the window manager to close a window, as a click on its cross would.
  [[nodiscard]] bool close(const Window& window) const;

  /// Saves a picture of a window as a PNG file.
  [[nodiscard]] bool screenshot(const Window& window, const std::string& path) const;
  /// The same, once two successive pictures of the window are identical.
  [[nodiscard]] bool screenshotAtRest(const Window& window, const std::string& path) const;
  /// Cuts a picture off below this many pixels.
  [[nodiscard]] bool keepTop(const std::string& path, int height) const;
  /// Whether two pictures look the same.
  [[nodiscard]] bool looksLike(const std::string& path, const std::string& otherPath) const;

 private:
  VirtualScreen() = default;

  [[nodiscard]] Finished run(const std::vector<std::string>& arguments) const;

  TemporaryFolder folder_;
  std::string display_;
  std::unique_ptr<ChildProcess> server_;
  std::unique_ptr<ChildProcess> windowManager_;
};

}  // namespace support
