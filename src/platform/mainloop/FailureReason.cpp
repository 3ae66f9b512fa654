#include "platform/mainloop/FailureReason.h"

#include <array>
#include <cerrno>
#include <system_error>

#include "platform/mainloop/Localization.h"

namespace platform {
namespace {

struct Reason {
  int error;
  TextKey sentence;
};

constexpr std::array kReasons{
    Reason{EACCES, textKey("You do not have the permission for it.")},
    Reason{EPERM, textKey("You do not have the permission for it.")},
    Reason{ENOSPC, textKey("The disk is full.")},
    Reason{EDQUOT, textKey("You have used up your share of the disk.")},
    Reason{EFBIG, textKey("The file would become larger than the disk allows.")},
    Reason{EROFS, textKey("The disk can only be read.")},
    Reason{ENOENT, textKey("The folder or the file is not there any more.")},
    Reason{ENOTDIR, textKey("The folder or the file is not there any more.")},
    Reason{EISDIR, textKey("There is a folder of this name.")},
    Reason{ENOTEMPTY, textKey("There is a folder of this name.")},
    Reason{EINVAL, textKey("It is not an ordinary file.")},
    Reason{EIO, textKey("The disk could not be read or written.")},
    Reason{ENODEV, textKey("The disk has been removed.")},
    Reason{ENXIO, textKey("The disk has been removed.")},
    Reason{ESTALE, textKey("Another program has changed the folder or the file meanwhile.")},
    Reason{ENAMETOOLONG, textKey("The name is too long.")},
    Reason{ELOOP, textKey("The name is a link that leads back to itself.")},
    Reason{EMFILE, textKey("Too many files are open.")},
    Reason{ENFILE, textKey("Too many files are open.")},
    Reason{ENOMEM, textKey("There is not enough memory.")},
    Reason{EAGAIN, textKey("The computer is too busy just now.")},
    Reason{EBUSY, textKey("Another program is using it.")},
    Reason{ETXTBSY, textKey("Another program is using it.")},
    Reason{EEXIST, textKey("There is already a file or a folder of this name.")},
    Reason{EOPNOTSUPP, textKey("The disk does not allow it.")},
    Reason{ETIMEDOUT, textKey("The disk does not answer.")},
    Reason{EHOSTUNREACH, textKey("The disk does not answer.")},
    Reason{ENETUNREACH, textKey("The disk does not answer.")},
    Reason{ECONNREFUSED, textKey("The disk does not answer.")},
    Reason{ECONNRESET, textKey("The disk does not answer.")},
    Reason{ENOTCONN, textKey("The disk does not answer.")},
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
