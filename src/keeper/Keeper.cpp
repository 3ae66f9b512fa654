#include "keeper/Keeper.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <iterator>
#include <span>
#include <thread>
#include <utility>
#include <vector>

#include "keeper/PassingErrors.h"
#include "platform/files/PosixFile.h"

namespace {

using Received = platform::DescriptorChannel::Received;

// An error is the end only if it says that there is no connection.
bool hasProgramEnded(const Received& received) {
  constexpr std::array kNone{ECONNRESET, ENOTCONN, ENOTSOCK, EBADF};
  return received.error == 0 ? received.byteCount == 0
                             : std::find(kNone.begin(), kNone.end(), received.error) != kNone.end();
}

}  // namespace

Keeper::Keeper(std::unique_ptr<platform::DescriptorChannel> program, std::string dataDirectory)
    : program_(std::move(program)), dataDirectory_(std::move(dataDirectory)) {}

void Keeper::listen() {
  using Channel = platform::DescriptorChannel;
  constexpr std::chrono::milliseconds kPause{10};
  std::array<std::byte, sizeof(KeeperMessage)> bytes{};
  while (true) {
    auto received = program_->receive(bytes, Channel::Waiting::untilItCame);
    if (hasProgramEnded(received)) {
      return;
    }
    if (received.error != 0) {
      std::this_thread::sleep_for(kPause);  // no memory, say
      continue;
    }
    KeeperMessage message{.version = 0};
    if (received.byteCount == sizeof message) {
      std::memcpy(&message, bytes.data(), sizeof message);
    }
    take(message, received.descriptors);
  }
}

void Keeper::take(const KeeperMessage& message, const std::vector<int>& descriptors) {
  std::vector<std::unique_ptr<platform::File>> files;
  files.reserve(descriptors.size());
  for (const int descriptor : descriptors) {
    files.push_back(std::make_unique<platform::PosixFile>(descriptor));  // closes what is not kept
  }
  if (message.version != KeeperMessage::kVersion) {
    return;
  }
  if (message.kind == KeeperMessage::Kind::letGo) {
    recordings_.erase(message.document);
  } else if (message.kind == KeeperMessage::Kind::keep && files.size() == 2) {
    recordings_.insert_or_assign(message.document,
                                 KeptRecording(std::move(files[0]), std::move(files[1])));
  }
}

bool Keeper::recover() {
  if (recordings_.empty()) {
    return true;
  }
  if (auto opened = RecoveredFolder::open(dataDirectory_)) {
    folder_ = *std::move(opened);
  } else if (!folder_) {  // what was begun in it is written to the end
    return !mayPass(opened.error());
  }
  for (auto entry = recordings_.begin(); entry != recordings_.end();) {
    const bool waits = entry->second.recover(*folder_) == KeptRecording::Outcome::waiting;
    entry = waits ? std::next(entry) : recordings_.erase(entry);
  }
  return recordings_.empty();
}

bool Keeper::isMoving() const {
  return std::any_of(recordings_.begin(), recordings_.end(),
                     [](const auto& entry) { return entry.second.isMoving(); });
}
