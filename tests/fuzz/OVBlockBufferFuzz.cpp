// Any bytes as operations on a block buffer: writes anywhere, cuts on both sides, waypoints, undo,
// redo, roll-back and merging. After each one, the list, the length, the waypoints, what the
// delegate was told, looked up places, bytes read and levels must be those of the plain model.
#include <vector>

#include "fuzz/FuzzTarget.h"
#include "storage/BlockBufferPair.h"

namespace {

using modeltest::Step;

constexpr unsigned kMaxSteps = 200;

/// Turns bytes into steps. In small spaces blocks often touch.
class Steps {
 public:
  explicit Steps(fuzz::Input& input) : input_(input) {
    const std::uint8_t shape = input.byte();
    grain_ = (shape & 1) != 0 ? 1 : 8;
    space_ = (shape & 2) != 0 ? 4096 : 64;
    longest_ = (shape & 4) != 0 ? 256 : 24;
    isWild_ = (shape & 8) != 0;
  }

  Step next(const support::PlainBlockBuffer& model) {
    switch (input_.byte() % 16) {
      case 0:
        return {"cutAfter", position(model)};
      case 1:
        return {"cutBefore", position(model)};
      case 2:
        return {"waypoint"};
      case 3:
        return {"undo"};
      case 4:
        return {"redo"};
      case 5:
        return {"rollBack"};
      case 6:
        return {"optimize"};
      case 7:
        return {"reverse"};
      case 8:
      case 9:
        return write(model.live.fillSize < 4 * space_ ? model.live.fillSize : 0);
      case 10:
        return write(edge(model));
      case 11:
        return write(isWild_ ? support::kHighestAddress - input_.number(2) % space_ : 0);
      default:
        return write(input_.number(2) % (space_ / grain_) * grain_);
    }
  }

 private:
  Step write(std::uint64_t address) {
    const std::uint64_t size = input_.number(2) % (longest_ / grain_ + 1) * grain_;
    return {"write", address, size, size + address % 1000};
  }

  std::uint64_t edge(const support::PlainBlockBuffer& model) {
    const std::vector<OVBlock>& blocks = model.live.blocks;
    const std::uint8_t number = input_.byte();
    if (blocks.empty()) {
      return 0;
    }
    const OVBlock& block = blocks[number / 2 % blocks.size()];
    const std::uint64_t address = number % 2 == 0 ? block.end() : block.linear_addr_start();
    return isWild_ || address < 4 * space_ ? address : 0;
  }

  // In frames.
  std::uint64_t position(const support::PlainBlockBuffer& model) {
    const std::uint64_t end = model.live.fillSize / 8;
    switch (input_.byte() % 8) {
      case 0:
        return 0;
      case 1:
      case 2:
        return edge(model) / 8;
      case 3:
        return isWild_ ? end + input_.byte() : end;
      case 4:
        return isWild_ ? support::kHighestAddress - input_.number(2) : end;
      default:
        return input_.number(2) % (std::min(end, space_) + 1);
    }
  }

  fuzz::Input& input_;
  std::uint64_t grain_ = 8;     // addresses and sizes are multiples of this
  std::uint64_t space_ = 64;    // bytes, in which most writes are
  std::uint64_t longest_ = 24;  // bytes of a write
  bool isWild_ = false;         // cuts beyond the end, addresses near 2^64
};

}  // namespace

void fuzz::prepare() {}

void fuzz::execute(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  Steps steps(input);
  support::BlockBufferPair pair;
  for (unsigned i = 0; i < kMaxSteps && !input.empty(); ++i) {
    const Step step = steps.next(pair.model());
    pair.apply(step);
    const std::string difference = pair.difference();
    require(difference.empty(), "after " + modeltest::asCode(step) + ": " + difference);
  }
}
