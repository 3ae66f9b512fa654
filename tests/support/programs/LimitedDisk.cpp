#include "support/programs/LimitedDisk.h"

#include <cstdlib>
#include <filesystem>
#include <utility>

#include <unistd.h>

#include "support/programs/ChildProcess.h"

namespace support {

namespace {

using Words = std::vector<std::string>;

Words joined(Words words, const Words& further) {
  words.insert(words.end(), further.begin(), further.end());
  return words;
}

/// Runs a shell command in its own mount namespace; `arguments` are its $0, $1 and so on.
Words inOwnMounts(const std::string& command, const Words& arguments) {
  Words words{"unshare", "--mount", "--propagation", "private"};
  if (::geteuid() != 0) {
    words.emplace_back("--map-root-user");
  }
  return joined(joined(std::move(words), {"sh", "-c", command}), arguments);
}

bool mayMount(const std::string& folder) {
  if (std::getenv("ORVO_TEST_WITHOUT_MOUNTS") != nullptr) {
    return false;
  }
  const Words tried = inOwnMounts("mount -t tmpfs tmpfs \"$0\"", {folder});
  return runToEnd(tried, cleanEnvironment()).status.succeeded();
}

}  // namespace

LimitedDisk LimitedDisk::ofSize(const std::string& folder, std::uint64_t bytes,
                                const std::string& content, const std::string& name) {
  return {folder, bytes, content, name};
}

LimitedDisk LimitedDisk::readOnly(const std::string& folder) {
  return {folder, 0, {}, {}};
}

LimitedDisk::LimitedDisk(std::string folder, std::uint64_t bytes, const std::string& content,
                         const std::string& name)
    : folder_(std::move(folder)), mounted_(mayMount(folder_)) {
  const std::string size = std::to_string(bytes);
  if (mounted_) {
    const std::string options = bytes == 0 ? "ro" : "size=" + size;
    const std::string copy = name.empty() ? "" : " && cp \"$2\" \"$3\"";
    wrapper_ =
        inOwnMounts("mount -t tmpfs -o \"$1\" tmpfs \"$0\"" + copy + " && shift 3 && exec \"$@\"",
                    {folder_, options, content, folder_ + "/" + name});
    return;
  }
  if (!name.empty()) {
    std::filesystem::copy_file(content, folder_ + "/" + name);
  }
  wrapper_ = {"env", "LD_PRELOAD=" ORVO_LIMITED_DISK_LIBRARY, "ORVO_TEST_DISK=" + folder_,
              "ORVO_TEST_DISK_BYTES=" + size};
}

std::string LimitedDisk::seenBy(pid_t program) const {
  return mounted_ ? "/proc/" + std::to_string(program) + "/root" + folder_ : folder_;
}

}  // namespace support
