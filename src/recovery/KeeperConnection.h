#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/process/DescriptorChannel.h"
#include "platform/process/SpawnedProgram.h"
#include "recovery/KeeperMessage.h"
#include "recovery/RecordingKeeper.h"

/// The keeper program, started by this one, and what it is told. Nothing here ever waits for it: a
/// message that it does not take now waits here. A keeper that dies is replaced by a new one, which
/// is told everything; one that keeps dying, or cannot be started, is done without, after one line
/// on the console.
///
/// A document needs no message but its first: its state is in the journal, which the keeper reads
/// when the connection ends. So nothing wrong is recovered even if a letGo() did not get through.
///
/// Threads: main. Real-time: not safe.
class KeeperConnection : public RecordingKeeper {
 public:
  /// A keeper that dies so soon after its start counts as failed; after so many in a row none is
  /// started any more.
  static constexpr std::chrono::seconds kSoon{10};
  static constexpr int kMaxFailures = 3;

  /// `program` is the keeper's path. Documents may be kept before start().
  explicit KeeperConnection(std::string program) : program_(std::move(program)) {}
  ~KeeperConnection() override;
  KeeperConnection(const KeeperConnection&) = delete;
  KeeperConnection& operator=(const KeeperConnection&) = delete;

  /// Starts the keeper.
  void start();

  [[nodiscard]] bool isAvailable() const override { return isAvailable_; }
  void keep(std::uint64_t document, const Recording& recording) override;
  void letGo(std::uint64_t document) override;

  /// The connection, readable once the keeper is gone, writable when it takes messages; -1 for
  /// none.
  [[nodiscard]] int descriptor() const { return channel_ ? channel_->descriptor() : -1; }
  /// Number of keepers started so far: descriptor() is another one whenever it changes.
  [[nodiscard]] int starts() const { return starts_; }
  /// What the next message waits for: nothing, as there is none; the keeper, until descriptor() is
  /// writable; or the system, which has too little room just now and is asked again by
  /// sendPending().
  enum class Waiting { forNothing, forKeeper, forSystem };
  [[nodiscard]] Waiting waiting() const;
  /// The system's number of the keeper's process; -1 for none.
  [[nodiscard]] int keeperProcess() const { return process_ ? process_->number() : -1; }

  /// descriptor() is readable: starts a new keeper if the present one is gone.
  void check();
  /// descriptor() is writable, or the system may have room again: sends what waits.
  void sendPending();
  /// Called when descriptor() or waiting() may have changed.
  void setChangeHandler(std::function<void()> handler) { changed_ = std::move(handler); }

 private:
  void launch();
  void died();
  void reapFormer();
  void giveUp(int error);
  void changed() const;

  const std::string program_;
  std::map<std::uint64_t, Recording> recordings_;  // all that are kept
  std::deque<KeeperMessage> pending_;
  std::unique_ptr<platform::DescriptorChannel> channel_;
  std::unique_ptr<platform::SpawnedProgram> process_;
  std::vector<std::unique_ptr<platform::SpawnedProgram>> former_;  // not known to have ended
  std::chrono::steady_clock::time_point started_;
  int starts_ = 0;
  int failures_ = 0;
  bool isHeldUp_ = false;  // by the system
  bool isAvailable_ = true;
  std::function<void()> changed_;
};
