// Shows Orvo at work where there is no screen or no sound server.
//
//   orvo_demonstration record FOLDER PROGRAM [FILE…]
//       On a virtual screen, with a private sound server: records a tune through the window, plays
//       it, saves it through the save panel, opens it again, and leaves pictures, the saved files
//       and what was heard in FOLDER. Ends by itself.
//   orvo_demonstration foreground PROGRAM [FILE…]
//       On the screen that is there, with a private sound server that hears the tune.

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include <unistd.h>

#include "support/RawAudio.h"
#include "support/programs/PrivateSoundServer.h"
#include "support/programs/RunningOrvo.h"
#include "support/programs/VirtualScreen.h"

namespace {

using namespace support;

constexpr double kTuneSeconds = 6.0;
constexpr float kAudible = 0.2F;

void need(bool holds, const std::string& otherwise) {
  if (!holds) {
    throw std::runtime_error(otherwise);
  }
}

template <typename T>
std::unique_ptr<T> needed(std::unique_ptr<T> thing, const std::string& error) {
  need(thing != nullptr, error);
  return thing;
}

std::unique_ptr<PrivateSoundServer> startServer() {
  std::string error;
  auto server = PrivateSoundServer::start(error);
  return needed(std::move(server), error);
}

/// One pass through the window at one scale, with its pictures.
class Demonstration {
 public:
  Demonstration(std::string folder, std::string program, std::vector<std::string> files)
      : folder_(std::move(folder)),
        program_(std::filesystem::absolute(program)),
        files_(std::move(files)) {
    std::string error;
    screen_ = VirtualScreen::start(error);
    need(screen_ != nullptr, error);
    server_ = startServer();
    std::filesystem::create_directories(folder_);
    folder_ = std::filesystem::canonical(folder_);
    need(writeRaw(scratch_.file("tune"), tune_), "the tune cannot be written");
    need(writeWav(folder_ + "/fed.wav", tune_), folder_ + " cannot be written to");
    left("fed.wav", "what was played into the microphone's place");
  }

  void run(int scale) {
    scale_ = scale;
    const auto orvo = start(files_);
    const auto capture =
        needed(server_->captureHeard(scratch_.file("heard")), "what is heard cannot be recorded");
    picture(*orvo, "empty", "a new window", true);
    record(*orvo);
    play(*orvo);
    capture->end();
    listen();
    save(*orvo);
    quitUnsaved(*orvo);
    open();
  }

 private:
  /// Its panels begin in the folder that everything is left in.
  std::unique_ptr<RunningOrvo> start(const std::vector<std::string>& files) {
    std::string error;
    RunningOrvo::Options options;
    options.files = files;
    options.scale = scale_;
    options.wrapper = {"env", "-C", folder_};
    auto started = RunningOrvo::start(program_, *screen_, server_->environment(), options, error);
    return needed(std::move(started), error);
  }

  void record(const RunningOrvo& orvo) {
    need(screen_->pressKey("r") && orvo.waitUntilRecorded(1), "R starts no recording");
    const auto player =
        needed(server_->playIntoFeed(scratch_.file("tune")), "the tune cannot be fed");
    need(orvo.waitUntilRecorded(3 * kFramesPerSecond), "the recording does not grow");
    picture(orvo, "recording", "while recording", false);
    need(player->waitForExit().has_value(), "the tune does not end");
    // A player's end is told when the server has it all; the last of it is captured a little later.
    // On a machine so busy that the server skips, less than the whole is there, and that is told.
    const bool whole = eventually([&] { return exactFrames(orvo.recorded()) == frames_; },
                                  std::chrono::seconds(5));
    recordedExactly_ = whole ? frames_ : exactFrames(orvo.recorded());
    need(screen_->pressKey("r"), "R cannot be pressed");
  }

  void play(const RunningOrvo& orvo) {
    need(screen_->pressKey("space"), "Space cannot be pressed");
    need(eventually([&] { return server_->isPlaying(orvo.pid()); }), "Space plays nothing");
    need(eventually([&] { return peak(readRaw(scratch_.file("heard"))) > kAudible; }),
         "the tune is not heard");
    picture(orvo, "playing", "while playing", false);
    need(eventually([&] { return !server_->isPlaying(orvo.pid()); }), "playing does not end");
    picture(orvo, "stopped", "after playing", true);
  }

  [[nodiscard]] std::string scaled(const std::string& name, const std::string& suffix) const {
    return name + "-" + std::to_string(scale_) + "x." + suffix;
  }

  /// The window of a panel or a question, with the keyboard.
  [[nodiscard]] VirtualScreen::Window panel(const RunningOrvo& orvo, const std::string& title) {
    VirtualScreen::Window found;
    need(eventually([&] {
           for (const auto& window : screen_->windowsOf(orvo.pid(), title)) {
             found = screen_->titleOf(window) == title ? window : found;
           }
           return !found.empty();
         }) &&
             screen_->activate(found),
         "no window “" + title + "” comes");
    return found;
  }

  void save(const RunningOrvo& orvo) {
    saveAs(orvo, "wav", 0);
    saveAs(orvo, "m4a", 3);
  }

  /// Chooses the kind of this number in the save panel and types a name.
  void saveAs(const RunningOrvo& orvo, const std::string& suffix, int kind) {
    const std::string name = scaled("take", suffix);
    std::filesystem::remove(folder_ + "/" + name);  // of the last time: nothing is to be replaced
    need(screen_->pressKey("ctrl+shift+s"), "the save panel cannot be asked for");
    const auto shown = panel(orvo, "Save As");
    bool typed = screen_->pressKey("alt+t") && screen_->pressKey("Home");
    for (int i = 0; i < kind; ++i) {
      typed = typed && screen_->pressKey("Down");
    }
    typed = typed && screen_->pressKey("alt+n") && screen_->pressKey("ctrl+a") &&
            screen_->type(folder_ + "/" + name);
    need(typed, "no name can be typed");
    picture(shown, "save-panel-" + suffix, "the save panel", true);
    need(screen_->pressKey("Return") &&
             eventually([&] { return screen_->titleOf(orvo.window()) == "Orvo - " + name; }),
         name + " is not saved");
    left(name, "what was saved");
  }

  void quitUnsaved(RunningOrvo& orvo) {
    const std::uint64_t before = orvo.recordedFrames();
    need(screen_->pressKey("r") && orvo.waitUntilRecorded(before + 1), "R starts no recording");
    need(screen_->pressKey("ctrl+q"), "Quit cannot be asked for");
    picture(panel(orvo, "Orvo"), "unsaved", "the question about unsaved changes", true);
    need(screen_->pressKey("Tab") && screen_->pressKey("space") &&
             orvo.process().waitForExit() == ExitStatus{0, 0},
         "Don't Save does not end it");
  }

  void open() {
    const auto orvo = start({folder_ + "/" + scaled("take", "wav")});
    need(screen_->screenshotAtRest(orvo->window(), scratch_.file("loaded.png")),
         "the saved file is not shown");
    picture(*orvo, "opened", "the saved file, opened again", true);
    need(screen_->pressKey("ctrl+q") && orvo->process().waitForExit() == ExitStatus{0, 0},
         "it does not quit");
  }

  /// How many frames of the tune stand there without a difference, from its beginning on.
  [[nodiscard]] std::size_t exactFrames(const Samples& in) const {
    const auto start = findStart(tune_, in);
    return start ? equalFrames(tune_, in, *start) : 0;
  }

  void listen() {
    const std::string name = scaled("heard", "wav");
    const Samples heard = readRaw(scratch_.file("heard"));
    need(writeWav(folder_ + "/" + name, heard), folder_ + " cannot be written to");
    left(name, "what came out; of the tune's " + std::to_string(frames_) + " frames, " +
                   std::to_string(recordedExactly_) + " were recorded and " +
                   std::to_string(exactFrames(heard)) + " heard sample for sample");
  }

  void picture(const RunningOrvo& orvo, const std::string& name, const std::string& what,
               bool atRest) {
    picture(orvo.window(), name, what, atRest);
  }

  void picture(const VirtualScreen::Window& window, const std::string& name,
               const std::string& what, bool atRest) {
    const std::string file = scaled(name, "png");
    const std::string path = folder_ + "/" + file;
    need(atRest ? screen_->screenshotAtRest(window, path) : screen_->screenshot(window, path),
         file + " cannot be taken");
    left(file, what);
  }

  void left(const std::string& name, const std::string& what) const {
    std::cout << folder_ << '/' << name << ": " << what << '\n' << std::flush;
  }

  std::string folder_;
  std::string program_;
  std::vector<std::string> files_;
  TemporaryFolder scratch_;
  const Samples tune_ = tune(kTuneSeconds);
  const std::size_t frames_ = tune_.size() / kChannels;
  std::size_t recordedExactly_ = 0;
  std::unique_ptr<VirtualScreen> screen_;
  std::unique_ptr<PrivateSoundServer> server_;
  int scale_ = 1;
};

/// The user's own environment with the private server in it; the program has the terminal.
int runInForeground(const std::string& program, const std::vector<std::string>& files) {
  const auto server = startServer();
  const TemporaryFolder scratch;
  constexpr double kLongTuneSeconds = 120.0;
  need(writeRaw(scratch.file("tune"), tune(kLongTuneSeconds)), "the tune cannot be written");
  const auto player = needed(server->playIntoFeed(scratch.file("tune")), "the tune cannot be fed");
  Environment environment;
  for (char** variable = environ; *variable != nullptr; ++variable) {
    const std::string text = *variable;
    environment[text.substr(0, text.find('='))] = text.substr(text.find('=') + 1);
  }
  environment["PULSE_SERVER"] = server->environment().at("PULSE_SERVER");
  std::vector<std::string> arguments{program};
  arguments.insert(arguments.end(), files.begin(), files.end());
  std::string error;
  const auto orvo = needed(ChildProcess::start(arguments, environment, error), error);
  const auto status = orvo->waitForExit(std::chrono::hours(24));
  std::cerr << orvo->errorOutput();
  return status ? status->code : 1;
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> words(argv + 1, argv + argc);
  try {
    if (words.size() >= 3 && words[0] == "record") {
      Demonstration demonstration(words[1], words[2], {words.begin() + 3, words.end()});
      for (const int scale : {1, 2}) {
        demonstration.run(scale);
      }
      return 0;
    }
    if (words.size() >= 2 && words[0] == "foreground") {
      return runInForeground(words[1], {words.begin() + 2, words.end()});
    }
    std::cerr << "usage: orvo_demonstration record FOLDER PROGRAM [FILE…] | foreground PROGRAM "
                 "[FILE…]\n";
    return 2;
  } catch (const std::exception& failure) {
    std::cerr << "orvo_demonstration: " << failure.what() << '\n';
    return 1;
  }
}
