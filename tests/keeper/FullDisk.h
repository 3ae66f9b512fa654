#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>

#include <fcntl.h>
#include <unistd.h>

#include "platform/files/TemporaryFiles.h"

/// What tests of the keeper on a full disk need.
///
/// Threads: one.
namespace support {

/// Real temporary files in a folder of the test's choice.
class TemporaryFilesIn : public platform::TemporaryFiles {
 public:
  explicit TemporaryFilesIn(const std::string& folder) : folder_(folder + "/") {}
  [[nodiscard]] std::string directory() const override { return folder_; }
  [[nodiscard]] Created createUnlinked(const std::string& pathTemplate) override {
    return real_->createUnlinked(pathTemplate);
  }
  [[nodiscard]] Created createNamed(const std::string& pathTemplate) override {
    return real_->createNamed(pathTemplate);
  }

 private:
  const std::shared_ptr<platform::TemporaryFiles> real_ =
      platform::TemporaryFiles::whenNoneIsInstalled();
  const std::string folder_;
};

/// Fills what is left of the disk of an open folder, but for so many bytes, with the file "filler"
/// in it. False if that cannot be done.
[[nodiscard]] inline bool fillBut(std::uint64_t bytes, int folder) {
  const int file = ::openat(folder, "filler", O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
  if (file < 0) {
    return false;
  }
  const std::string page(4096, 'x');
  off_t size = 0;
  while (::write(file, page.data(), page.size()) == static_cast<ssize_t>(page.size())) {
    size += static_cast<off_t>(page.size());
  }
  const bool isCut = ::ftruncate(file, std::max<off_t>(size - static_cast<off_t>(bytes), 0)) == 0;
  ::close(file);
  return isCut;
}

}  // namespace support
