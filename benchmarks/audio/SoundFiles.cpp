#include "audio/SoundFiles.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <utility>

extern char** environ;

namespace benchmarks {

namespace {

class Folder {
 public:
  Folder() {
    std::string name = (std::filesystem::temp_directory_path() / "orvo-bench-XXXXXX").string();
    if (::mkdtemp(name.data()) != nullptr) {
      path_ = name;
    }
  }
  ~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;

  [[nodiscard]] std::string file(const std::string& name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

const Folder& folder() {
  static const Folder only;
  return only;
}

bool run(std::vector<std::string> command) {
  std::vector<char*> pointers;
  pointers.reserve(command.size() + 1);
  for (std::string& word : command) {
    pointers.push_back(word.data());
  }
  pointers.push_back(nullptr);
  pid_t child = 0;
  if (::posix_spawnp(&child, pointers.front(), nullptr, nullptr, pointers.data(), environ) != 0) {
    return false;
  }
  int status = 0;
  return ::waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// Runs ffmpeg once with these arguments, followed by the file's path.
std::string made(const std::string& name, std::vector<std::string> arguments) {
  std::string path = folder().file(name);
  arguments.push_back(path);
  return ffmpeg(arguments) ? path : std::string();
}

}  // namespace

bool ffmpeg(const std::vector<std::string>& arguments) {
  std::vector<std::string> command{"ffmpeg", "-v", "error", "-nostdin", "-y", "-threads", "1"};
  command.insert(command.end(), arguments.begin(), arguments.end());
  return run(std::move(command));
}

bool copyFile(const std::string& from, const std::string& to) {
  return run({"cp", "--reflink=never", from, to});
}

const std::string& tenMinutesOfWav() {
  static const std::string path =
      made("ten.wav", {"-f", "lavfi", "-i", "anoisesrc=d=600:c=pink:seed=1:r=44100:a=0.5", "-f",
                       "lavfi", "-i", "anoisesrc=d=600:c=pink:seed=2:r=44100:a=0.5",
                       "-filter_complex", "amerge", "-c:a", "pcm_s16le"});
  return path;
}

const std::string& threeHoursOfWav() {
  static const std::string path =
      made("three.wav", {"-stream_loop", "17", "-i", tenMinutesOfWav(), "-c", "copy"});
  return path;
}

const std::string& hourOfWav() {
  static const std::string path =
      made("hour.wav", {"-stream_loop", "5", "-i", tenMinutesOfWav(), "-c", "copy"});
  return path;
}

const std::string& hourOfRawFloats() {
  static const std::string path = made("hour.raw", {"-i", hourOfWav(), "-f", "f32le"});
  return path;
}

const std::string& tenMinutesOfMp3() {
  static const std::string path =
      made("ten.mp3", {"-i", tenMinutesOfWav(), "-c:a", "libmp3lame", "-b:a", "192k"});
  return path;
}

const std::string& tenMinutesOfM4a() {
  static const std::string path =
      made("ten.m4a", {"-i", tenMinutesOfWav(), "-c:a", "aac", "-b:a", "192k"});
  return path;
}

std::string scratchFile(const std::string& name) {
  return folder().file(name);
}

bool syncFile(const std::string& path) {
  const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  const bool synced = descriptor >= 0 && ::fsync(descriptor) == 0;
  if (descriptor >= 0) {
    ::close(descriptor);
  }
  return synced;
}

}  // namespace benchmarks
