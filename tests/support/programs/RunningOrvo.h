#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "support/RawAudio.h"
#include "support/TemporaryFolder.h"
#include "support/programs/ChildProcess.h"
#include "support/programs/VirtualScreen.h"

namespace support {

/// The real program on a virtual screen, with its first window in front.
///
/// Recordings are read from each document's temporary file, which has no name but can be reached
/// through the process's open files.
///
/// Threads: the one that started it.
class RunningOrvo {
 public:
  struct Options {
    std::vector<std::string> files;    ///< files to open
    int scale = 1;                     ///< device pixels per point: 1 or 2
    std::vector<std::string> wrapper;  ///< program and arguments to put before the command
    std::string temporaryFolder;  ///< where documents keep their audio; empty for a private one
    std::string dataFolder;       ///< the user's data; empty for a private one
    bool alertFirst = false;      ///< an alert precedes the first document's window
  };

  /// Starts `program` and returns once its first window, or its first alert if one is expected, is
  /// shown and active. `sound` connects it to the sound server. Null with `error` set (a plain
  /// sentence) if the window does not appear.
  [[nodiscard]] static std::unique_ptr<RunningOrvo> start(const std::string& program,
                                                          const VirtualScreen& screen,
                                                          const Environment& sound,
                                                          const Options& options,
                                                          std::string& error);
  /// Kills the program and waits until its keeper has ended as well.
  ~RunningOrvo();
  RunningOrvo(const RunningOrvo&) = delete;
  RunningOrvo& operator=(const RunningOrvo&) = delete;

  [[nodiscard]] ChildProcess& process() { return *process_; }
  [[nodiscard]] pid_t pid() const { return process_->pid(); }
  /// The process of the program's keeper; 0 if there is none.
  [[nodiscard]] pid_t keeperPid() const;
  /// The user's data.
  [[nodiscard]] const std::string& dataFolder() const { return dataFolder_; }
  /// Whether a signal that was sent is no longer pending; also once the program has ended.
  [[nodiscard]] bool hasTaken(int signal) const;
  /// The first document's window; empty until activateWindow() has found it.
  [[nodiscard]] const VirtualScreen::Window& window() const { return window_; }
  /// Waits for the first document's window and gives it the keyboard.
  [[nodiscard]] bool activateWindow(const VirtualScreen& screen);

  /// Paths under which the temporary files of the documents can be opened, oldest document first.
  [[nodiscard]] std::vector<std::string> recordingPaths() const;
  /// Frames in the temporary file of a document; 0 if the document does not exist.
  [[nodiscard]] std::uint64_t recordedFrames(std::size_t document = 0) const;
  /// The whole temporary file of a document: everything ever recorded, in that order.
  [[nodiscard]] Samples recorded(std::size_t document = 0) const;
  /// Waits until a document has recorded so many frames.
  [[nodiscard]] bool waitUntilRecorded(std::uint64_t frames, std::size_t document = 0) const;

  /// Clicks at a position in the window, in points, whatever the scale.
  [[nodiscard]] bool click(const VirtualScreen& screen, int x, int y) const;

 private:
  RunningOrvo() = default;

  TemporaryFolder folder_;
  std::unique_ptr<ChildProcess> process_;
  std::string dataFolder_;
  VirtualScreen::Window window_;
  int scale_ = 1;
};

}  // namespace support
