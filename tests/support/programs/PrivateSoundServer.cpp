#include "support/programs/PrivateSoundServer.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace support {

namespace {

constexpr char kFeed[] = "feed";
constexpr char kHeard[] = "heard";

struct Program {
  std::vector<std::string> arguments;
  std::string socket;  ///< exists once the next program can be started; empty for at once
};

/// The parts of a kind of server; its files are in the private folder.
struct Setup {
  std::vector<Program> programs;                   ///< started in this order
  std::vector<std::vector<std::string>> commands;  ///< run once the server answers
};

/// Without `norewinds` a null sink delays the first data by seconds and loses its beginning.
Setup setUpPulseAudio(const TemporaryFolder& folder, const std::string& socket) {
  const std::string script = folder.file("server.pa");
  std::ofstream text(script);
  for (const char* sink : {kFeed, kHeard}) {
    text << "load-module module-null-sink sink_name=" << sink
         << " rate=44100 channels=2 format=float32le norewinds=1\n";
  }
  text << "set-default-sink " << kHeard << "\nset-default-source " << kFeed << ".monitor\n"
       << "load-module module-native-protocol-unix auth-anonymous=1 socket=" << socket << "\n";
  return {{{{"pulseaudio", "-n", "--daemonize=no", "--use-pid-file=no", "--exit-idle-time=-1",
             "--disallow-exit", "--high-priority=no", "--realtime=no", "--disable-shm=yes",
             "--log-target=stderr", "-F", script},
            socket}},
          {}};
}

/// Enables only the session manager's linking of streams to sinks: its hardware modules would end
/// it without a message bus.
void configureSessionManager(const TemporaryFolder& folder) {
  const std::string configuration = folder.makeFolder("home/.config/wireplumber");
  folder.makeFolder("home/.config/wireplumber/main.lua.d");
  folder.makeFolder("home/.config/wireplumber/bluetooth.lua.d");
  std::ofstream(configuration + "/main.lua.d/90-enable-all.lua")
      << "load_module(\"metadata\")\n"
         "default_access.properties[\"enable-flatpak-portal\"] = false\n"
         "default_access.enable()\n"
         "device_defaults.enable()\n";
  std::ofstream(configuration + "/bluetooth.lua.d/90-enable-all.lua") << "-- nothing\n";
}

/// A command that fails until the default has the requested value.
std::string setDefault(const std::string& what, const std::string& name) {
  return "pactl set-default-" + what + " " + name + " && [ \"$(pactl get-default-" + what +
         ")\" = " + name + " ]";
}

Setup setUpPipeWire(const TemporaryFolder& folder, const std::string& socket) {
  const std::string configuration = folder.makeFolder("home/.config/pipewire/pipewire.conf.d");
  std::ofstream text(configuration + "/sinks.conf");
  text << "context.properties = { default.clock.rate = 44100\n"
          "  default.clock.allowed-rates = [ 44100 ] }\ncontext.objects = [\n";
  for (const char* sink : {kFeed, kHeard}) {
    text << "  { factory = adapter args = { factory.name = support.null-audio-sink\n"
         << "    node.name = " << sink << " media.class = Audio/Sink object.linger = true\n"
         << "    audio.rate = 44100 audio.position = [ FL FR ] } }\n";
  }
  text << "]\n";
  configureSessionManager(folder);
  return {{{{"pipewire"}, folder.file("run/pipewire-0")},
           {{"wireplumber"}, {}},
           {{"pipewire-pulse"}, socket}},
          {{"sh", "-c", setDefault("sink", kHeard)},
           {"sh", "-c", setDefault("source", std::string(kFeed) + ".monitor")}}};
}

std::vector<std::string> rawFormat() {
  return {"--raw", "--format=float32le", "--rate=44100", "--channels=2", "--latency-msec=100"};
}

/// Value of a line `key: value` or `key = "value"`; empty for any other line.
std::string valueOf(const std::string& line, const std::string& key) {
  const std::size_t begin = line.find_first_not_of(" \t");
  if (begin == std::string::npos || line.compare(begin, key.size(), key) != 0) {
    return {};
  }
  std::string value = line.substr(begin + key.size());
  std::erase(value, '"');
  return value;
}

}  // namespace

PrivateSoundServer::Kind PrivateSoundServer::installedKind() {
  if (!findProgram("pulseaudio").empty()) {
    return Kind::kPulseAudio;
  }
  return findProgram("pipewire-pulse").empty() ? Kind::kNone : Kind::kPipeWire;
}

PrivateSoundServer::PrivateSoundServer() {
  folder_.makeFolder("run/pulse");
  folder_.makeFolder("home/.config");
  serverEnvironment_ =
      with(cleanEnvironment(), {{"HOME", folder_.file("home")},
                                {"XDG_CONFIG_HOME", folder_.file("home/.config")},
                                {"XDG_RUNTIME_DIR", folder_.file("run")},
                                {"PULSE_RUNTIME_PATH", folder_.file("run/pulse")},
                                {"DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent"}});
}

std::unique_ptr<PrivateSoundServer> PrivateSoundServer::start(std::string& error) {
  std::unique_ptr<PrivateSoundServer> server(new PrivateSoundServer);
  return server->launch(error) ? std::move(server) : nullptr;
}

bool PrivateSoundServer::launch(std::string& error) {
  Setup setup;
  switch (installedKind()) {
    case Kind::kPulseAudio:
      setup = setUpPulseAudio(folder_, socketPath());
      break;
    case Kind::kPipeWire:
      setup = setUpPipeWire(folder_, socketPath());
      break;
    case Kind::kNone:
      error = "no sound server is installed";
      return false;
  }
  for (const Program& program : setup.programs) {
    std::error_code ignored;
    std::filesystem::remove(program.socket, ignored);
    programs_.push_back(ChildProcess::start(program.arguments, serverEnvironment_, error));
    if (programs_.back() == nullptr) {
      kill();
      return false;
    }
    static_cast<void>(eventually([&] {
      return program.socket.empty() || std::filesystem::exists(program.socket) ||
             !programs_.back()->isRunning();
    }));
  }
  const bool ready =
      eventually([this] { return answers() || !programs_.back()->isRunning(); }) && answers() &&
      std::all_of(setup.commands.begin(), setup.commands.end(), [this](auto& words) {
        return eventually([&] { return runToEnd(words, environment()).status.succeeded(); });
      });
  if (!ready) {
    error = "the sound server does not answer:";
    for (const auto& program : programs_) {
      error += "\n" + program->errorOutput();
    }
    kill();
  }
  return ready;
}

std::string PrivateSoundServer::socketPath() const {
  return folder_.file("run/pulse/native");
}

Environment PrivateSoundServer::environment() const {
  return with(serverEnvironment_, {{"PULSE_SERVER", "unix:" + socketPath()},
                                   {"PULSE_COOKIE", folder_.file("home/cookie")}});
}

void PrivateSoundServer::kill() {
  while (!programs_.empty()) {
    programs_.pop_back();
  }
}

void PrivateSoundServer::freeze() {
  for (const auto& program : programs_) {
    program->freeze();
  }
}

void PrivateSoundServer::thaw() {
  for (const auto& program : programs_) {
    program->thaw();
  }
}

bool PrivateSoundServer::restart() {
  kill();
  std::string error;
  return launch(error);
}

bool PrivateSoundServer::answers() const {
  return std::filesystem::exists(socketPath()) &&
         runToEnd({"pactl", "info"}, environment(), std::chrono::seconds(2)).status.succeeded();
}

std::unique_ptr<ChildProcess> PrivateSoundServer::playIntoFeed(const std::string& rawPath) const {
  return play(kFeed, rawPath);
}

std::unique_ptr<ChildProcess> PrivateSoundServer::playAloud(const std::string& rawPath) const {
  return play(kHeard, rawPath);
}

std::unique_ptr<ChildProcess> PrivateSoundServer::play(const std::string& sink,
                                                       const std::string& rawPath) const {
  std::vector<std::string> arguments{"paplay", "--device=" + sink};
  const std::vector<std::string> format = rawFormat();
  arguments.insert(arguments.end(), format.begin(), format.end());
  arguments.push_back(rawPath);
  std::string error;
  auto player = ChildProcess::start(arguments, environment(), error);
  if (player == nullptr ||
      !eventually([&] { return isPlaying(player->pid()) || !player->isRunning(); })) {
    return nullptr;
  }
  return player;
}

std::unique_ptr<ChildProcess> PrivateSoundServer::captureHeard(const std::string& rawPath) const {
  return capture(kHeardMonitor, rawPath);
}

std::unique_ptr<ChildProcess> PrivateSoundServer::capture(const std::string& source,
                                                          const std::string& rawPath) const {
  std::vector<std::string> arguments{"parec", "--device=" + source};
  const std::vector<std::string> format = rawFormat();
  arguments.insert(arguments.end(), format.begin(), format.end());
  std::string error;
  auto recorder = ChildProcess::start(arguments, environment(), error, rawPath);
  const auto arrives = [&] {
    std::error_code none;
    return std::filesystem::file_size(rawPath, none) > 0 && !none;
  };
  if (recorder == nullptr || !eventually(arrives)) {
    return nullptr;
  }
  return recorder;
}

std::optional<std::string> PrivateSoundServer::plugMicrophone(
    const std::string& name, const std::string& description) const {
  return plugSource("module-remap-source", name,
                    {std::string("master=") + kFeedMonitor,
                     "source_properties=\"device.description='" + description + "'\""});
}

std::optional<std::string> PrivateSoundServer::plugSource(
    const std::string& module, const std::string& name,
    const std::vector<std::string>& arguments) const {
  // Where a server has no module for silent sources, a sink's module makes one.
  const char* const nameKey = module == "module-null-sink" ? "sink_name=" : "source_name=";
  std::vector<std::string> words{"pactl", "load-module", module, nameKey + name};
  words.insert(words.end(), arguments.begin(), arguments.end());
  const Finished loaded = runToEnd(words, environment());
  std::string index = loaded.output.substr(0, loaded.output.find_last_not_of(" \n") + 1);
  if (!loaded.status.succeeded() || index.empty() ||
      !eventually([&] { return setDefaultSource(name); })) {
    return std::nullopt;
  }
  return index;
}

bool PrivateSoundServer::unplugMicrophone(const std::string& plug) const {
  return runToEnd({"pactl", "unload-module", plug}, environment()).status.succeeded();
}

bool PrivateSoundServer::setDefaultSource(const std::string& name) const {
  return runToEnd({"sh", "-c", setDefault("source", name)}, environment()).status.succeeded();
}

std::vector<PrivateSoundServer::Stream> PrivateSoundServer::streams(const std::string& what) const {
  const Finished list = runToEnd({"pactl", "list", what}, environment());
  std::vector<Stream> found;
  bool corked = false;
  std::istringstream lines(list.output);
  for (std::string line; std::getline(lines, line);) {
    if (const std::string value = valueOf(line, "Corked: "); !value.empty()) {
      corked = value == "yes";
    }
    if (const std::string value = valueOf(line, "application.process.id = "); !value.empty()) {
      Stream stream{0, corked};
      std::from_chars(value.data(), value.data() + value.size(), stream.pid);
      found.push_back(stream);
    }
  }
  return found;
}

std::vector<PrivateSoundServer::Stream> PrivateSoundServer::playingStreams() const {
  return streams("sink-inputs");
}

std::vector<PrivateSoundServer::Stream> PrivateSoundServer::capturingStreams() const {
  return streams("source-outputs");
}

bool PrivateSoundServer::isPlaying(pid_t pid) const {
  const auto all = playingStreams();
  return std::any_of(all.begin(), all.end(),
                     [pid](const Stream& stream) { return stream.pid == pid && !stream.corked; });
}

bool PrivateSoundServer::isCapturing(pid_t pid) const {
  const auto all = capturingStreams();
  return std::any_of(all.begin(), all.end(),
                     [pid](const Stream& stream) { return stream.pid == pid && !stream.corked; });
}

}  // namespace support
