#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "support/TemporaryFolder.h"
#include "support/programs/ChildProcess.h"

namespace support {

/// A sound server for one test, separate from the user's: no hardware, two null sinks. The monitor
/// of the one named "feed" is the default source, so it captures what is played into it. The other
/// one, named "heard", is the default sink; its monitor captures what a user would hear. Samples
/// pass unchanged: 44100 Hz, stereo, 32-bit float, no volume, no resampling.
///
/// The machine decides the kind: PulseAudio, otherwise PipeWire with its PulseAudio interface. The
/// same clients reach both through the same socket.
///
/// Threads: the one that started it, which must outlive it.
class PrivateSoundServer {
 public:
  enum class Kind { kNone, kPulseAudio, kPipeWire };

  /// The kind of server that start() uses.
  [[nodiscard]] static Kind installedKind();

  /// Returns once the server answers. Null with `error` set (a plain sentence) on failure.
  [[nodiscard]] static std::unique_ptr<PrivateSoundServer> start(std::string& error);

  /// Ends the server; kills what does not end.
  ~PrivateSoundServer() = default;

  /// The environment that connects a client to this server and no other. Unchanged by restart().
  [[nodiscard]] Environment environment() const;

  /// Kills the server at once. Nothing listens at its address after that.
  void kill();
  /// Suspends the server: it keeps its connections and does not answer.
  void freeze();
  void thaw();
  /// Starts it again at the same address, after kill(). False if it does not answer.
  [[nodiscard]] bool restart();

  /// Whether it answers a client now.
  [[nodiscard]] bool answers() const;

  /// Starts playing a raw file into the feed and returns once the server runs the stream. The
  /// player ends after the last frame. Null if the stream does not start.
  [[nodiscard]] std::unique_ptr<ChildProcess> playIntoFeed(const std::string& rawPath) const;
  /// The same for what is heard, as another program beside the tested one would.
  [[nodiscard]] std::unique_ptr<ChildProcess> playAloud(const std::string& rawPath) const;

  /// Starts writing what is heard into a raw file and returns once samples arrive there. Recording
  /// continues until the process is ended. Null if none arrive.
  [[nodiscard]] std::unique_ptr<ChildProcess> captureHeard(const std::string& rawPath) const;

  /// The same from the source of this name, as another program beside the tested one would.
  [[nodiscard]] std::unique_ptr<ChildProcess> capture(const std::string& source,
                                                      const std::string& rawPath) const;

  /// Adds a source that captures what is played into the feed and is no monitor, as a microphone is
  /// none, and makes it the default. Nothing on failure.
  [[nodiscard]] std::optional<std::string> plugMicrophone(const std::string& name,
                                                          const std::string& description) const;
  /// Adds a source by a module of the server and makes it the default. `arguments` are the
  /// module's, without the source's name. Nothing on failure.
  [[nodiscard]] std::optional<std::string> plugSource(
      const std::string& module, const std::string& name,
      const std::vector<std::string>& arguments) const;
  /// Removes it again; takes what plugMicrophone() or plugSource() returned. False on failure.
  [[nodiscard]] bool unplugMicrophone(const std::string& plug) const;
  [[nodiscard]] bool setDefaultSource(const std::string& name) const;
  /// Names of the monitors of the feed and of what is heard.
  static constexpr const char* kFeedMonitor = "feed.monitor";
  static constexpr const char* kHeardMonitor = "heard.monitor";

  /// A client's stream, as the server reports it.
  struct Stream {
    pid_t pid = 0;
    bool corked = false;  ///< created but not running
  };
  [[nodiscard]] std::vector<Stream> playingStreams() const;
  [[nodiscard]] std::vector<Stream> capturingStreams() const;
  /// Whether the process has a running playback stream.
  [[nodiscard]] bool isPlaying(pid_t pid) const;
  [[nodiscard]] bool isCapturing(pid_t pid) const;

 private:
  PrivateSoundServer();

  [[nodiscard]] bool launch(std::string& error);
  [[nodiscard]] std::string socketPath() const;
  [[nodiscard]] std::unique_ptr<ChildProcess> play(const std::string& sink,
                                                   const std::string& rawPath) const;
  [[nodiscard]] std::vector<Stream> streams(const std::string& what) const;

  TemporaryFolder folder_;
  Environment serverEnvironment_;
  /// In the order of their start; kill() ends them in reverse order.
  std::vector<std::unique_ptr<ChildProcess>> programs_;
};

}  // namespace support
