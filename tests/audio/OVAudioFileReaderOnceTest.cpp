// What is read of a file, and how often: a slow folder must not be asked for anything twice.
#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include "audio/OVAudioFileReader.h"
#include "platform/files/UserAudioFiles.h"
#include "support/TemporaryFolder.h"
#include "support/fakes/RecordingServices.h"
#include "support/programs/AudioFileTools.h"

namespace {

/// One file in memory that counts how often each of its bytes is read.
class CountedFile : public platform::UserAudioFiles {
 public:
  explicit CountedFile(std::string bytes) : bytes_(std::move(bytes)), times_(bytes_.size()) {}

  [[nodiscard]] Opened openForReading(const std::string&) override {
    return std::make_unique<Reads>(*this);
  }
  [[nodiscard]] Opened createForWriting(const std::string&) override { return ENOTSUP; }
  [[nodiscard]] Opened writeTo(int) override { return ENOTSUP; }

  [[nodiscard]] int most() const { return *std::max_element(times_.begin(), times_.end()); }
  [[nodiscard]] std::int64_t bytesRead() const {
    return std::count_if(times_.begin(), times_.end(), [](int times) { return times > 0; });
  }

 private:
  class Reads : public platform::File {
   public:
    explicit Reads(CountedFile& file) : file_(file) {}

    platform::FileTransfer readAt(void* destination, std::uint64_t byteCount,
                                  std::uint64_t offset) override {
      const std::uint64_t size = file_.bytes_.size();
      const std::uint64_t count = offset < size ? std::min(byteCount, size - offset) : 0;
      std::memcpy(destination, file_.bytes_.data() + (count > 0 ? offset : 0), count);
      for (std::uint64_t i = 0; i < count; ++i) {
        ++file_.times_[offset + i];
      }
      return {.byteCount = count, .error = 0};
    }
    platform::FileTransfer writeAt(const void*, std::uint64_t, std::uint64_t) override {
      return {};
    }
    std::uint64_t size() override { return file_.bytes_.size(); }
    int setSize(std::uint64_t) override { return ENOTSUP; }

   private:
    CountedFile& file_;
  };

  const std::string bytes_;
  std::vector<int> times_;
};

std::string encoded(const std::string& suffix, const std::vector<std::string>& options) {
  const support::TemporaryFolder folder;
  const std::string path = folder.file("a." + suffix);
  std::vector<std::string> command{"-f", "lavfi", "-i", "anoisesrc=d=60", "-b:a", "256k"};
  command.insert(command.end(), options.begin(), options.end());
  command.push_back(path);
  EXPECT_EQ(support::ffmpeg(command), "");
  return support::fileBytes(path);
}

TEST(OVAudioFileReaderOnceTest, NoByteOfABareStreamIsReadTwice) {
  const support::InstalledRecordingServices services;
  const std::string tag =
      "TAG" + std::string(125, 't');  // at the end, where it is looked for first
  const std::string mp3 = encoded("mp3", {"-c:a", "libmp3lame", "-id3v2_version", "0"});
  const std::string untagged =
      encoded("mp3", {"-c:a", "libmp3lame", "-id3v2_version", "0", "-write_xing", "0"});
  const std::string adts = encoded("aac", {"-c:a", "aac"});
  const std::string picture = std::string("ID3\3\0\0\0\x7F\x7F\x76", 10) + "APIC" +
                              std::string("\0\x1F\xFF\xEC\0\0\0image/jpeg\0\3\0", 20) +
                              std::string(0x1FFFEC - 14, 'p');  // 2 MB
  for (const auto& [name, bytes] :
       std::vector<std::pair<std::string, std::string>>{{"a.mp3", mp3},
                                                        {"b.mp3", mp3 + tag},
                                                        {"c.mp3", untagged},
                                                        {"d.mp3", untagged + tag},
                                                        {"e.mp3", picture + mp3},
                                                        {"f.mp3", picture + untagged + tag},
                                                        {"a.aac", adts},
                                                        {"b.aac", adts + tag},
                                                        {"c.aac", picture + adts + tag}}) {
    CountedFile file(bytes);
    const platform::Installed<platform::UserAudioFiles>::Scope installation(file);
    const auto reader = OVAudioFileReader::initWithFile(name);
    ASSERT_NE(reader, nullptr) << name;
    EXPECT_GT(reader->fileSizeInFrames(), 2'000'000) << name;
    const std::size_t header = bytes.size() - std::min(bytes.size(), mp3.size());
    EXPECT_LT(file.bytesRead(), static_cast<std::int64_t>(header + mp3.size() / 4))
        << name << ": loading begins at once";
    std::uint64_t frames = 0;
    while (const std::uint32_t count = reader->readFrameChunkWithSize(100'000)) {
      frames += count;
    }
    EXPECT_GE(frames, 2'646'000U) << name;
    EXPECT_EQ(file.most(), 1) << name;
    EXPECT_EQ(file.bytesRead(), static_cast<std::int64_t>(bytes.size())) << name;
    EXPECT_THAT(services->alerts(), testing::IsEmpty());
  }
}

}  // namespace
