#include "platform/process/DescriptorChannel.h"

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

namespace platform {
namespace {

// Aligned as the system wants it.
struct Control {
  alignas(cmsghdr)
      std::array<std::byte, CMSG_SPACE(DescriptorChannel::kMaxDescriptors * sizeof(int))> bytes{};
};

std::vector<int> descriptorsIn(msghdr& header) {
  std::vector<int> found;
  for (cmsghdr* part = CMSG_FIRSTHDR(&header); part != nullptr; part = CMSG_NXTHDR(&header, part)) {
    if (part->cmsg_level != SOL_SOCKET || part->cmsg_type != SCM_RIGHTS) {
      continue;
    }
    found.resize((part->cmsg_len - CMSG_LEN(0)) / sizeof(int));
    std::memcpy(found.data(), CMSG_DATA(part), found.size() * sizeof(int));
  }
  return found;
}

}  // namespace

DescriptorChannel::~DescriptorChannel() {
  ::close(descriptor_);
}

Result<DescriptorChannel::Ends> DescriptorChannel::connect() {
  std::array<int, 2> ends{};
  if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) {
    return errno;
  }
  return Ends(std::make_unique<DescriptorChannel>(ends[0]),
              std::make_unique<DescriptorChannel>(ends[1]));
}

int DescriptorChannel::send(std::span<const std::byte> message, std::span<const int> descriptors) {
  if (descriptors.size() > kMaxDescriptors) {
    return EINVAL;
  }
  Control control;
  iovec bytes{const_cast<std::byte*>(message.data()), message.size()};
  msghdr header{};
  header.msg_iov = &bytes;
  header.msg_iovlen = 1;
  if (!descriptors.empty()) {
    header.msg_control = control.bytes.data();
    header.msg_controllen = CMSG_SPACE(descriptors.size_bytes());
    cmsghdr* const part = CMSG_FIRSTHDR(&header);
    part->cmsg_level = SOL_SOCKET;
    part->cmsg_type = SCM_RIGHTS;
    part->cmsg_len = CMSG_LEN(descriptors.size_bytes());
    std::memcpy(CMSG_DATA(part), descriptors.data(), descriptors.size_bytes());
  }
  ssize_t sent = 0;
  do {
    sent = ::sendmsg(descriptor_, &header, MSG_NOSIGNAL | MSG_DONTWAIT);
  } while (sent < 0 && errno == EINTR);
  if (sent >= 0) {
    return 0;
  }
  // Too many descriptors of this user's are on their way, or there is no memory for a moment.
  return errno == ETOOMANYREFS || errno == ENOMEM ? ENOBUFS : errno;
}

DescriptorChannel::Received DescriptorChannel::receive(std::span<std::byte> message,
                                                       Waiting waiting) {
  Control control;
  iovec bytes{message.data(), message.size()};
  msghdr header{};
  header.msg_iov = &bytes;
  header.msg_iovlen = 1;
  header.msg_control = control.bytes.data();
  header.msg_controllen = control.bytes.size();
  const int flags = MSG_CMSG_CLOEXEC | (waiting == Waiting::no ? MSG_DONTWAIT : 0);
  ssize_t count = 0;
  do {
    count = ::recvmsg(descriptor_, &header, flags);
  } while (count < 0 && errno == EINTR);
  if (count < 0) {
    return {.byteCount = 0, .descriptors = {}, .error = errno};
  }
  return {.byteCount = static_cast<std::size_t>(count), .descriptors = descriptorsIn(header)};
}

}  // namespace platform
