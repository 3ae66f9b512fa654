#include "platform/FailureReason.h"

#include <array>
#include <cerrno>
#include <system_error>

#include "platform/Localization.h"

namespace platform {
namespace {

struct Reason {
  int error;
  const char* sentence;
};

constexpr std::array kReasons{
    Reason{EACCES, "You do not have the permission for it."},
    Reason{EPERM, "You do not have the permission for it."},
    Reason{ENOSPC, "The disk is full."},
    Reason{EDQUOT, "You have used up your share of the disk."},
    Reason{EFBIG, "The file would become larger than the disk allows."},
    Reason{EROFS, "The disk can only be read."},
    Reason{ENOENT, "The folder or the file is not there any more."},
    Reason{ENOTDIR, "The folder or the file is not there any more."},
    Reason{EISDIR, "There is a folder of this name."},
    Reason{EINVAL, "It is not an ordinary file."},
    Reason{EIO, "The disk could not be read or written."},
    Reason{ENODEV, "The disk has been removed."},
    Reason{ENXIO, "The disk has been removed."},
    Reason{ENAMETOOLONG, "The name is too long."},
    Reason{ELOOP, "The name is a link that leads back to itself."},
    Reason{EMFILE, "Too many files are open."},
    Reason{ENFILE, "Too many files are open."},
};

}  // namespace

std::string failureReason(int error) {
  for (const Reason& reason : kReasons) {
    if (reason.error == error) {
      return localizedUtf8(reason.sentence);
    }
  }
  return std::generic_category().message(error) + ".";
}

}  // namespace platform
