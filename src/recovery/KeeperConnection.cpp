#include "recovery/KeeperConnection.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <span>
#include <system_error>
#include <utility>

#include "platform/base/ApplicationServices.h"
#include "platform/base/MainThread.h"

KeeperConnection::~KeeperConnection() = default;

void KeeperConnection::start() {
  platform::assertMainThread();
  if (!channel_ && isAvailable_) {
    launch();
  }
}

void KeeperConnection::launch() {
  auto ends = platform::DescriptorChannel::connect();
  if (!ends) {
    giveUp(ends.error());
    return;
  }
  auto [own, other] = *std::move(ends);
  auto process = platform::SpawnedProgram::start(program_, other->descriptor());
  if (!process) {
    giveUp(process.error());
    return;
  }
  process_ = *std::move(process);
  channel_ = std::move(own);
  ++starts_;
  started_ = std::chrono::steady_clock::now();
  pending_.clear();
  for (const auto& [document, recording] : recordings_) {
    pending_.push_back({.kind = KeeperMessage::Kind::keep, .document = document});
  }
  sendPending();
}

void KeeperConnection::keep(std::uint64_t document, const Recording& recording) {
  platform::assertMainThread();
  reapFormer();
  if (!isAvailable_) {
    return;
  }
  recordings_[document] = recording;
  pending_.push_back({.kind = KeeperMessage::Kind::keep, .document = document});
  sendPending();
}

void KeeperConnection::letGo(std::uint64_t document) {
  platform::assertMainThread();
  reapFormer();
  if (recordings_.erase(document) == 0) {
    return;
  }
  const auto unsent = std::erase_if(
      pending_, [document](const KeeperMessage& message) { return message.document == document; });
  if (unsent == 0) {
    pending_.push_back({.kind = KeeperMessage::Kind::letGo, .document = document});
  }
  sendPending();
}

void KeeperConnection::sendPending() {
  reapFormer();
  while (channel_ && !pending_.empty()) {
    const KeeperMessage message = pending_.front();
    std::array<int, 2> descriptors{};
    std::size_t count = 0;
    if (message.kind == KeeperMessage::Kind::keep) {
      const Recording& recording = recordings_.at(message.document);
      descriptors = {recording.audio, recording.journal};
      count = descriptors.size();
    }
    const int error = channel_->send(std::as_bytes(std::span(&message, 1)),
                                     std::span<const int>(descriptors.data(), count));
    isHeldUp_ = error == ENOBUFS;
    if (isHeldUp_ || error == EAGAIN) {
      break;
    }
    if (error != 0) {
      died();
      return;
    }
    pending_.pop_front();
  }
  changed();
}

KeeperConnection::Waiting KeeperConnection::waiting() const {
  if (pending_.empty()) {
    return Waiting::forNothing;
  }
  return isHeldUp_ ? Waiting::forSystem : Waiting::forKeeper;
}

void KeeperConnection::check() {
  platform::assertMainThread();
  if (!channel_) {
    return;
  }
  std::array<std::byte, 1> nothing{};
  const auto received = channel_->receive(nothing, platform::DescriptorChannel::Waiting::no);
  if (received.error != EAGAIN && received.byteCount == 0) {
    died();
  }
}

void KeeperConnection::died() {
  const bool soon = std::chrono::steady_clock::now() - started_ < kSoon;
  failures_ = soon ? failures_ + 1 : 0;
  process_->kill();  // one that lives would take the end of its connection for this program's
  channel_.reset();
  former_.push_back(std::move(process_));
  if (failures_ >= kMaxFailures) {
    giveUp(ECHILD);
  } else {
    launch();
  }
}

// A keeper's connection may end before it does, so it is looked for again with each message.
void KeeperConnection::reapFormer() {
  std::erase_if(former_, [](const auto& process) { return process->hasEnded(); });
}

void KeeperConnection::giveUp(int error) {
  isAvailable_ = false;
  pending_.clear();
  recordings_.clear();
  ConsoleLog(
      "%s does not run, so a recording that is not saved would be lost if the program ended "
      "unexpectedly: %s",
      program_.c_str(), std::generic_category().message(error).c_str());
  changed();
}

void KeeperConnection::changed() const {
  if (changed_) {
    changed_();
  }
}
