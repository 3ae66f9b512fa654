#include "support/programs/RunningOrvo.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace support {

namespace {

/// Whether this is a document's temporary file, which the system shows as "…/orvoXXXXXX (deleted)".
bool isRecording(const std::string& target) {
  constexpr std::string_view kPrefix = "orvo";
  constexpr std::string_view kSuffix = " (deleted)";
  constexpr std::size_t kRandomCharacters = 6;
  const std::string name = target.substr(target.rfind('/') + 1);
  return name.size() == kPrefix.size() + kRandomCharacters + kSuffix.size() &&
         name.starts_with(kPrefix) && name.ends_with(kSuffix);
}

constexpr std::chrono::seconds kKeepersPatience{
    10};  // writes what is left of the test's recordings

}  // namespace

std::unique_ptr<RunningOrvo> RunningOrvo::start(const std::string& program,
                                                const VirtualScreen& screen,
                                                const Environment& sound, const Options& options,
                                                std::string& error) {
  std::unique_ptr<RunningOrvo> orvo(new RunningOrvo);
  orvo->scale_ = options.scale;
  const std::string temporaryFolder = options.temporaryFolder.empty()
                                          ? orvo->folder_.makeFolder("temporary")
                                          : options.temporaryFolder;
  orvo->dataFolder_ =
      options.dataFolder.empty() ? orvo->folder_.makeFolder("data") : options.dataFolder;
  Environment environment = with(sound, screen.environment());
  environment["TMPDIR"] = temporaryFolder;
  environment["XDG_DATA_HOME"] = orvo->dataFolder_;
  environment["QT_SCALE_FACTOR"] = std::to_string(options.scale);
  std::vector<std::string> arguments = options.wrapper;
  arguments.push_back(program);
  arguments.insert(arguments.end(), options.files.begin(), options.files.end());
  orvo->process_ = ChildProcess::start(arguments, environment, error);
  if (orvo->process_ == nullptr) {
    return nullptr;
  }
  const bool shown =
      options.alertFirst
          ? eventually([&] { return !screen.windowsOf(orvo->pid(), "Orvo").empty(); })
          : orvo->activateWindow(screen);
  if (!shown) {
    error = "Orvo shows no window: " + orvo->process_->errorOutput();
    return nullptr;
  }
  return orvo;
}

RunningOrvo::~RunningOrvo() {
  const pid_t keeper = process_ != nullptr ? keeperPid() : 0;
  process_.reset();
  if (keeper != 0 && !eventually([&] { return hasEnded(keeper); }, kKeepersPatience)) {
    ::kill(keeper, SIGKILL);
  }
}

pid_t RunningOrvo::keeperPid() const {
  std::error_code gone;
  for (const auto& entry : std::filesystem::directory_iterator("/proc", gone)) {
    const std::string name = entry.path().filename().string();
    if (name.find_first_not_of("0123456789") != std::string::npos) {
      continue;
    }
    // "number (name) state parent …"
    std::ifstream file(entry.path() / "stat");
    std::string text;
    std::getline(file, text);
    const std::string parent = " " + std::to_string(pid()) + " ";
    const std::size_t after = text.find("(orvo-keeper) ");
    if (after == std::string::npos) {
      continue;
    }
    const std::size_t state = after + std::string_view("(orvo-keeper) ").size();
    if (text[state] != 'Z' && text.find(parent, after) == state + 1) {
      return std::stoi(name);
    }
  }
  return 0;
}

bool RunningOrvo::hasTaken(int signal) const {
  std::ifstream file("/proc/" + std::to_string(pid()) + "/status");
  constexpr std::string_view kPending = "ShdPnd:";
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with(kPending)) {
      const auto pending = std::stoull(line.substr(kPending.size()), nullptr, 16);
      return (pending >> (signal - 1) & 1U) == 0;
    }
  }
  return true;
}

bool RunningOrvo::activateWindow(const VirtualScreen& screen) {
  return eventually([&] {
           const auto windows = screen.windowsOf(pid(), "Orvo - ");
           window_ = windows.empty() ? VirtualScreen::Window() : windows.front();
           return !window_.empty() || !process_->isRunning();
         }) &&
         !window_.empty() && screen.activate(window_);
}

std::vector<std::string> RunningOrvo::recordingPaths() const {
  std::vector<int> descriptors;
  std::error_code gone;
  const std::string folder = "/proc/" + std::to_string(pid()) + "/fd/";
  for (const auto& entry : std::filesystem::directory_iterator(folder, gone)) {
    const auto target = std::filesystem::read_symlink(entry.path(), gone);
    if (!gone && isRecording(target.string())) {
      descriptors.push_back(std::stoi(entry.path().filename().string()));
    }
  }
  std::sort(descriptors.begin(), descriptors.end());
  std::vector<std::string> paths;
  paths.reserve(descriptors.size());
  for (const int descriptor : descriptors) {
    paths.push_back(folder + std::to_string(descriptor));
  }
  return paths;
}

std::uint64_t RunningOrvo::recordedFrames(std::size_t document) const {
  const auto paths = recordingPaths();
  std::error_code gone;
  const std::uintmax_t bytes =
      document < paths.size() ? std::filesystem::file_size(paths[document], gone) : 0;
  return gone ? 0 : bytes / (kChannels * sizeof(float));
}

Samples RunningOrvo::recorded(std::size_t document) const {
  const auto paths = recordingPaths();
  return document < paths.size() ? readRaw(paths[document]) : Samples();
}

bool RunningOrvo::waitUntilRecorded(std::uint64_t frames, std::size_t document) const {
  return eventually([&] { return recordedFrames(document) >= frames; });
}

bool RunningOrvo::click(const VirtualScreen& screen, int x, int y) const {
  return screen.click(window_, x * scale_, y * scale_);
}

}  // namespace support
