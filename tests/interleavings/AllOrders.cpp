#include "interleavings/AllOrders.h"

#include <algorithm>
#include <condition_variable>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>

#include <gtest/gtest.h>

#include "interleavings/RaceWatch.h"

namespace interleavings {
namespace {

constexpr int kNobody = -1;
constexpr std::uint64_t kMaximumSteps = 100'000;  // of one run

// Decisions of a run, in order; the next run takes the last one that has another option.
class Path {
 public:
  void begin() { depth_ = 0; }

  std::size_t take(std::size_t options) {
    if (depth_ == decisions_.size()) {
      decisions_.push_back({0, options});
    }
    Decision& decision = decisions_[depth_++];
    if (decision.options != options) {
      std::fputs("the same order leads elsewhere: a thread does not do the same again\n", stderr);
      std::abort();
    }
    return decision.taken;
  }

  // False when every one was taken.
  bool next() {
    while (!decisions_.empty() && decisions_.back().taken + 1 == decisions_.back().options) {
      decisions_.pop_back();
    }
    if (decisions_.empty()) {
      return false;
    }
    ++decisions_.back().taken;
    return true;
  }

 private:
  struct Decision {
    std::size_t taken;
    std::size_t options;
  };
  std::vector<Decision> decisions_;
  std::size_t depth_ = 0;
};

class Run;
Run* current = nullptr;
thread_local int self = kNobody;

class Run {
 public:
  Run(Path& path, int preemptions, const Threads& threads)
      : path_(path), preemptionsLeft_(preemptions), members_(threads.bodies.size()) {
    current = this;
    beginWatch();
    for (std::size_t number = 1; number < threads.bodies.size(); ++number) {
      members_[number].thread =
          std::thread([this, number, &body = threads.bodies[number]] { live(number, body); });
    }
    self = kNobody;
    pass();
    live(0, threads.bodies[0]);
    for (Member& member : members_) {
      if (member.thread.joinable()) {
        member.thread.join();
      }
    }
    current = nullptr;
  }

  // The thread goes on at once or after others, when `isReady`, if any, is true.
  void leave(std::function<bool()> isReady) {
    members_[index()].isReady = std::move(isReady);
    if (++steps_ > kMaximumSteps) {
      giveUp("the run does not end");
    }
    pass();
    await();
  }

  std::uint64_t steps() const { return steps_; }

  bool isAlone() const {
    return std::count_if(members_.begin(), members_.end(),
                         [](const Member& member) { return !member.hasEnded; }) == 1;
  }

  int choose(int options) {
    return static_cast<int>(path_.take(static_cast<std::size_t>(options)));
  }
  const std::string& order() const { return order_; }

 private:
  struct Member {
    std::thread thread;
    std::function<bool()> isReady;
    bool hasEnded = false;
    std::condition_variable turn;
  };

  static std::size_t index() { return static_cast<std::size_t>(self); }

  void live(std::size_t number, const std::function<void()>& body) {
    self = static_cast<int>(number);
    await();
    body();
    members_[number].hasEnded = true;
    ++steps_;
    pass();
    self = kNobody;
  }

  bool canGoOn(std::size_t number) const {
    const Member& member = members_[number];
    return !member.hasEnded && (!member.isReady || member.isReady());
  }

  // The running thread first, since to stay is no preemption.
  std::vector<std::size_t> ready() const {
    std::vector<std::size_t> result;
    const bool stays = self != kNobody && canGoOn(index());
    if (stays) {
      result.push_back(index());
    }
    for (std::size_t number = 0; number < members_.size(); ++number) {
      if ((!stays || preemptionsLeft_ > 0) && number != static_cast<std::size_t>(self) &&
          canGoOn(number)) {
        result.push_back(number);
      }
    }
    return result;
  }

  void pass() {
    const Unwatched here;
    const std::vector<std::size_t> options = ready();
    if (options.empty()) {
      for (const Member& member : members_) {
        if (!member.hasEnded) {
          giveUp("no thread can go on");
        }
      }
      return;
    }
    const std::size_t next = options.size() == 1 ? options[0] : options[path_.take(options.size())];
    if (next != static_cast<std::size_t>(self) && self != kNobody && options[0] == index()) {
      --preemptionsLeft_;
    }
    order_ += static_cast<char>('0' + next);
    const std::lock_guard lock(mutex_);
    running_ = next;
    members_[next].turn.notify_one();
  }

  void await() {
    std::unique_lock lock(mutex_);
    members_[index()].turn.wait(lock, [this] { return running_ == index(); });
  }

  [[noreturn]] void giveUp(const char* why) {
    std::fprintf(stderr, "%s, after the order %s\n", why, order_.c_str());
    std::abort();
  }

  Path& path_;
  int preemptionsLeft_;
  std::uint64_t steps_ = 0;
  std::string order_;
  std::vector<Member> members_;
  std::mutex mutex_;
  std::optional<std::size_t> running_;
};

}  // namespace

std::uint64_t tryAllOrders(int preemptions, const std::function<Threads()>& make) {
  Path path;
  std::uint64_t orders = 0;
  do {
    path.begin();
    const Threads threads = make();
    const Run run(path, preemptions, threads);
    threads.atTheEnd();
    ++orders;
    if (testing::Test::HasFailure()) {
      ADD_FAILURE() << "in order number " << orders << ": " << run.order();
      break;
    }
  } while (path.next());
  testing::Test::RecordProperty("orders", std::to_string(orders));
  return orders;
}

bool isInRun() {
  return self != kNobody;
}

std::size_t threadOfRun() {
  return static_cast<std::size_t>(self);
}

void step() {
  if (isInRun()) {
    current->leave(nullptr);
  }
}

void waitUntil(const std::function<bool()>& isTrue) {
  if (isInRun()) {
    current->leave(isTrue);
  }
}

std::uint64_t steps() {
  return isInRun() ? current->steps() : 0;
}

void waitForAnotherThread() {
  if (isInRun()) {
    current->leave([seen = steps() + 1] { return current->steps() > seen || current->isAlone(); });
  }
}

int choose(int options) {
  return isInRun() ? current->choose(options) : 0;
}

}  // namespace interleavings
