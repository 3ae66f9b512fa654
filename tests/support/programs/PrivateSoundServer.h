#pragma once

#include <memory>
#include <string>
#include <vector>

#include "support/TemporaryFolder.h"
#include "support/programs/ChildProcess.h"

namespace support {

/// A sound server for one test, apart from the user's own: no hardware, two null sinks. What is
/// played into the one named "feed" is what the default source, its monitor, captures; the other
/// one, named "heard", is the default sink, and its monitor captures what a user would hear.
/// Samples pass unchanged: 44100 Hz, stereo, 32-bit float, no volume, no resampling.
///
/// The kind is that which the machine has: PulseAudio, or else PipeWire with its PulseAudio
/// interface. Both are reached through the same socket by the same clients.
///
/// Threads: the one that started it, which must outlive it.
class PrivateSoundServer {
 public:
  enum class Kind { kNone, kPulseAudio, kPipeWire };

  /// The kind of server that start() uses.
  [[nodiscard]] static Kind installedKind();

  /// A server that answers. Null with `error` set (a plain sentence) when none can be had.
  [[nodiscard]] static std::unique_ptr<PrivateSoundServer> start(std::string& error);

  /// Ends the server; what it could not end is killed.
  ~PrivateSoundServer() = default;

  /// What a client needs to reach this server and no other. Stays the same through restart().
  [[nodiscard]] Environment environment() const;

  /// Kills the server without its notice. Nothing listens at its address from then on.
  void kill();
  /// Stops the server without ending it: it holds its connections and answers nothing.
  void freeze();
  void thaw();
  /// Starts it anew at the same address, after kill(). False when it does not answer.
  [[nodiscard]] bool restart();

  /// Answers a client at this moment.
  [[nodiscard]] bool answers() const;

  /// Starts playing a raw file into the feed and returns when the server runs the stream. The
  /// player ends by itself when all was played. Null when it does not come to run.
  [[nodiscard]] std::unique_ptr<ChildProcess> playIntoFeed(const std::string& rawPath) const;

  /// Starts writing what is heard into a raw file and returns when samples arrive there. Recording
  /// goes on until the process is ended. Null when none arrive.
  [[nodiscard]] std::unique_ptr<ChildProcess> captureHeard(const std::string& rawPath) const;

  /// A stream of a client, as the server reports it.
  struct Stream {
    pid_t pid = 0;
    bool corked = false;  ///< made but not running
  };
  [[nodiscard]] std::vector<Stream> playingStreams() const;
  [[nodiscard]] std::vector<Stream> capturingStreams() const;
  /// The process has a running stream there.
  [[nodiscard]] bool isPlaying(pid_t pid) const;
  [[nodiscard]] bool isCapturing(pid_t pid) const;

 private:
  PrivateSoundServer();

  [[nodiscard]] bool launch(std::string& error);
  [[nodiscard]] std::string socketPath() const;
  [[nodiscard]] std::vector<Stream> streams(const std::string& what) const;

  TemporaryFolder folder_;
  Environment serverEnvironment_;
  /// In the order of their start; destroyed and killed in the reverse one.
  std::vector<std::unique_ptr<ChildProcess>> programs_;
};

}  // namespace support
