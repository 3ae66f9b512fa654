#pragma once

#include <memory>
#include <string>
#include <vector>

#include "support/TemporaryFolder.h"
#include "support/programs/ChildProcess.h"

namespace support {

/// A screen that nobody sees, with a window manager, a keyboard and a mouse of its own. Its size
/// is 1920 × 1400 pixels, so that a window at twice the size is not cut off.
///
/// Every operation that can fail gives false or nothing after kPatience.
///
/// Threads: the one that started it, which must outlive it.
class VirtualScreen {
 public:
  /// A window's id as the X server gives it, in decimal.
  using Window = std::string;

  /// A screen that is ready for windows. Null with `error` set (a plain sentence) when it cannot
  /// be had.
  [[nodiscard]] static std::unique_ptr<VirtualScreen> start(std::string& error);
  ~VirtualScreen();

  /// What a program needs to show its windows here, through Qt too.
  [[nodiscard]] Environment environment() const;

  /// Visible windows of a process whose title contains `titlePart`, oldest first.
  [[nodiscard]] std::vector<Window> windowsOf(pid_t pid, const std::string& titlePart = {}) const;
  /// Waits for such a window; empty when none came.
  [[nodiscard]] Window waitForWindow(pid_t pid, const std::string& titlePart = {}) const;
  [[nodiscard]] std::string titleOf(const Window& window) const;
  /// Waits until a window is no longer to be seen.
  [[nodiscard]] bool waitUntilGone(const Window& window) const;
  [[nodiscard]] bool isVisible(const Window& window) const;

  /// Gives a window the keyboard and returns when it has it.
  [[nodiscard]] bool activate(const Window& window) const;

  /// Presses and releases a key of the active window, by the name that xdotool knows: "r",
  /// "space", "ctrl+n".
  [[nodiscard]] bool pressKey(const std::string& key) const;
  [[nodiscard]] bool keyDown(const std::string& key) const;
  [[nodiscard]] bool keyUp(const std::string& key) const;

  /// Types a text into what has the keyboard, letters of any language among them.
  [[nodiscard]] bool type(const std::string& text) const;

  /// Clicks at a point of a window, in pixels from its top left, y downward.
  [[nodiscard]] bool click(const Window& window, int x, int y) const;

  /// Moves the mouse to a point of a window, as click() does, and presses or lets go its button
  /// where it stands.
  [[nodiscard]] bool moveMouse(const Window& window, int x, int y) const;
  [[nodiscard]] bool mouseDown() const;
  [[nodiscard]] bool mouseUp() const;

  /// Where a window's content stands on the screen, in pixels, without its decorations.
  struct Frame {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    friend bool operator==(const Frame&, const Frame&) = default;
  };
  /// All zero for a window that is gone.
  [[nodiscard]] Frame frameOf(const Window& window) const;
  /// Moves a window, and returns once it has arrived and rests there.
  [[nodiscard]] bool move(const Window& window, int x, int y) const;
  [[nodiscard]] bool setMaximised(const Window& window, bool maximised) const;
  /// Puts a window away, and returns once it is no longer to be seen.
  [[nodiscard]] bool minimise(const Window& window) const;

  /// Asks the window manager to close a window, as a click on its cross would.
  [[nodiscard]] bool close(const Window& window) const;

  /// Takes a picture of a window as a PNG file.
  [[nodiscard]] bool screenshot(const Window& window, const std::string& path) const;
  /// The same, once two pictures of the window, one after the other, are alike.
  [[nodiscard]] bool screenshotAtRest(const Window& window, const std::string& path) const;
  /// Whether two pictures show the same.
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
