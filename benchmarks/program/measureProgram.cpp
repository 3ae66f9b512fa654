// Measures the running program on a virtual screen with a private sound server: the time from its
// launch to its first window, its processor time when idle, recording and playing, and how often
// its main thread and its keeper wake up. docs/performance.md lists the budgets.
//
//   orvo_measure_program ORVO EMPTY-WINDOW [SECONDS]
//       SECONDS: how long each state is watched; 10 by default.

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <unistd.h>

#include "support/programs/PrivateSoundServer.h"
#include "support/programs/RunningOrvo.h"
#include "support/programs/VirtualScreen.h"

namespace {

using namespace support;
using Clock = std::chrono::steady_clock;

void need(bool holds, const std::string& otherwise) {
  if (!holds) {
    throw std::runtime_error(otherwise);
  }
}

double secondsSince(Clock::time_point begin) {
  return std::chrono::duration<double>(Clock::now() - begin).count();
}

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

/// The system's counters of a process so far.
struct Counters {
  double processorSeconds = 0;        ///< all threads, user and system
  std::uint64_t mainThreadWakes = 0;  ///< voluntary context switches of the main thread
  std::uint64_t ownKilobytes = 0;     ///< memory that is neither of a file nor shared
};

Counters countersOf(pid_t pid) {
  Counters counters;
  const std::string process = "/proc/" + std::to_string(pid);
  std::ifstream stat(process + "/stat");
  std::string line;
  std::getline(stat, line);
  need(line.rfind(") ") != std::string::npos, "the program has ended");
  std::istringstream fields(line.substr(line.rfind(") ") + 2));
  // Counted from the state, the first field after the name: user time is the 12th.
  std::string skipped;
  for (int i = 0; i < 11; ++i) {
    fields >> skipped;
  }
  std::uint64_t user = 0;
  std::uint64_t system = 0;
  fields >> user >> system;
  counters.processorSeconds =
      static_cast<double>(user + system) / static_cast<double>(::sysconf(_SC_CLK_TCK));
  std::ifstream status(process + "/task/" + std::to_string(pid) + "/status");
  constexpr std::string_view kKey = "voluntary_ctxt_switches:";
  constexpr std::string_view kOwn = "RssAnon:";
  while (std::getline(status, line)) {
    if (line.starts_with(kKey)) {
      std::istringstream(line.substr(kKey.size())) >> counters.mainThreadWakes;
    } else if (line.starts_with(kOwn)) {
      std::istringstream(line.substr(kOwn.size())) >> counters.ownKilobytes;
    }
  }
  return counters;
}

/// Prints one line of the table.
void tell(const std::string& what, double value, const char* unit, const std::string& beside) {
  std::printf("| %-44s | %9.2f %-6s | %-16s |\n", what.c_str(), value, unit, beside.c_str());
  std::fflush(stdout);
}

class Measurement {
 public:
  Measurement(std::string orvo, std::string emptyWindow, double seconds)
      : orvo_(std::move(orvo)), emptyWindow_(std::move(emptyWindow)), seconds_(seconds) {
    std::string error;
    screen_ = VirtualScreen::start(error);
    need(screen_ != nullptr, error);
    server_ = PrivateSoundServer::start(error);
    need(server_ != nullptr, error);
    environment_ = with(server_->environment(), screen_->environment());
  }

  void run() {
    std::printf("| %-44s | %16s | %-16s |\n|---|---:|---|\n", "what", "measured", "budget");
    measureStart();
    measureIdle();
    measureRecording();
  }

 private:
  /// A client of the screen that prints a line as soon as a window is shown.
  [[nodiscard]] std::unique_ptr<ChildProcess> watchWindows() const {
    std::string error;
    auto watcher = ChildProcess::start({"stdbuf", "-oL", "xev", "-root", "-event", "substructure"},
                                       environment_, error);
    need(watcher != nullptr, error);
    // It is ready once it has noticed a window; a window shown too early goes unnoticed.
    need(eventually([&] {
           const auto window = ChildProcess::start({emptyWindow_}, environment_, error);
           return window != nullptr && !screen_->waitForWindow(window->pid(), "Empty").empty() &&
                  eventually([&] { return shownWindows(*watcher) > 0; }, std::chrono::seconds(1));
         }),
         "no window is noticed: " + error);
    return watcher;
  }

  static std::size_t shownWindows(const ChildProcess& watcher) {
    const std::string events = watcher.output();
    std::size_t count = 0;
    for (std::size_t at = events.find("MapNotify"); at != std::string::npos;
         at = events.find("MapNotify", at + 1)) {
      ++count;
    }
    return count;
  }

  [[nodiscard]] double secondsToFirstWindow(const std::string& program,
                                            const ChildProcess& watcher) const {
    const std::size_t before = shownWindows(watcher);
    std::string error;
    const auto begin = Clock::now();
    const auto process = ChildProcess::start({program}, environment_, error);
    need(process != nullptr, error);
    need(eventually([&] { return shownWindows(watcher) > before || !process->isRunning(); }) &&
             process->isRunning(),
         program + " shows no window: " + process->errorOutput());
    const double seconds = secondsSince(begin);
    process->end();
    return seconds;
  }

  void measureStart() {
    constexpr int kRuns = 15;
    const auto watcher = watchWindows();
    std::vector<double> orvo;
    std::vector<double> empty;
    static_cast<void>(secondsToFirstWindow(emptyWindow_, *watcher));  // fills the caches
    static_cast<void>(secondsToFirstWindow(orvo_, *watcher));
    for (int i = 0; i < kRuns; ++i) {
      empty.push_back(secondsToFirstWindow(emptyWindow_, *watcher));
      orvo.push_back(secondsToFirstWindow(orvo_, *watcher));
    }
    const double ratio = median(orvo) / median(empty);
    tell("launch to first window, empty window", median(empty) * 1e3, "ms", "yardstick");
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%.2f x the empty window, at most 1.25", ratio);
    tell("launch to first window, Orvo", median(orvo) * 1e3, "ms", text.data());
  }

  [[nodiscard]] std::unique_ptr<RunningOrvo> start() const {
    std::string error;
    auto orvo = RunningOrvo::start(orvo_, *screen_, server_->environment(), {}, error);
    need(orvo != nullptr, error);
    return orvo;
  }

  enum class KeeperIs { watched, ignored };

  /// Without a keeper that can be started, which shows what it costs, the program itself.
  static pid_t keeperOf(const RunningOrvo& orvo) {
    return eventually([&] { return orvo.keeperPid() != 0; }) ? orvo.keeperPid() : orvo.pid();
  }

  /// The only place that waits for time to pass: the measuring interval.
  void watch(const std::string& what, const RunningOrvo& orvo, const std::string& processorBudget,
             const std::string& wakesBudget, KeeperIs keeperIs = KeeperIs::ignored) const {
    const pid_t keeper = keeperIs == KeeperIs::watched ? keeperOf(orvo) : orvo.pid();
    const Counters before = countersOf(orvo.pid());
    const Counters keeperBefore = countersOf(keeper);
    const auto begin = Clock::now();
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds_));
    const Counters after = countersOf(orvo.pid());
    const double seconds = secondsSince(begin);
    tell("processor time " + what,
         (after.processorSeconds - before.processorSeconds) / seconds * 100, "% core",
         processorBudget);
    tell("wake-ups of the main thread " + what,
         static_cast<double>(after.mainThreadWakes - before.mainThreadWakes) / seconds, "/ s",
         wakesBudget);
    if (keeper != orvo.pid()) {
      const Counters keeperAfter = countersOf(keeper);
      tell("wake-ups of its keeper " + what,
           static_cast<double>(keeperAfter.mainThreadWakes - keeperBefore.mainThreadWakes),
           "in all", "0");
      tell("memory of its keeper " + what, static_cast<double>(keeperAfter.ownKilobytes), "KiB",
           "at most 1024");
    }
  }

  void measureIdle() const {
    const auto orvo = start();
    const std::string picture = scratch_.file("rest.png");
    need(screen_->screenshotAtRest(orvo->window(), picture), "the window does not come to rest");
    watch("idle", *orvo, "at most 0.5", "at most 60", KeeperIs::watched);
  }

  void showSpectrum(const RunningOrvo& orvo) const {
    const auto geometry = [&] {
      return runToEnd({"xdotool", "getwindowgeometry", "--shell", orvo.window()}, environment_)
          .output;
    };
    const std::string small = geometry();
    need(orvo.click(*screen_, 612, 320), "the spectrum's button cannot be pressed");
    need(eventually([&] { return geometry() != small; }), "the spectrum is not shown");
  }

  /// Recording, then playing the recording.
  void measureRecording() const {
    const auto orvo = start();
    showSpectrum(*orvo);
    need(writeRaw(scratch_.file("tune"), tune(2 * seconds_ + 10)), "the tune cannot be written");
    const auto player = server_->playIntoFeed(scratch_.file("tune"));
    need(player != nullptr, "the tune cannot be fed");
    need(screen_->pressKey("r") && orvo->waitUntilRecorded(kFramesPerSecond),
         "R starts no recording");
    watch("recording, spectrum shown", *orvo, "at most 4", "");
    // Longer than playing is watched.
    const double frames = (seconds_ + 2) * kFramesPerSecond;
    need(orvo->waitUntilRecorded(static_cast<std::uint64_t>(frames)), "the recording has ended");
    need(screen_->pressKey("r") && screen_->pressKey("space"), "no key can be pressed");
    need(eventually([&] { return server_->isPlaying(orvo->pid()); }), "Space starts no playback");
    watch("playing, spectrum shown", *orvo, "", "");
  }

  std::string orvo_;
  std::string emptyWindow_;
  double seconds_;
  TemporaryFolder scratch_;
  std::unique_ptr<VirtualScreen> screen_;
  std::unique_ptr<PrivateSoundServer> server_;
  Environment environment_;
};

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> words(argv + 1, argv + argc);
  double seconds = 10;
  if (words.size() < 2 || words.size() > 3 ||
      (words.size() == 3 && !(std::istringstream(words[2]) >> seconds))) {
    std::cerr << "usage: orvo_measure_program ORVO EMPTY-WINDOW [SECONDS]\n";
    return 2;
  }
  try {
    Measurement(words[0], words[1], seconds).run();
    return 0;
  } catch (const std::exception& failure) {
    std::cerr << "orvo_measure_program: " << failure.what() << '\n';
    return 1;
  }
}
