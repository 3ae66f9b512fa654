#include "platform/File.h"

#include <atomic>
#include <filesystem>
#include <system_error>

#include "platform/PosixFile.h"

namespace platform {
namespace {

// The maker put in last; null stands for the operating system's. Written by installations only,
// before the threads that read it start.
std::atomic<TemporaryFiles*> installedFiles{nullptr};

}  // namespace

TemporaryFiles& temporaryFiles() {
  TemporaryFiles* const files = installedFiles.load(std::memory_order_acquire);
  return files != nullptr ? *files : operatingSystemTemporaryFiles();
}

void deleteFile(const std::string& path) {
  std::error_code ignored;
  std::filesystem::remove(path, ignored);
}

TemporaryFilesInstallation::TemporaryFilesInstallation(TemporaryFiles& files)
    : previous_(installedFiles.exchange(&files, std::memory_order_acq_rel)) {}

TemporaryFilesInstallation::~TemporaryFilesInstallation() {
  installedFiles.store(previous_, std::memory_order_release);
}

}  // namespace platform
