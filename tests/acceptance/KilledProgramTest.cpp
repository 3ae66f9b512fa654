#include "acceptance/KilledProgramTest.h"

#include <algorithm>
#include <csignal>
#include <filesystem>

#include <fcntl.h>
#include <unistd.h>

#include "platform/files/PosixFile.h"
#include "storage/JournalReplay.h"
#include "support/programs/AudioFileTools.h"

using namespace support;

namespace {

namespace fs = std::filesystem;

/// The open files of a process whose target contains a text, oldest first.
std::vector<std::string> openFilesOf(pid_t process, const std::string& part) {
  std::vector<int> numbers;
  std::error_code gone;
  const std::string folder = "/proc/" + std::to_string(process) + "/fd/";
  for (const auto& entry : fs::directory_iterator(folder, gone)) {
    const auto target = fs::read_symlink(entry.path(), gone);
    if (!gone && target.string().find(part) != std::string::npos) {
      numbers.push_back(std::stoi(entry.path().filename().string()));
    }
  }
  std::sort(numbers.begin(), numbers.end());
  std::vector<std::string> paths;
  paths.reserve(numbers.size());
  for (const int number : numbers) {
    paths.push_back(folder + std::to_string(number));
  }
  return paths;
}

}  // namespace

KilledProgramTest::~KilledProgramTest() {
  release();
}

void KilledProgramTest::release() {
  for (auto* const held : {&audio_, &journals_}) {
    for (const int descriptor : *held) {
      ::close(descriptor);
    }
    held->clear();
  }
}

void KilledProgramTest::startWithKeeper(RunningOrvo::Options options) {
  options.dataFolder = data_;
  options.temporaryFolder = temporary_;
  ASSERT_NO_FATAL_FAILURE(startOrvo(options));
  ASSERT_TRUE(eventually([&] { return orvo_->keeperPid() != 0; }));
}

std::vector<std::string> KilledProgramTest::recovered() const {
  return fs::exists(recoveredFolder()) ? names(recoveredFolder()) : std::vector<std::string>();
}

Samples KilledProgramTest::recoveredAudio(std::size_t file) const {
  const auto all = recovered();
  return file < all.size() ? decodedByFfmpeg(recoveredFolder() + "/" + all[file]) : Samples();
}

void KilledProgramTest::hold(pid_t process) {
  release();
  for (const std::string& path : openFilesOf(process, temporary_ + "/orvo")) {
    audio_.push_back(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  }
  for (const std::string& path : openFilesOf(process, "memfd:orvo journal")) {
    journals_.push_back(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  }
}

// The keeper gets both in one message, and each takes the lowest number that is free.
void KilledProgramTest::holdWhatIsKept(std::size_t documents) {
  ASSERT_TRUE(eventually([&] {
    hold(orvo_->keeperPid());
    return journals_.size() == documents && audio_.size() == documents;
  })) << journals_.size()
      << " journals, " << audio_.size() << " files";
}

void KilledProgramTest::endBy(int signal) {
  hold();
  const pid_t keeper = orvo_->keeperPid();
  ASSERT_NE(keeper, 0);
  orvo_->process().signal(signal);
  ASSERT_TRUE(orvo_->process().waitForExit());
  ASSERT_TRUE(eventually([&] { return hasEnded(keeper); }));
}

Samples KilledProgramTest::written(std::size_t document) const {
  return document < audio_.size() ? readRaw("/dev/fd/" + std::to_string(audio_[document]))
                                  : Samples();
}

Samples KilledProgramTest::expected(std::size_t journal, std::size_t audio) const {
  platform::PosixFile file(::dup(journals_.at(journal)));
  const auto origin = readJournalOrigin(file);
  auto replay = JournalReplay::begin(file);
  if (!origin || origin->state != journal::State::edited || !replay) {
    return {};
  }
  replay->run();
  const Samples all = written(audio);
  Samples found(replay->fillSize() / sizeof(float), 0.0F);
  for (const OVBlock& block : replay->list().reachableBlocks()) {
    for (std::uint64_t i = 0; i < block.size() / sizeof(float); ++i) {
      const std::uint64_t from = block.file_offset_start() / sizeof(float) + i;
      const std::uint64_t to = block.linear_addr_start() / sizeof(float) + i;
      if (from < all.size() && to < found.size()) {
        found[to] = all[from];
      }
    }
  }
  return found;
}

void KilledProgramTest::expectAllOf(const Samples& written, const Samples& found) {
  ASSERT_LE(found.size(), written.size());
  EXPECT_LE(written.size() - found.size(), kChunk);
  EXPECT_TRUE(std::equal(found.begin(), found.end(), written.begin()));
}

void KilledProgramTest::expectNothingElseIsLeft(std::size_t files) const {
  const auto all = recovered();
  EXPECT_EQ(all.size(), files);
  EXPECT_TRUE(std::all_of(all.begin(), all.end(), [](const auto& name) {
    return name.ends_with(".caf");
  })) << "one is not complete";
  EXPECT_EQ(names(temporary_), std::vector<std::string>());
}
