#include "platform/ffmpeg/AudioFileView.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <memory>
#include <string>

#include <gmock/gmock.h>

#include "support/fakes/TestUserAudioFiles.h"

namespace platform {
namespace {

class AudioFileViewTest : public testing::Test {
 protected:
  AudioFileView view(const std::string& bytes) {
    storage_.setBytes(bytes);
    file_ = *storage_.openForReading("a");
    return {*file_, bytes.size()};
  }

  static std::string read(AudioFileView& view, std::uint64_t offset, std::size_t count) {
    std::string bytes(count, '\0');
    std::size_t done = 0;
    while (done < count) {
      const FileTransfer transfer = view.readAt(bytes.data() + done, count - done, offset + done);
      if (transfer.byteCount == 0) {
        break;
      }
      done += transfer.byteCount;
    }
    return bytes.substr(0, done);
  }

  static std::string numbered(std::size_t count) {
    std::string bytes(count, '\0');
    for (std::size_t i = 0; i < count; ++i) {
      bytes[i] = static_cast<char>(i * 31 + i / 251);
    }
    return bytes;
  }

  support::TestUserAudioFiles storage_;
  std::unique_ptr<File> file_;
};

TEST_F(AudioFileViewTest, BytesThatWereReadAreNotReadAgain) {
  const std::string bytes = numbered(10'000);
  AudioFileView all = view(bytes);
  EXPECT_EQ(read(all, 9000, 1000), bytes.substr(9000));
  EXPECT_EQ(read(all, 2000, 500), bytes.substr(2000, 500));
  EXPECT_EQ(all.bytesRead(), 1500U);
  EXPECT_TRUE(read(all, 0, 20'000) == bytes);
  EXPECT_EQ(all.bytesRead(), bytes.size());
  all.stopRemembering();
  EXPECT_TRUE(read(all, 0, 20'000) == bytes);
  EXPECT_EQ(all.bytesRead(), bytes.size());
}

TEST_F(AudioFileViewTest, WhatIsFurthestOnIsRememberedLongest) {
  const std::string bytes = numbered(3 * AudioFileView::kMaxRemembered);
  constexpr std::size_t kPart = AudioFileView::kMaxRemembered / 8;
  AudioFileView all = view(bytes);
  static_cast<void>(read(all, bytes.size() - 128, 128));
  for (std::size_t offset = 0; offset + kPart < bytes.size(); offset += kPart) {
    static_cast<void>(read(all, offset, kPart));
  }
  const std::uint64_t before = all.bytesRead();
  EXPECT_EQ(read(all, bytes.size() - 128, 128), bytes.substr(bytes.size() - 128));
  EXPECT_TRUE(read(all, bytes.size() - 2 * kPart, kPart) ==
              bytes.substr(bytes.size() - 2 * kPart, kPart));
  EXPECT_EQ(all.bytesRead(), before);
  EXPECT_EQ(read(all, 0, 10), bytes.substr(0, 10));
  EXPECT_EQ(all.bytesRead(), before + 10) << "only so much is remembered";
}

TEST_F(AudioFileViewTest, ALargeReadLeavesWhatIsRememberedBehindIt) {
  constexpr std::size_t kLarge = AudioFileView::kMaxRemembered;  // a picture in a tag
  const std::string bytes = numbered(kLarge + 5000);
  AudioFileView all = view(bytes);
  EXPECT_EQ(read(all, kLarge, 2000), bytes.substr(kLarge, 2000));
  EXPECT_TRUE(read(all, 0, kLarge) == bytes.substr(0, kLarge));
  EXPECT_EQ(read(all, kLarge, 2000), bytes.substr(kLarge, 2000));
  EXPECT_TRUE(read(all, 2000, kLarge - 2000) == bytes.substr(2000, kLarge - 2000));
  EXPECT_EQ(all.bytesRead(), kLarge + 2000);
}

TEST_F(AudioFileViewTest, ShowsCorrectionsWhereverAReadBegins) {
  AudioFileView all = view("0123456789");
  all.correct(3, "abc");
  EXPECT_EQ(read(all, 0, 10), "012abc6789");
  EXPECT_EQ(read(all, 4, 1), "b");
  EXPECT_EQ(read(all, 5, 3), "c67");
  EXPECT_EQ(all.peek(0, 4), "012a");
}

TEST_F(AudioFileViewTest, EndsWhereItIsTold) {
  AudioFileView all = view("0123456789");
  all.endAt(6);
  EXPECT_EQ(all.size(), 6U);
  EXPECT_EQ(read(all, 4, 10), "45");
  EXPECT_EQ(read(all, 6, 10), "");
  EXPECT_EQ(all.peek(0, 10), "012345");
}

TEST_F(AudioFileViewTest, KeepsTheFirstErrorAndAsksAgainForWhatFailed) {
  AudioFileView all = view(std::string(1000, 'x'));
  storage_.failReadsFrom(500);
  EXPECT_EQ(read(all, 0, 1000).size(), 500U);
  EXPECT_EQ(all.firstError(), EIO);
  storage_.failReadsFrom(support::TestUserAudioFiles::kUnlimited);
  EXPECT_EQ(read(all, 0, 1000).size(), 1000U);
  EXPECT_EQ(all.firstError(), EIO);
}

}  // namespace
}  // namespace platform
