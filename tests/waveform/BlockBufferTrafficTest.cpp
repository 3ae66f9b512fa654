// A writer, an editor, two readers and a generator of a summary on one block buffer, all at once.
//
// Whoever writes does a fixed amount of work, and the others go on as long as that takes. With
// ORVO_TEST_SECONDS in the environment it takes so many seconds (scripts/test --traffic).
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <bit>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <functional>
#include <latch>
#include <memory>
#include <mutex>
#include <random>
#include <shared_mutex>
#include <string>
#include <thread>
#include <vector>

#include "storage/OVBlockBuffer.h"
#include "support/PlainBlockBuffer.h"
#include "waveform/OVDynamicWaveForm.h"

namespace {

using support::PlainBlockBuffer;
using State = PlainBlockBuffer::State;

constexpr std::uint64_t kFrameBytes = 8;
constexpr std::uint64_t kMaxWrite = 64;         // frames
constexpr std::uint64_t kLongRecording = 4000;  // frames: from here on it does not grow

// A frame says where in the file it was written: its number there, 16 bits in each sample.
struct Frame {
  float left = 0.0F;
  float right = 0.0F;

  static Frame stamped(std::uint64_t number) {
    return {static_cast<float>(number & 0xffff) / 65536,
            static_cast<float>(number >> 16 & 0xffff) / 65536};
  }
  [[nodiscard]] std::uint64_t number() const {
    return static_cast<std::uint64_t>(left * 65536) | static_cast<std::uint64_t>(right * 65536)
                                                          << 16;
  }
};
static_assert(sizeof(Frame) == kFrameBytes);

std::vector<Frame> stampedFrames(std::uint64_t first, std::uint64_t count) {
  std::vector<Frame> frames;
  for (std::uint64_t i = 0; i < count; ++i) {
    frames.push_back(Frame::stamped(first + i));
  }
  return frames;
}

/// The numbers of the frames that a read gives.
std::vector<std::uint64_t> readNumbers(OVBlockBuffer& buffer, std::uint64_t frame,
                                       std::uint64_t count) {
  std::vector<Frame> frames(count);
  frames.resize(
      buffer.readDataInto(frames.data(), count * kFrameBytes, frame * kFrameBytes).frameCount);
  std::vector<std::uint64_t> numbers;
  for (const Frame& each : frames) {
    numbers.push_back(each.number());
  }
  return numbers;
}

/// So many rounds, or until the seconds are over.
class Rounds {
 public:
  explicit Rounds(std::uint64_t rounds) : rounds_(rounds) {
    if (const char* const text =
            std::getenv("ORVO_TEST_SECONDS")) {          // NOLINT(concurrency-mt-unsafe)
      seconds_ = std::chrono::seconds(std::atoi(text));  // NOLINT(cert-err34-c)
    }
  }

  [[nodiscard]] bool next() {
    return seconds_.count() > 0 ? std::chrono::steady_clock::now() - start_ < seconds_
                                : done_++ < rounds_;
  }

 private:
  const std::uint64_t rounds_;
  std::uint64_t done_ = 0;
  std::chrono::seconds seconds_{0};
  const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

void runTogether(const std::vector<std::function<void()>>& jobs) {
  std::latch start(static_cast<std::ptrdiff_t>(jobs.size()));
  std::vector<std::jthread> threads;
  for (const auto& job : jobs) {
    threads.emplace_back([&start, &job] {
      start.arrive_and_wait();
      job();
    });
  }
}

/// Extends a summary as long as `more` says, from the beginning now and then.
void generateWhile(OVDynamicWaveForm& summary, const std::function<bool()>& more) {
  for (std::uint64_t i = 0; more() && !testing::Test::HasFailure(); ++i) {
    summary.setShouldRegenerateWaveform(i % 8 == 0);
    summary.generate();
    std::vector<float> elements;
    summary.copyElementsInto(elements);
    for (const float element : elements) {
      ASSERT_TRUE(element >= 0.0F && element <= 1.0F) << element;
    }
  }
}

/// At rest: a summary that went through it all is, made anew, the same as one that saw nothing.
void expectFreshSummary(OVDynamicWaveForm& summary, const std::shared_ptr<OVBlockBuffer>& buffer) {
  const auto fresh = OVDynamicWaveForm::initWithBuffer(buffer);
  fresh->generate();
  summary.setShouldRegenerateWaveform(true);
  summary.generate();
  std::vector<float> elements;
  std::vector<float> freshElements;
  summary.copyElementsInto(elements);
  fresh->copyElementsInto(freshElements);
  EXPECT_EQ(elements, freshElements);
  EXPECT_EQ(summary.readerPos(), fresh->readerPos());
}

/// Every state that a buffer has gone through, by the plain model. Changes are planned, on the
/// model, and then carried out together as fast as the buffer takes them, while others read.
///
/// Threads: any; one at a time plans and carries out.
class History {
 public:
  History() { states_.push_back(std::make_shared<State>()); }

  /// `real` works on the buffer. `model` brings the model to each state that the buffer goes
  /// through meanwhile, and tells it with `keep`.
  void plan(
      std::function<void()> real,
      const std::function<void(PlainBlockBuffer&, const std::function<void()>& keep)>& model) {
    planned_.push_back(std::move(real));
    model(model_, [this] { plannedStates_.push_back(std::make_shared<State>(model_.live)); });
  }

  void carryOut() {
    {
      const std::unique_lock lock(statesLock_);
      states_.insert(states_.end(), plannedStates_.begin(), plannedStates_.end());
      while (states_.size() > kKept) {
        states_.pop_front();
        ++forgotten_;
      }
    }
    begun_ += plannedStates_.size();
    for (const auto& real : planned_) {
      real();
    }
    done_ += plannedStates_.size();
    planned_.clear();
    plannedStates_.clear();
  }

  [[nodiscard]] std::uint64_t done() const { return done_; }
  [[nodiscard]] std::uint64_t begun() const { return begun_; }
  [[nodiscard]] const State& now() const { return model_.live; }  ///< for who plans

  /// Whether the frames stood at this place in one of these states, whole and in order.
  [[nodiscard]] bool stood(const std::vector<std::uint64_t>& numbers, std::uint64_t frame,
                           std::uint64_t count, std::uint64_t first, std::uint64_t last) const {
    for (std::uint64_t number = first; number <= last; ++number) {
      if (stoodIn(*state(number), numbers, frame, count)) {
        return true;
      }
    }
    return false;
  }

 private:
  static constexpr std::size_t kKept = 20'000;  // states: no read lasts as long as so many changes

  [[nodiscard]] std::shared_ptr<const State> state(std::uint64_t number) const {
    const std::shared_lock lock(statesLock_);
    return states_.at(number - forgotten_);
  }

  static bool stoodIn(const State& state, const std::vector<std::uint64_t>& numbers,
                      std::uint64_t frame, std::uint64_t count) {
    std::uint64_t at = 0;
    while (at < count) {
      const std::uint64_t address = (frame + at) * kFrameBytes;
      const auto block = PlainBlockBuffer::locate(state, address);
      if (!block) {
        break;
      }
      const std::uint64_t in = address - block->linear_addr_start();
      std::uint64_t number = (block->file_offset_start() + in) / kFrameBytes;
      for (std::uint64_t left = (block->size() - in) / kFrameBytes; left > 0 && at < count;
           --left) {
        if (at >= numbers.size() || numbers[at++] != number++) {
          return false;
        }
      }
    }
    return at == numbers.size();
  }

  // Of whoever plans.
  PlainBlockBuffer model_;
  std::vector<std::function<void()>> planned_;
  std::vector<std::shared_ptr<const State>> plannedStates_;

  mutable std::shared_mutex statesLock_;
  std::deque<std::shared_ptr<const State>> states_;  // guarded by statesLock_
  std::uint64_t forgotten_ = 0;                      // guarded by statesLock_

  // Numbers of states. Raised by whoever carries out: begun_ before the buffer can be in one of the
  // planned states, done_ when it has left all earlier ones.
  std::atomic<std::uint64_t> begun_{0};
  std::atomic<std::uint64_t> done_{0};
};

// The writer and the editor take turns, so that what stood when is known; reads come at any time.
class BlockBufferTrafficTest : public testing::Test {
 protected:
  // Mostly over what is there, so that the recording has many blocks.
  void planWrite(std::mt19937& random) {
    const std::uint64_t length = history_.now().fillSize / kFrameBytes;
    const bool inside = random() % 3 != 0 || length > kLongRecording;
    const std::uint64_t frame = inside ? random() % (length + 1) : length;
    const std::uint64_t count = random() % 20 == 0 ? 0 : 1 + random() % kMaxWrite;
    const OVBlock block(frame * kFrameBytes, written_ * kFrameBytes, count * kFrameBytes);
    history_.plan(
        [this, block, frames = stampedFrames(written_, count)] {
          buffer_->writeData(frames.data(), block.linear_addr_start(),
                             static_cast<std::uint32_t>(block.size()));
        },
        [&](PlainBlockBuffer& model, const auto& keep) {
          model.map(block);
          keep();
          if (model.added >= 21) {
            model.optimize();
            keep();
          }
        });
    written_ += count;
  }

  void planCut(std::mt19937& random) {
    const std::uint64_t length = history_.now().fillSize / kFrameBytes;
    const std::uint64_t frame = random() % (length / 8 + 1);
    if (random() % 2 == 0) {
      history_.plan([=, this] { buffer_->cutoffBufferAfterPosition(length - frame); },
                    [=](PlainBlockBuffer& model, const auto& keep) {
                      model.cutAfter(length - frame);
                      keep();
                    });
    } else {
      history_.plan([=, this] { buffer_->cutoffBufferBeforePosition(frame); },
                    [=](PlainBlockBuffer& model, const auto& keep) {
                      model.cutBefore(frame);
                      keep();
                    });
    }
  }

  void plan(void (OVBlockBuffer::*real)(), void (PlainBlockBuffer::*plain)()) {
    history_.plan([=, this] { (buffer_.get()->*real)(); },
                  [=](PlainBlockBuffer& model, const auto& keep) {
                    (model.*plain)();
                    keep();
                  });
  }

  void planEdit(std::mt19937& random) {
    if (random() % 30 == 0) {
      return plan(&OVBlockBuffer::setWaypoint, &PlainBlockBuffer::setWaypoint);
    }
    switch (random() % 5) {
      case 0:
        return plan(&OVBlockBuffer::redo, &PlainBlockBuffer::redo);
      case 1:
        return plan(&OVBlockBuffer::undo, &PlainBlockBuffer::undo);
      case 2:
        return plan(&OVBlockBuffer::optimize, &PlainBlockBuffer::optimize);
      default:
        return planCut(random);
    }
  }

  void writeSome(std::mt19937& random) {
    const std::lock_guard lock(changing_);
    for (int i = 0; i < 30; ++i) {
      planWrite(random);
    }
    history_.carryOut();
  }

  void editSome(std::mt19937& random) {
    const std::lock_guard lock(changing_);
    for (int i = 0; i < 8; ++i) {
      planEdit(random);
    }
    history_.carryOut();
  }

  void readOnce(std::mt19937& random) {
    const std::uint64_t length = buffer_->bufferSizeInFrames();
    const std::uint64_t frame = random() % (length + 8);
    const std::uint64_t count = 1 + random() % 2000;
    const std::uint64_t first = history_.done();
    const std::vector<std::uint64_t> numbers = readNumbers(*buffer_, frame, count);
    const std::uint64_t last = history_.begun();
    ASSERT_TRUE(history_.stood(numbers, frame, count, first, last))
        << numbers.size() << " of " << count << " frames at " << frame << ", states " << first
        << " to " << last;
    besideChanges_ += first == last ? 0 : 1;
  }

  // `work` with a random source of its own, so many times.
  std::function<void()> changing(std::uint64_t count, unsigned seed,
                                 const std::function<void(std::mt19937&)>& work) {
    ++changers_;
    return [=, this] {
      std::mt19937 random(seed);
      for (Rounds rounds(count); rounds.next() && !HasFailure();) {
        work(random);
      }
      --changers_;
    };
  }

  // Reads as long as somebody changes something, and once more.
  std::function<void()> reading(unsigned seed) {
    return [=, this] {
      std::mt19937 random(seed);
      while (changers_ > 0 && !HasFailure()) {
        readOnce(random);
      }
      readOnce(random);
    };
  }

  std::mutex changing_;            // held by whoever changes the buffer
  std::atomic<int> changers_ = 0;  // threads that have not done all their changes
  std::uint64_t written_ = 0;
  const std::shared_ptr<OVBlockBuffer> buffer_ = OVBlockBuffer::init();
  History history_;
  std::atomic<std::uint64_t> besideChanges_{0};
};

TEST_F(BlockBufferTrafficTest, EveryReadGivesWhatStoodThereAtOneMomentOfTheRead) {
  ASSERT_NE(buffer_, nullptr);
  const auto summary = OVDynamicWaveForm::initWithBuffer(buffer_);
  plan(&OVBlockBuffer::setWaypoint, &PlainBlockBuffer::setWaypoint);
  history_.carryOut();
  const auto write = changing(300, 1, [this](std::mt19937& random) { writeSome(random); });
  const auto edit = changing(300, 2, [this](std::mt19937& random) { editSome(random); });
  const auto generate = [&] { generateWhile(*summary, [this] { return changers_ > 0; }); };
  runTogether({write, edit, reading(3), reading(4), generate});
  EXPECT_EQ(buffer_->blocklist(), history_.now().blocks);
  expectFreshSummary(*summary, buffer_);
  RecordProperty("readsBesideChanges", std::to_string(besideChanges_));
}

// Here the writer and the editor do not wait for each other either. No cut moves audio, so each
// frame belongs at the place at which it was written, whatever stands there at the moment.
class BlockBufferTrafficUnorderedTest : public testing::Test {
 protected:
  static constexpr std::uint64_t kWriteFrames = 64;
  static constexpr std::uint64_t kMaxWrites = 1 << 20;
  static constexpr int kMaxWaypoints = 500;  // they are kept for good

  void write() {
    std::mt19937 random(1);
    Rounds rounds(8000);
    for (std::uint64_t i = 0; i < kMaxWrites && rounds.next(); ++i) {
      const std::uint64_t length = buffer_->bufferSizeInFrames();
      const std::uint64_t frame =
          random() % 3 == 0 || length > 40'000 ? random() % (length + 1) : length;
      places_[i].store(frame, std::memory_order_relaxed);
      begun_.store(i + 1, std::memory_order_release);
      const auto frames = stampedFrames(i * kWriteFrames, kWriteFrames);
      buffer_->writeData(frames.data(), frame * kFrameBytes, kWriteFrames * kFrameBytes);
    }
    isWriting_ = false;
  }

  void read(unsigned seed) {
    std::mt19937 random(seed);
    while (isWriting_ && !HasFailure()) {
      const std::uint64_t first = random() % (buffer_->bufferSizeInFrames() + 8);
      std::uint64_t frame = first;
      for (const std::uint64_t number : readNumbers(*buffer_, first, 1000)) {
        ASSERT_LT(number / kWriteFrames, begun_.load(std::memory_order_acquire));
        const std::uint64_t place = places_[number / kWriteFrames].load(std::memory_order_relaxed);
        ASSERT_EQ(place + number % kWriteFrames, frame++);
      }
    }
  }

  void edit() {
    for (int edits = 0; isWriting_; ++edits) {
      if (edits < kMaxWaypoints) {
        buffer_->setWaypoint();
      }
      buffer_->cutoffBufferAfterPosition(buffer_->bufferSizeInFrames() / 2);
      buffer_->undo();
      buffer_->redo();
      buffer_->undo();
      buffer_->optimize();
    }
  }

  const std::shared_ptr<OVBlockBuffer> buffer_ = OVBlockBuffer::init();
  // Frames: where each write went.
  std::vector<std::atomic<std::uint64_t>> places_ =
      std::vector<std::atomic<std::uint64_t>>(kMaxWrites);
  std::atomic<std::uint64_t> begun_{0};  // writes
  std::atomic<bool> isWriting_ = true;   // the others go on as long as this
};

TEST_F(BlockBufferTrafficUnorderedTest, EveryFrameReadWasWrittenAtItsPlace) {
  ASSERT_NE(buffer_, nullptr);
  const auto summary = OVDynamicWaveForm::initWithBuffer(buffer_);
  runTogether({[this] { write(); }, [this] { edit(); }, [this] { read(2); }, [this] { read(3); },
               [&] { generateWhile(*summary, [this] { return isWriting_.load(); }); }});
  expectFreshSummary(*summary, buffer_);
}

}  // namespace
