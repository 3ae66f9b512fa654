#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "support/Sanitizers.h"

/// Compares real code with a plain, slow model of it over many random sequences of steps. A
/// sequence after which the two differ is shrunk in length and numbers while the difference
/// remains, and printed as a test ready to be pasted.
///
/// A pair holds one real object and its model:
///
///     struct Pair {
///       static constexpr const char* kName = "Pair";  // as it is written in C++
///       void apply(const modeltest::Step& step);      // does it to both; takes any numbers
///       std::string difference();                     // compares the two; "" when they are alike
///     };
///
/// Threads: one.
namespace modeltest {

/// One operation and its arguments; unused ones are 0.
struct Step {
  std::string what;
  std::uint64_t a = 0;
  std::uint64_t b = 0;
  std::uint64_t c = 0;
};
using Steps = std::vector<Step>;

/// As C++ code: {"cut", 3, 4}.
inline std::string asCode(const Step& step) {
  const std::array arguments{step.a, step.b, step.c};
  std::size_t used = arguments.size();
  while (used > 0 && arguments[used - 1] == 0) {
    --used;
  }
  std::ostringstream code;
  code << "{\"" << step.what << '"';
  for (std::size_t i = 0; i < used; ++i) {
    code << ", " << arguments[i] << (arguments[i] > 0x7fffffff ? "U" : "");
  }
  code << '}';
  return code.str();
}

struct Difference {
  std::size_t after = 0;  ///< the step after which the two differ
  std::string text;
};

/// The first difference that the steps cause on a new pair.
template <typename Pair>
std::optional<Difference> find(const Steps& steps) {
  Pair pair;
  for (std::size_t i = 0; i < steps.size(); ++i) {
    pair.apply(steps[i]);
    if (std::string text = pair.difference(); !text.empty()) {
      return Difference{i, std::move(text)};
    }
  }
  return std::nullopt;
}

/// The same as text, "" for none. Pasted tests expect this.
template <typename Pair>
std::string firstDifference(const Steps& steps) {
  const auto difference = find<Pair>(steps);
  return !difference ? ""
                     : "after step " + std::to_string(difference->after + 1) + ", " +
                           asCode(steps[difference->after]) + ": " + difference->text;
}

/// Shrinks a sequence while it still shows a difference, by removing steps and lowering numbers.
template <typename Pair>
class Shrinking {
 public:
  explicit Shrinking(Steps steps) : steps_(std::move(steps)) {}

  Steps run() {
    static_cast<void>(keepIfDifferent(steps_));
    while (takeOut() || lower()) {
    }
    return steps_;
  }

 private:
  static constexpr unsigned kMaxTries = 20'000;  // for one sequence; more is not worth the wait

  // Steps after the first difference are dropped too.
  bool keepIfDifferent(Steps candidate) {
    if (++tries_ > kMaxTries) {
      return false;
    }
    const auto difference = find<Pair>(candidate);
    if (!difference) {
      return false;
    }
    candidate.resize(difference->after + 1);
    steps_ = std::move(candidate);
    return true;
  }

  bool takeOut() {
    bool any = false;
    for (std::size_t count = std::max<std::size_t>(steps_.size() / 2, 1); count > 0; count /= 2) {
      for (std::size_t at = 0; at + count <= steps_.size();) {
        Steps fewer = steps_;
        const auto first = fewer.begin() + static_cast<std::ptrdiff_t>(at);
        fewer.erase(first, first + static_cast<std::ptrdiff_t>(count));
        if (keepIfDifferent(std::move(fewer))) {
          any = true;
        } else {
          ++at;
        }
      }
    }
    return any;
  }

  bool lower() {
    bool any = false;
    for (std::size_t at = 0; at < steps_.size(); ++at) {
      for (std::uint64_t Step::*const number : {&Step::a, &Step::b, &Step::c}) {
        while (at < steps_.size() && lower(at, number)) {
          any = true;
        }
      }
    }
    return any;
  }

  bool lower(std::size_t at, std::uint64_t Step::*number) {
    const std::uint64_t value = steps_[at].*number;
    std::uint64_t last = value;
    for (const std::uint64_t less :
         {std::uint64_t{0}, value / 2, value - value / 4, value - 8, value - 1}) {
      if (less < value && less != last) {
        Steps lower = steps_;
        lower[at].*number = last = less;
        if (keepIfDifferent(std::move(lower))) {
          return true;
        }
      }
    }
    return false;
  }

  Steps steps_;
  unsigned tries_ = 0;
};

/// A test with these steps, ready to be pasted.
template <typename Pair>
std::string asTest(const Steps& steps, std::uint64_t seed) {
  std::ostringstream code;
  code << "TEST(" << Pair::kName << ", DoesAsItsModelSinceSeed" << seed << ") {\n"
       << "  EXPECT_EQ(modeltest::firstDifference<" << Pair::kName << ">({\n";
  for (const Step& step : steps) {
    code << "                " << asCode(step) << ",\n";
  }
  code << "            }),\n            \"\");\n}\n";
  return code.str();
}

/// Runs `sequences` random sequences of `length` steps with seeds 1, 2, 3, … `draw(random, pair)`
/// makes each step and may examine the pair after the previous ones. "" for no difference,
/// otherwise the first one, shrunk, with its test.
template <typename Pair, typename Draw>
std::string findAmong(std::uint64_t sequences, std::size_t length, Draw draw) {
  for (std::uint64_t seed = 1; seed <= sequences; ++seed) {
    std::mt19937_64 random(seed);
    Pair pair;
    Steps steps;
    while (steps.size() < length) {
      steps.push_back(draw(random, pair));
      pair.apply(steps.back());
      if (!pair.difference().empty()) {
        const Steps shrunk = Shrinking<Pair>(steps).run();
        return firstDifference<Pair>(shrunk) + "\n\n" + asTest<Pair>(shrunk, seed);
      }
    }
  }
  return "";
}

/// Success if findAmong() finds no difference, otherwise a failure that describes it. Sanitizers
/// look at memory and threads, for which a fifth of the sequences is enough.
template <typename Pair, typename Draw>
testing::AssertionResult holds(std::uint64_t sequences, std::size_t length, Draw draw) {
  const std::uint64_t tried = support::kAnySanitizer ? (sequences + 4) / 5 : sequences;
  const std::string found = findAmong<Pair>(tried, length, draw);
  return found.empty() ? testing::AssertionSuccess() : testing::AssertionFailure() << found;
}

/// A random number below `end`, which must not be 0.
inline std::uint64_t below(std::mt19937_64& random, std::uint64_t end) {
  return std::uniform_int_distribution<std::uint64_t>(0, end - 1)(random);
}

/// Collects differences: tell("length", real, model) keeps the first pair that is not equal.
class Comparison {
 public:
  template <typename Real, typename Model>
  void tell(const std::string& what, const Real& real, const Model& model) {
    if (text_.empty() && !(real == model)) {
      std::ostringstream text;
      text << what << ": " << real << ", not " << model;
      text_ = text.str();
    }
  }

  /// The same for sequences; reports only their first different element.
  template <typename Sequence>
  void tellSequence(const std::string& what, const Sequence& real, const Sequence& model) {
    if (!text_.empty() || real == model) {
      return;
    }
    const auto [left, right] = std::mismatch(real.begin(), real.end(), model.begin(), model.end());
    std::ostringstream text;
    text << what << ": " << real.size() << " long, not " << model.size() << "; they part at "
         << left - real.begin();
    static_cast<void>(right);
    text_ = text.str();
  }

  [[nodiscard]] const std::string& text() const { return text_; }

 private:
  std::string text_;
};

}  // namespace modeltest
