#pragma once

#include <algorithm>
#include <array>
#include <cerrno>

/// Whether another try may succeed after this errno, once the user has made room or given a right,
/// other programs need less or the disk is well again.
[[nodiscard]] inline bool mayPass(int error) {
  constexpr std::array kPassing{ENOSPC, EDQUOT, EROFS,  EIO,    ENOMEM,
                                EMFILE, ENFILE, EACCES, ENOENT, EINTR};
  return std::find(kPassing.begin(), kPassing.end(), error) != kPassing.end();
}
