#include "platform/files/SecondRead.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace {

/// Holds its offsets as bytes; the given calls fail after a byte.
class FailingReads : public platform::File {
 public:
  explicit FailingReads(std::vector<int> errors) : errors_(std::move(errors)) {}

  platform::FileTransfer readAt(void* destination, std::uint64_t byteCount,
                                std::uint64_t offset) override {
    const int error = calls_ < errors_.size() ? errors_[calls_] : 0;
    ++calls_;
    const std::uint64_t moved = error == 0 ? byteCount : 1;
    for (std::uint64_t i = 0; i < moved; ++i) {
      static_cast<std::byte*>(destination)[i] = static_cast<std::byte>(offset + i);
    }
    return {.byteCount = moved, .error = error};
  }
  platform::FileTransfer writeAt(const void* /*data*/, std::uint64_t /*byteCount*/,
                                 std::uint64_t /*offset*/) override {
    return {};
  }
  std::uint64_t size() override { return 0; }
  int setSize(std::uint64_t /*byteCount*/) override { return ENOSYS; }

  [[nodiscard]] std::size_t calls() const { return calls_; }

 private:
  std::vector<int> errors_;
  std::size_t calls_ = 0;
};

TEST(SecondReadTest, ReadThatSucceedsIsOne) {
  FailingReads file({});
  std::array<std::byte, 4> bytes{};
  EXPECT_EQ(platform::readWithSecondTry(file, bytes.data(), 4, 7).byteCount, 4U);
  EXPECT_EQ(file.calls(), 1U);
}

TEST(SecondReadTest, ReadThatFailsIsContinuedWhereItFailed) {
  FailingReads file({EIO});
  std::array<std::byte, 4> bytes{};
  const auto transfer = platform::readWithSecondTry(file, bytes.data(), 4, 7);
  EXPECT_EQ(transfer.error, 0);
  EXPECT_EQ(transfer.byteCount, 4U);
  EXPECT_EQ(bytes, (std::array{std::byte{7}, std::byte{8}, std::byte{9}, std::byte{10}}));
}

TEST(SecondReadTest, SecondFailureIsToldWithWhatBothReturned) {
  FailingReads file({EIO, ESTALE});
  std::array<std::byte, 4> bytes{};
  const auto transfer = platform::readWithSecondTry(file, bytes.data(), 4, 7);
  EXPECT_EQ(transfer.error, ESTALE);
  EXPECT_EQ(transfer.byteCount, 2U);
  EXPECT_EQ(file.calls(), 2U);
}

}  // namespace
