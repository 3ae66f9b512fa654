#include "storage/OVBlockBuffer.h"

#include <algorithm>
#include <cinttypes>
#include <limits>
#include <system_error>
#include <thread>
#include <utility>

#include "platform/base/ApplicationServices.h"
#include "platform/files/TemporaryFiles.h"
#include "storage/BufferTransfer.h"
#include "storage/DelegateNotification.h"

namespace {

constexpr std::size_t kWaypointCapacity = 32;  // entries; grows beyond
constexpr std::size_t kMaxPath = 4095;         // bytes of a template, without the terminator
constexpr std::uint64_t kWritesBetweenOptimizing = 21;  // about two seconds of recording

constexpr auto kMaxCount = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());

}  // namespace

OVBlockBuffer::OVBlockBuffer(std::unique_ptr<platform::File> file, std::string fileName)
    : f_file_(std::move(file)),
      f_file_name_(std::move(fileName)),
      format_(platform::kWorkingFormat) {
  waypointStack_.reserve(kWaypointCapacity);
}

// Closing the file frees the storage of everything ever recorded.
OVBlockBuffer::~OVBlockBuffer() = default;

std::shared_ptr<OVBlockBuffer> OVBlockBuffer::init(const Explanation& explanation) {
  const auto files = platform::temporaryFiles();
  const std::string pathTemplate = files->directory() + "orvoXXXXXX";
  auto created = files->createUnlinked(pathTemplate.substr(0, kMaxPath));
  if (!created) {
    alertThatNoTemporaryFileOpens(pathTemplate,
                                  explanation ? explanation(created.error()) : std::string());
    return nullptr;
  }
  return std::shared_ptr<OVBlockBuffer>(
      new OVBlockBuffer(std::move(created->file), std::move(created->path)));
}

void OVBlockBuffer::writeData(const void* data, std::uint64_t atByteOffset,
                              std::uint32_t withSize) {
  if (refuseIfPastAddressSpace(atByteOffset, withSize)) {
    return;
  }
  platform::FileTransfer written;
  std::uint64_t blocksAdded = 0;
  {
    const SettlingAfterwards afterwards(*this);
    const platform::MutexLock appending(appendLock_);
    if (tailToGiveBack_) {
      const platform::MutexLock lock(bufferLock_);
      giveBackTail();
    }
    written = append(data, withSize);
    const platform::MutexLock lock(bufferLock_);
    blocksAdded = mapAppended(atByteOffset, withSize);
  }
  if (blocksAdded >= kWritesBetweenOptimizing) {
    optimize();
  }
  notifyOfWrite(delegate_.get(), data, atByteOffset, withSize, errorOfTransfer(written, withSize));
}

platform::FileTransfer OVBlockBuffer::append(const void* data, std::uint32_t withSize) {
  auto written = f_file_->writeAt(data, withSize, f_write_pos_);
  if (written.byteCount < withSize && giveBackTailAfterReads()) {
    written = f_file_->writeAt(data, withSize, f_write_pos_);
  }
  if (written.byteCount < withSize) {
    // Extending the file needs no disk space: the lost stretch reads as silence. If that fails too,
    // reads stop at the gap until a later write extends the file past it.
    static_cast<void>(f_file_->setSize(f_write_pos_ + withSize));
  }
  return written;
}

// Maps the bytes just appended; returns the number of writes since the list was last optimised.
std::uint64_t OVBlockBuffer::mapAppended(std::uint64_t atByteOffset, std::uint32_t withSize) {
  const OVBlock block(atByteOffset, f_write_pos_, withSize);
  blocklist_.map(block);
  f_write_pos_ += withSize;
  if (atByteOffset + withSize > bufferFillSize()) {
    bufferFillSize_.store(atByteOffset + withSize, std::memory_order_relaxed);
  }
  listChanged();
  if (auto* const own = journal()) {
    own->wrote(block);
  }
  return ++blocksAddedSinceOptimization_;
}

BufferReadResult OVBlockBuffer::readDataInto(void* destination, std::uint64_t withSize,
                                             std::uint64_t fromOffset) {
  if (withSize > kMaxCount) {
    ConsoleLog("refused to read %" PRIu64 " bytes at %" PRIu64 ": not a count", withSize,
               fromOffset);
    return {};
  }
  if (fromOffset >= bufferFillSize() || listIsEmpty_.load(std::memory_order_relaxed)) {
    return {};
  }
  const ReadScope reading(readsUnderWay_);
  std::vector<FileStretch> wanted;
  {
    const platform::MutexLock lock(bufferLock_);
    wanted = stretches(fromOffset, withSize);
  }
  const auto got = readStretches(*f_file_, wanted, destination);
  if (got.byteCount < byteCountOf(wanted)) {
    notifyOfFailedRead(delegate_.get(), got.error);
  }
  if (got.byteCount == 0) {
    return {};
  }
  return {.data = static_cast<float*>(destination),
          .frameCount = got.byteCount / format_.mBytesPerFrame,
          .byteCount = got.byteCount};
}

// The stretches of the file that hold the addresses from `address` on, up to `byteCount` bytes, the
// recording's end or a hole. Adjacent ones are joined.
std::vector<FileStretch> OVBlockBuffer::stretches(std::uint64_t address,
                                                  std::uint64_t byteCount) const {
  std::vector<FileStretch> result;
  if (byteCount == 0) {
    return result;
  }
  blocklist_.forEachFrom(address, [&](const OVBlock& block) {
    if (address >= bufferFillSize()) {
      return false;
    }
    const std::uint64_t inBlock = address - block.linear_addr_start();
    const FileStretch stretch{.fileOffset = block.file_offset_start() + inBlock,
                              .byteCount = std::min(byteCount, block.size() - inBlock)};
    if (!result.empty() &&
        result.back().fileOffset + result.back().byteCount == stretch.fileOffset) {
      result.back().byteCount += stretch.byteCount;
    } else {
      result.push_back(stretch);
    }
    address += stretch.byteCount;
    byteCount -= stretch.byteCount;
    return byteCount > 0;
  });
  return result;
}

BlockLocation OVBlockBuffer::getFileOffsetForLinearAddress(std::uint64_t address) const {
  if (address >= bufferFillSize()) {
    return {};
  }
  const OVBlock* const block = blocklist_.find(address);
  if (block == nullptr) {
    return {};
  }
  const std::uint64_t inBlock = address - block->linear_addr_start();
  return {.fileOffset = block->file_offset_start() + inBlock,
          .bytesAvailable = block->size() - inBlock,
          .notFound = false};
}

void OVBlockBuffer::optimize() {
  const SettlingAfterwards afterwards(*this);
  const platform::MutexLock lock(bufferLock_);
  blocklist_.mergeNeighbours();
  blocksAddedSinceOptimization_ = 0;
  if (auto* const own = journal()) {
    own->merged();
  }
}

platform::AudioStreamBasicDescription OVBlockBuffer::format() const {
  return platform::kWorkingFormat;
}

std::uint64_t OVBlockBuffer::bufferSizeInFrames() const {
  return bufferFillSize() / format_.mBytesPerFrame;
}

std::uint64_t OVBlockBuffer::bufferFillSizeInFrames() const {
  return bufferFillSize() / format_.mBytesPerFrame;
}

void OVBlockBuffer::cutoffBufferAfterPosition(std::uint64_t frames) {
  const SettlingAfterwards afterwards(*this);
  const platform::MutexLock lock(bufferLock_);
  const std::uint64_t position = frames * format_.mBytesPerFrame;
  blocklist_.cutAfter(position);
  bufferFillSize_.store(position, std::memory_order_relaxed);
  listChanged();
  if (auto* const own = journal()) {
    own->cutAfter(position);
  }
}

void OVBlockBuffer::cutoffBufferBeforePosition(std::uint64_t frames) {
  const SettlingAfterwards afterwards(*this);
  const platform::MutexLock lock(bufferLock_);
  const std::uint64_t position = frames * format_.mBytesPerFrame;
  blocklist_.cutBefore(position);
  bufferFillSize_.store(bufferFillSize() - position, std::memory_order_relaxed);
  listChanged();
  if (auto* const own = journal()) {
    own->cutBefore(position);
  }
}

void OVBlockBuffer::reverseBuffer() {}

void OVBlockBuffer::setWaypoint() {
  const SettlingAfterwards afterwards(*this);
  const platform::MutexLock lock(bufferLock_);
  waypointStack_.insert(waypointStack_.begin() + static_cast<std::ptrdiff_t>(waypointPos_),
                        keepState());
  ++waypointPos_;
  lastWaypointWritePos_ = f_write_pos();  // readable with this lock, too
}

void OVBlockBuffer::undo() {
  const SettlingAfterwards afterwards(*this);
  const platform::MutexLock lock(bufferLock_);
  redoState_ = keepState();
  prevWaypointPos_ = waypointPos_;
  if (waypointPos_ > 0) {
    --waypointPos_;
  }
  restore(*waypointStack_.at(waypointPos_));
}

void OVBlockBuffer::redo() {
  const SettlingAfterwards afterwards(*this);
  const platform::MutexLock lock(bufferLock_);
  if (const auto state = std::exchange(redoState_, nullptr)) {
    restore(*state);
  }
}

void OVBlockBuffer::rollBack() {
  leaveStep();
  // By now the journal has been settled, if it was behind.
  const platform::MutexLock appending(appendLock_);
  if (tailToGiveBack_) {
    const platform::MutexLock lock(bufferLock_);
    giveBackTail();
  }
}

void OVBlockBuffer::leaveStep() {
  const SettlingAfterwards afterwards(*this);
  const platform::MutexLock appending(appendLock_);
  const platform::MutexLock lock(bufferLock_);
  restore(*waypointStack_.at(waypointPos_ - 1));
  --waypointPos_;
  waypointStack_.erase(waypointStack_.begin() + static_cast<std::ptrdiff_t>(waypointPos_));
  tailToGiveBack_ = std::min(lastWaypointWritePos_, tailToGiveBack_.value_or(f_write_pos_));
}

// With both locks held nobody writes, and nobody looks up a place. A read that has done so before
// may still be transferring, and a journal that is behind still maps the bytes: then the next write
// tries again.
bool OVBlockBuffer::giveBackTail() {
  const auto* const own = journal();
  if (readsUnderWay_.load(std::memory_order_acquire) > 0 || (own != nullptr && own->isBehind())) {
    return false;
  }
  const std::uint64_t end = std::max(*std::exchange(tailToGiveBack_, {}), endOfMappedBytes());
  // A longer file would show its old bytes where a later write is lost: without the cut nothing is
  // given back.
  if (end >= f_write_pos_ || f_file_->setSize(end) != 0) {
    return false;
  }
  f_write_pos_ = end;
  lastWaypointWritePos_ = std::min(lastWaypointWritePos_, end);
  return true;
}

// Waits without bufferLock_, which a read needs to go on.
bool OVBlockBuffer::giveBackTailAfterReads() {
  const auto giveUp = std::chrono::steady_clock::now() + kReadsPatience;
  while (tailToGiveBack_ && std::chrono::steady_clock::now() < giveUp) {
    if (readsUnderWay_.load(std::memory_order_relaxed) > 0) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
      continue;
    }
    const platform::MutexLock lock(bufferLock_);
    if (giveBackTail()) {  // otherwise another read has begun, or the file cannot be shortened
      return true;
    }
  }
  return false;
}

std::uint64_t OVBlockBuffer::endOfMappedBytes() const {
  std::uint64_t end = blocklist_.endInFile();
  for (const auto& state : waypointStack_) {
    end = std::max(end, state->list().endInFile());
  }
  return redoState_ ? std::max(end, redoState_->list().endInFile()) : end;
}

std::shared_ptr<const OVBufferState> OVBlockBuffer::keepState() const {
  auto state = OVBufferState::initWithBlocklist(blocklist_, bufferFillSize());
  if (auto* const own = journal()) {
    own->kept(*state);
  }
  return state;
}

void OVBlockBuffer::restore(const OVBufferState& state) {
  blocklist_ = state.list();
  bufferFillSize_.store(state.bufferFillSize(), std::memory_order_relaxed);
  listChanged();
  if (auto* const own = journal()) {
    own->restored(state);
  }
}

void OVBlockBuffer::listChanged() {
  listIsEmpty_.store(blocklist_.empty(), std::memory_order_relaxed);
}

// Journal ---------------------------------------------------------------------------------------

BlockJournal* OVBlockBuffer::beginJournal(const BlockJournal::Origin& origin) {
  int error = 0;
  {
    const platform::MutexLock turn(journalLock_);
    if (journal() == nullptr) {
      auto created = BlockJournal::create(origin);
      error = created ? settle(**created) : created.error();
      if (journal() != nullptr) {
        ownJournal_ = *std::move(created);
      }
    }
  }
  journalFailed(error);
  return journal();
}

// A record under bufferLock_ makes no system call; what it needs of the system is done here.
void OVBlockBuffer::settleJournal() {
  auto* const own = journal();
  if (own == nullptr || !own->wantsSettling()) {
    return;
  }
  int error = 0;
  {
    const platform::MutexLock turn(journalLock_);
    error = settle(*own);
  }
  journalFailed(error);
}

// Returns 0 or an errno; the journal then lacks what comes next, until a later call succeeds.
int OVBlockBuffer::settle(BlockJournal& journal) {
  bool isRenewed = false;
  while (journal.wantsState()) {
    bufferLock_.lock();
    const std::uint64_t blocks = blocklist_.size();
    bufferLock_.unlock();
    if (const int error = journal.prepareState(blocks); error != 0) {
      return error;
    }
    const platform::MutexLock lock(bufferLock_);
    if (journal.writeState(blocklist_, bufferFillSize())) {
      journal_.store(&journal, std::memory_order_release);
      isRenewed = true;
    }
  }
  if (isRenewed) {
    journal.releaseFormer();
  }
  return journal.makeRoom();
}

void OVBlockBuffer::journalFailed(int error) {
  if (error != 0 && !journalFailureTold_.exchange(true, std::memory_order_relaxed)) {
    ConsoleLog(
        "There is no room for the journal of a recording: if the program ended unexpectedly, "
        "what is done from now on would be lost: %s",
        std::generic_category().message(error).c_str());
  }
}

void OVBlockBuffer::lock() {
  bufferLock_.lock();
}

void OVBlockBuffer::unlock() {
  bufferLock_.unlock();
}

double OVBlockBuffer::powerAtPosition(std::uint64_t position) {
  const ReadScope reading(readsUnderWay_);
  BlockLocation location;
  {
    const platform::MutexLock lock(bufferLock_);
    location = getFileOffsetForLinearAddress(position * format_.mBytesPerFrame);
  }
  if (location.bytesAvailable < format_.mBytesPerFrame) {
    return 1.0;
  }
  float channels[2] = {0.0F, 0.0F};  // bytes that a failed read leaves out count as silence
  static_cast<void>(readWhole(*f_file_, channels, sizeof channels, location.fileOffset));
  return static_cast<double>(channels[0] + channels[1]) * 0.5;
}

void OVBlockBuffer::removeTempFile(const std::optional<std::string>& path) {
  deleteTemporaryFile(path);
}

std::weak_ptr<OVAudioBufferDelegate> OVBlockBuffer::delegate() const {
  return delegate_.get();
}

void OVBlockBuffer::setDelegate(std::weak_ptr<OVAudioBufferDelegate> delegate) {
  delegate_.set(std::move(delegate));
}
