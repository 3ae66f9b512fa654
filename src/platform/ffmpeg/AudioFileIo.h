#pragma once

#include <cstdint>
#include <memory>

#include "platform/ffmpeg/AudioFileView.h"
#include "platform/ffmpeg/AvResources.h"
#include "platform/ffmpeg/DecodingBudget.h"
#include "platform/files/File.h"

namespace platform {

/// FFmpeg's view of a File, the audio file classes' only access to a disk. It preserves File's
/// guarantees (positioned transfers, continued when interrupted), keeps the first error, and never
/// lets FFmpeg open a protocol, playlist or second file.
///
/// Threads: any, one at a time. Real-time: not safe.
class AudioFileIo {
 public:
  /// `file` and `interruption` must outlive the object. `size` is the file's size in bytes. Null
  /// when memory runs out.
  [[nodiscard]] static std::unique_ptr<AudioFileIo> forReading(File& file, std::uint64_t size,
                                                               DecodingBudget& interruption);
  [[nodiscard]] static std::unique_ptr<AudioFileIo> forWriting(File& file);

  AudioFileIo(const AudioFileIo&) = delete;
  AudioFileIo& operator=(const AudioFileIo&) = delete;

  [[nodiscard]] AVIOContext* context() const { return context_.get(); }

  /// The first failed transfer as a negative errno; 0 for none. FFmpeg sometimes reports a later
  /// one, or mistakes a failure for the end of the file.
  [[nodiscard]] int firstError() const;

  /// What a reading object reads.
  [[nodiscard]] AudioFileView& view() { return view_; }

  /// Lets reading continue after an interruption.
  void clearInterruption();

 private:
  AudioFileIo(File& file, std::uint64_t size, DecodingBudget* interruption)
      : file_(file), view_(file, size), interruption_(interruption) {}

  [[nodiscard]] bool start(bool writing);
  static int readPacket(void* self, std::uint8_t* destination, int byteCount);
  [[nodiscard]] int write(const std::uint8_t* data, int byteCount);
  static std::int64_t seek(void* self, std::int64_t offset, int whence);

  [[nodiscard]] std::uint64_t size() const;

  File& file_;
  AudioFileView view_;
  DecodingBudget* const interruption_;  // null when writing
  std::uint64_t position_ = 0;
  std::uint64_t written_ = 0;  // size of a file that is written
  int writeError_ = 0;         // the first, negative
  AvStream context_;
};

}  // namespace platform
