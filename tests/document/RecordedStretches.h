#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

/// The plain model of a recording: stretches of numbered frames (support/NumberedFrames.h), one
/// after the other. All counts in frames.
///
/// Threads: one.
class RecordedStretches {
 public:
  struct Stretch {
    std::uint64_t number = 0;  ///< of its first frame
    std::uint64_t frames = 0;
  };

  [[nodiscard]] std::uint64_t length() const {
    std::uint64_t length = 0;
    for (const Stretch& stretch : stretches_) {
      length += stretch.frames;
    }
    return length;
  }

  /// What is heard from `from` on, up to `until`.
  [[nodiscard]] std::vector<Stretch> between(std::uint64_t from, std::uint64_t until) const {
    std::vector<Stretch> part;
    std::uint64_t at = 0;
    for (const Stretch& stretch : stretches_) {
      const std::uint64_t begin = std::max(from, at);
      const std::uint64_t end = std::min(until, at + stretch.frames);
      if (begin < end) {
        part.push_back({.number = stretch.number + (begin - at), .frames = end - begin});
      }
      at += stretch.frames;
    }
    return part;
  }

  /// Records over what is there, at most `at` the end, and beyond it.
  void record(std::uint64_t at, const Stretch& recorded) {
    const std::uint64_t end = length();
    auto all = between(0, at);
    add(all, recorded);
    for (const Stretch& stretch : between(at + recorded.frames, end)) {
      add(all, stretch);
    }
    stretches_ = std::move(all);
  }

  void cutAfter(std::uint64_t at) { stretches_ = between(0, at); }
  void cutBefore(std::uint64_t at) { stretches_ = between(at, length()); }

  [[nodiscard]] std::size_t count() const { return stretches_.size(); }

 private:
  static void add(std::vector<Stretch>& all, const Stretch& stretch) {
    if (!all.empty() && all.back().number + all.back().frames == stretch.number) {
      all.back().frames += stretch.frames;
    } else if (stretch.frames > 0) {
      all.push_back(stretch);
    }
  }

  std::vector<Stretch> stretches_;
};
