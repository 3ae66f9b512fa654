// Any bytes as the journal that the keeper finds when the program has ended. What must hold:
// nothing is read or written out of bounds; the replay takes no more steps than there are records,
// its blocks never overlap, and after each step list and length are those of the plain model;
// reading the recording always ends, in one file with a name that can be offered or in none, and
// nothing is written beside the folder; and that file has the length that the journal gives it, the
// audio where a block has some, and silence elsewhere.
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>
#include <map>
#include <optional>
#include <vector>

#include "fuzz/FuzzTarget.h"
#include "keeper/KeptRecording.h"
#include "keeper/KeptRecordings.h"
#include "support/FileSizeLimit.h"
#include "support/PlainBlockBuffer.h"
#include "support/TemporaryFolder.h"

namespace {

namespace fs = std::filesystem;
using support::Bytes;

constexpr std::uint64_t kMostFile = std::uint64_t{1} << 20;  // longer files fail here

/// Memory that is only read.
class Memory : public platform::File {
 public:
  explicit Memory(const Bytes& bytes) : bytes_(bytes) {}

  platform::FileTransfer readAt(void* destination, std::uint64_t byteCount,
                                std::uint64_t offset) override {
    const std::uint64_t size = bytes_.size();
    const std::uint64_t count = offset < size ? std::min(byteCount, size - offset) : 0;
    std::copy_n(bytes_.data() + (count > 0 ? offset : 0), count,
                static_cast<unsigned char*>(destination));
    return {.byteCount = count, .error = 0};
  }
  platform::FileTransfer writeAt(const void*, std::uint64_t, std::uint64_t) override {
    return {.byteCount = 0, .error = EBADF};
  }
  std::uint64_t size() override { return bytes_.size(); }
  int setSize(std::uint64_t) override { return EBADF; }

 private:
  const Bytes& bytes_;
};

/// A journal with one area, as large as what is in it.
class Journal : public platform::File {
 public:
  // How the input stands for it.
  enum class Form { wholeHeader, records, compactRecords, forms };

  explicit Journal(fuzz::Input& input) {
    const auto form = static_cast<Form>(input.byte() % static_cast<unsigned>(Form::forms));
    if (form == Form::wholeHeader) {
      const std::string bytes = input.text(sizeof(journal::Header));
      header_.assign(bytes.begin(), bytes.end());
    } else {
      readShortHeader(input);
    }
    if (form == Form::compactRecords) {
      readCompactRecords(input);
    } else {
      area_.assign(input.data(), input.data() + input.size());
    }
    if (form != Form::wholeHeader) {
      const std::uint64_t published =
          journal::packed({.area = inSecond_ ? std::size_t{1} : 0, .end = area_.size()});
      std::memcpy(header_.data() + 8, &published, sizeof published);
    }
  }

  platform::FileTransfer readAt(void* destination, std::uint64_t byteCount,
                                std::uint64_t offset) override {
    if (offset < journal::kPage) {
      return Memory(header_).readAt(destination, byteCount, offset);
    }
    const std::uint64_t inArea = (offset - journal::kPage) % journal::kAreaBytes;
    return Memory(area_).readAt(destination, byteCount, inArea);
  }
  platform::FileTransfer writeAt(const void*, std::uint64_t, std::uint64_t) override {
    return {.byteCount = 0, .error = EBADF};
  }
  std::uint64_t size() override { return journal::kBytes; }
  int setSize(std::uint64_t) override { return EBADF; }

  [[nodiscard]] std::size_t records() const { return area_.size() / sizeof(journal::Record); }
  /// The record of this number after the state, with which a replay goes on.
  [[nodiscard]] journal::Record record(std::size_t number) const {
    journal::Record state;
    std::memcpy(&state, area_.data(), sizeof state);
    journal::Record record;
    const std::size_t at = journal::stateBytes(state.a) + number * sizeof record;
    fuzz::require(at + sizeof record <= area_.size(), "no record is read beyond the end");
    std::memcpy(&record, area_.data() + at, sizeof record);
    return record;
  }

 private:
  // A sound one, but for its times and its name.
  void readShortHeader(fuzz::Input& input) {
    journal::Header header;
    const std::uint8_t options = input.byte();
    inSecond_ = (options & 1) != 0;
    header.state = static_cast<journal::State>((options & 6) != 6 ? 1 : options >> 3);
    header.created = static_cast<std::int64_t>(input.number((options & 8) != 0 ? 8 : 4));
    header.firstRecording = static_cast<std::int64_t>(input.number((options & 16) != 0 ? 8 : 0));
    const std::string name = input.text((options & 32) != 0 ? input.byte() : 0);
    std::copy_n(name.begin(), std::min(name.size(), header.recoveredFrom.size()),
                header.recoveredFrom.begin());
    const auto* const bytes = reinterpret_cast<const unsigned char*>(&header);
    header_.assign(bytes, bytes + sizeof header);
  }

  template <typename T>
  void put(const T& value) {
    const auto* const bytes = reinterpret_cast<const unsigned char*>(&value);
    area_.insert(area_.end(), bytes, bytes + sizeof value);
  }

  // A state and records of small numbers.
  void readCompactRecords(fuzz::Input& input) {
    const std::uint64_t blocks = input.number(1) % 16;
    put(journal::Record{journal::Kind::state, blocks, 8 * input.number(2), 0});
    for (std::uint64_t i = 0; i < blocks; ++i) {
      const std::uint64_t address = 8 * input.number(1);
      put(journal::Block{address, input.number(2), 8 * input.number(1)});
    }
    while (!input.empty()) {
      const auto kind = static_cast<journal::Kind>(2 + input.byte() % 6);
      const bool isPosition = kind != journal::Kind::keep && kind != journal::Kind::restore;
      const std::uint64_t a = input.number(1) * (isPosition ? 8 : 1);
      const bool isWrite = kind == journal::Kind::write;
      const std::uint64_t b = input.number(isWrite ? 2 : 0);
      put(journal::Record{kind, a, b, 8 * input.number(isWrite ? 1 : 0)});
    }
  }

  Bytes header_;
  Bytes area_;
  bool inSecond_ = false;
};

/// What a replay does, on the plain model.
class PlainReplay {
 public:
  explicit PlainReplay(const JournalReplay& begun) {
    model_.live = {begun.list().blocks(), begun.fillSize()};
  }

  void apply(const journal::Record& record) {
    switch (record.kind) {
      case journal::Kind::write:
        model_.map(OVBlock(record.a, record.b, record.c));
        break;
      case journal::Kind::cutAfter:
        fits_ = fits_ && record.a % 8 == 0;
        model_.cutAfter(record.a / 8);
        break;
      case journal::Kind::cutBefore:
        fits_ = fits_ && record.a % 8 == 0;
        model_.cutBefore(record.a / 8);
        break;
      case journal::Kind::merge:
        model_.optimize();
        break;
      case journal::Kind::keep:
        kept_[record.a] = model_.live;
        break;
      case journal::Kind::restore:
        fuzz::require(kept_.contains(record.a), "only what was kept is restored");
        model_.live = kept_[record.a];
        break;
      case journal::Kind::state:
        fuzz::require(false, "a state is only at the beginning");
    }
  }

  /// Whether the replay is as far. The model cuts at whole frames only.
  [[nodiscard]] bool agrees(const JournalReplay& replay) const {
    return !fits_ || (replay.list().blocks() == model_.live.blocks &&
                      replay.fillSize() == model_.live.fillSize);
  }

 private:
  support::PlainBlockBuffer model_;
  std::map<std::uint64_t, support::PlainBlockBuffer::State> kept_;
  bool fits_ = true;
};

void requireOrder(const BlockList& list) {
  std::uint64_t end = 0;
  for (const OVBlock& block : list.reachableBlocks()) {
    fuzz::require(block.linear_addr_start() >= end, "blocks do not overlap");
    end = block.end();
    const OVBlock* const found = list.find(block.linear_addr_start());
    fuzz::require(found != nullptr && *found == block, "a block is found");
  }
}

/// The recording as the journal has it; nothing if the journal is none.
std::optional<JournalReplay> replayed(Journal& journal) {
  auto begun = JournalReplay::begin(journal);
  if (!begun) {
    return std::nullopt;
  }
  JournalReplay replay = *std::move(begun);
  requireOrder(replay.list());
  PlainReplay plain(replay);
  std::size_t steps = 0;
  while (replay.step()) {
    plain.apply(journal.record(steps));
    ++steps;
    fuzz::require(steps <= journal.records(), "a step is a record");
    fuzz::require(plain.agrees(replay), "list and length are the model's");
  }
  requireOrder(replay.list());
  return replay;
}

/// Every byte of the recording; nothing if it is longer than a file can be here.
std::optional<Bytes> soundOf(const JournalReplay& replay, const Bytes& audio) {
  std::uint64_t length = replay.fillSize();
  const std::vector<OVBlock> blocks = replay.list().reachableBlocks();
  constexpr auto kSensible =
      static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()) / 2;
  if (length > kSensible) {
    length = blocks.empty() ? 0 : blocks.back().end();
  }
  if (length > kMostFile) {
    return std::nullopt;
  }
  Bytes sound(length / 8 * 8);
  for (const OVBlock& block : blocks) {
    for (std::uint64_t i = 0; i < block.size(); ++i) {
      const std::uint64_t address = block.linear_addr_start() + i;
      const std::uint64_t place = block.file_offset_start() + i;
      if (address >= sound.size() || place >= audio.size() || place < i) {
        break;
      }
      sound[address] = audio[place];
    }
  }
  return sound;
}

support::TemporaryFolder& dataFolder() {
  static support::TemporaryFolder folder;
  return folder;
}

/// Empties the folder. How many files there were.
std::size_t removeRecovered() {
  std::size_t count = 0;
  for (const auto& entry : fs::directory_iterator(support::recoveredPath(dataFolder().path()))) {
    count += fs::remove(entry.path()) ? 1 : 0;
  }
  return count;
}

void requireWritten(const std::optional<JournalReplay>& replay, const Bytes& audio) {
  fuzz::require(replay.has_value(), "only a journal is recovered");
  const auto expected = soundOf(*replay, audio);
  const auto names = support::recoveredNames(dataFolder().path());
  if (expected && expected->empty()) {
    fuzz::require(names.empty(), "nothing is written of nothing");
    return;
  }
  fuzz::require(names.size() == 1, "one file is written");
  fuzz::require(names[0].ends_with(".caf") && names[0].size() > 4 && names[0].front() != '.',
                "a recording has a name that can be offered");
  fuzz::require(expected.has_value(), "no file is longer than it can be");
  const std::string path = support::recoveredPath(dataFolder().path()) + "/" + names[0];
  fuzz::require(support::cafAudio(path) == *expected, "the recording is written");
  fuzz::require(fs::file_size(path) <= expected->size() + 4096, "nothing follows the recording");
}

}  // namespace

void fuzz::prepare() {
  ::setenv("TZ", "UTC", 1);
  require(bool(RecoveredFolder::open(dataFolder().path())), "there is a folder");
}

void fuzz::execute(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  const Bytes audio = support::pattern(input.number(2), 1);
  Journal journal(input);
  const auto origin = readJournalOrigin(journal);
  const auto replay = replayed(journal);

  auto folder = RecoveredFolder::open(dataFolder().path());
  require(bool(folder), "there is a folder");
  KeptRecording::Outcome outcome{};
  {
    const support::FileSizeLimit limit(kMostFile);
    KeptRecording recording(std::make_unique<Memory>(audio), std::make_unique<Journal>(journal));
    outcome = recording.recover(**folder);
  }
  require(outcome != KeptRecording::Outcome::waiting, "the disk is not full");
  if (outcome == KeptRecording::Outcome::done && (*origin).state == journal::State::edited) {
    requireWritten(replay, audio);
    removeRecovered();
  } else {
    require(removeRecovered() == 0, "nothing is left where nothing was recovered");
  }
  const auto isOnlyOne = [](const std::string& path) {
    return std::distance(fs::directory_iterator(path), fs::directory_iterator()) == 1;
  };
  require(isOnlyOne(dataFolder().path()) && isOnlyOne(dataFolder().file("orvo")),
          "nothing is written beside the folder");
}
