#include "storage/FileStretch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "support/fakes/FailingTemporaryFiles.h"

namespace {

class FileStretchTest : public testing::Test {
 protected:
  // A file of `count` bytes, of which no 251 in a row are alike.
  void fill(std::uint64_t count) {
    content_.resize(count);
    for (std::uint64_t at = 0; at < count; ++at) {
      content_[at] = static_cast<char>(at % 251);
    }
    ASSERT_EQ(file_->writeAt(content_.data(), count, 0).byteCount, count);
  }

  std::string expected(const std::vector<FileStretch>& stretches) const {
    std::string bytes;
    for (const FileStretch& stretch : stretches) {
      bytes += content_.substr(stretch.fileOffset, stretch.byteCount);
    }
    return bytes;
  }

  std::string read(const std::vector<FileStretch>& stretches) {
    std::string bytes(byteCountOf(stretches), '\xFF');
    const std::uint64_t before = files_.reads();
    got_ = readStretches(*file_, stretches, bytes.data());
    reads_ = files_.reads() - before;
    return bytes.substr(0, got_.byteCount);
  }

  // Pieces of `size` bytes that lie at two places of the file in turn.
  static std::vector<FileStretch> interleaved(std::uint64_t count, std::uint64_t size) {
    std::vector<FileStretch> stretches;
    for (std::uint64_t number = 0; number < count; ++number) {
      stretches.push_back(
          {.fileOffset = (number / 2 + (number % 2) * (count + 1) / 2) * size, .byteCount = size});
    }
    return stretches;
  }

  support::FailingTemporaryFiles files_;
  std::unique_ptr<platform::File> file_ =
      std::move(files_.createUnlinked("/nowhere/aXXXXXX")->file);
  std::string content_;
  platform::FileTransfer got_;
  std::uint64_t reads_ = 0;
};

TEST_F(FileStretchTest, OfNothingGivesNothing) {
  EXPECT_EQ(read({}), "");
  EXPECT_EQ(reads_, 0U);
  EXPECT_EQ(got_.error, 0);
}

TEST_F(FileStretchTest, FewAreReadOneByOneInTheirOrder) {
  fill(1000);
  const std::vector<FileStretch> stretches = {{500, 10}, {0, 3}, {990, 10}};
  EXPECT_EQ(read(stretches), expected(stretches));
  EXPECT_EQ(reads_, 3U);
}

TEST_F(FileStretchTest, ManyThatAreNeighboursInTheFileAreReadTogether) {
  fill(std::uint64_t{128} * 512);
  const auto stretches = interleaved(512, 128);
  EXPECT_EQ(read(stretches), expected(stretches));
  EXPECT_EQ(reads_, 1U) << "the two halves are neighbours too";
}

TEST_F(FileStretchTest, OneReadTakesAtMost64KiB) {
  fill(std::uint64_t{48} * 1000 * 20);
  const auto stretches = interleaved(20, 48'000);
  EXPECT_EQ(read(stretches), expected(stretches));
  EXPECT_EQ(reads_, 20U) << "none has room for a second";
  const auto shorter = interleaved(64, 2048);
  EXPECT_EQ(read(shorter), expected(shorter));
  EXPECT_EQ(reads_, 2U);
}

TEST_F(FileStretchTest, ManyThatLieApartAreReadEachByItself) {
  fill(10'000);
  std::vector<FileStretch> stretches;
  for (std::uint64_t number = 0; number < 20; ++number) {
    stretches.push_back({.fileOffset = (19 - number) * 100, .byteCount = 99});
  }
  EXPECT_EQ(read(stretches), expected(stretches));
  EXPECT_EQ(reads_, 20U);
}

TEST_F(FileStretchTest, OneOfThemMayBeLongerThanWhatIsReadTogether) {
  fill(400'000);
  std::vector<FileStretch> stretches = interleaved(30, 64);
  stretches.insert(stretches.begin() + 7, {1920, 300'000});
  stretches.push_back({301'920, 0});
  stretches.push_back({301'920, 80});
  EXPECT_EQ(read(stretches), expected(stretches));
}

TEST_F(FileStretchTest, TheSameBytesMayBeAskedForTwice) {
  fill(10'000);
  std::vector<FileStretch> stretches = interleaved(20, 50);
  stretches.insert(stretches.end(), 5, {25, 100});
  EXPECT_EQ(read(stretches), expected(stretches));
}

TEST_F(FileStretchTest, EmptyOnesAmongManyGiveNothing) {
  fill(10'000);
  std::vector<FileStretch> stretches = interleaved(20, 50);
  for (const std::uint64_t at : {0U, 50U, 500U, 9999U}) {
    stretches.insert(stretches.begin() + 3, {at, 0});
  }
  EXPECT_EQ(read(stretches), expected(stretches));
}

TEST_F(FileStretchTest, EndWhereTheFileEndsThoughLaterOnesAreThere) {
  fill(2000);
  std::vector<FileStretch> stretches = interleaved(20, 64);
  stretches.insert(stretches.begin() + 5, {1990, 64});
  const std::string whole = expected(stretches);  // without the bytes behind the file's end
  const std::string got = read(stretches);
  EXPECT_EQ(got, whole.substr(0, 5 * 64 + 10));
  EXPECT_EQ(got_.error, 0);
}

TEST_F(FileStretchTest, OfManyAFailureIsToldAsOfOne) {
  fill(10'000);
  files_.failReads(EIO);
  EXPECT_EQ(read(interleaved(100, 64)), "");
  EXPECT_EQ(got_.error, EIO);
}

TEST_F(FileStretchTest, ReadsInShortStepsGiveTheSame) {
  fill(10'000);
  files_.shortenReads(7);
  const auto stretches = interleaved(100, 64);
  EXPECT_EQ(read(stretches), expected(stretches));
}

TEST_F(FileStretchTest, AnyOfThemGiveTheirBytesInTheirOrder) {
  fill(200'000);
  std::mt19937 random(7);
  for (int round = 0; round < 300; ++round) {
    std::vector<FileStretch> stretches;
    std::uint64_t place = 0;
    while (place < 190'000 && stretches.size() < 200) {
      const std::uint64_t count = random() % 8 == 0 ? random() % 30'000 : random() % 300;
      stretches.push_back({place, std::min<std::uint64_t>(count, 200'000 - place)});
      place += count + (random() % 2) * (random() % 500);
    }
    std::shuffle(stretches.begin(), stretches.end(), random);
    ASSERT_EQ(read(stretches), expected(stretches)) << "round " << round;
    ASSERT_EQ(got_.error, 0);
  }
}

}  // namespace
