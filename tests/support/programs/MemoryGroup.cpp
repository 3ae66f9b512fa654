#include "support/programs/MemoryGroup.h"

#include <filesystem>
#include <fstream>
#include <utility>

#include <unistd.h>

#include "support/Eventually.h"

namespace support {

namespace {

/// This process's group among those of a controller, the empty name for the common hierarchy.
std::string ownGroup(const std::string& controller) {
  std::ifstream file("/proc/self/cgroup");
  for (std::string line; std::getline(file, line);) {  // "4:memory:/path"
    const std::size_t name = line.find(':') + 1;
    const std::size_t path = line.find(':', name);
    if (path != std::string::npos && line.substr(name, path - name) == controller) {
      return line.substr(path + 1);
    }
  }
  return {};
}

bool writeTo(const std::string& path, const std::string& text) {
  std::ofstream file(path);
  file << text;
  file.flush();
  return static_cast<bool>(file);
}

std::uint64_t numberIn(const std::string& path) {
  std::uint64_t number = 0;
  std::ifstream(path) >> number;
  return number;
}

}  // namespace

std::unique_ptr<MemoryGroup> MemoryGroup::create() {
  struct Kind {
    const char* controller;
    const char* root;
    const char* limit;
    const char* usage;
  };
  constexpr Kind kKinds[] = {
      {"memory", "/sys/fs/cgroup/memory", "memory.limit_in_bytes", "memory.usage_in_bytes"},
      {"", "/sys/fs/cgroup", "memory.max", "memory.current"}};
  static int count = 0;
  for (const Kind& kind : kKinds) {
    const std::string own = ownGroup(kind.controller);
    const std::string path = kind.root + own + "/orvo-test-" + std::to_string(::getpid()) + "-" +
                             std::to_string(++count);
    std::error_code failed;
    if (own.empty() || !std::filesystem::create_directory(path, failed)) {
      continue;
    }
    std::unique_ptr<MemoryGroup> group(new MemoryGroup(path, kind.limit, kind.usage));
    if (std::filesystem::exists(path + "/" + kind.limit, failed)) {
      return group;
    }
  }
  return nullptr;
}

MemoryGroup::~MemoryGroup() {
  static_cast<void>(eventually([this] { return ::rmdir(path_.c_str()) == 0; }));
}

std::vector<std::string> MemoryGroup::wrapper() const {
  return {"sh", "-c", "echo $$ >\"$0\" && exec \"$@\"", path_ + "/cgroup.procs"};
}

// Some systems refuse a limit below what cannot be given back.
bool MemoryGroup::limitTo(std::uint64_t furtherBytes) const {
  constexpr std::uint64_t kMore = std::uint64_t{1} << 20;
  constexpr int kTries = 512;
  std::uint64_t limit = 16 * kMore;  // less than any program with a window has
  for (int i = 0; i < kTries && !writeTo(path_ + "/" + limit_, std::to_string(limit)); ++i) {
    limit += kMore;
  }
  const std::uint64_t used = numberIn(path_ + "/" + usage_);
  return writeTo(path_ + "/" + limit_, std::to_string(used + furtherBytes));
}

}  // namespace support
