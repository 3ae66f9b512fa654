#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

#include "platform/base/AudioTypes.h"
#include "platform/media/ExtAudioFileInput.h"

/// Reads an audio file of any kind that can be decoded (CAF, AIFF, WAV, MP3, MPEG-4 with its
/// suffixes mp4, m4a and m4r, AAC; the content counts, not the name) and delivers it chunk by chunk
/// in the working format.
///
///   open (or null) --readFrameChunkWithSize()--> reading --close() or destruction--> closed
///                                                  ↺ rewind()
///
/// The class itself reports a failure exactly once: prints it to standard error and shows an alert
/// with the file's name and the reason in plain words. After that it reports nothing until it opens
/// another file. Null from initWithFile() was reported already, unless it was cancelled; a
/// cancellation is not a failure and is never shown.
///
/// Of a damaged or cut-off file everything that can be decoded is delivered first. The
/// damage is reported by the read after the last delivered frame, which returns 0, and by failed().
/// Garbage between or after the packets of MP3 and AAC streams is mostly a tag and is passed over
/// silently as long as there is any sound.
///
/// Threads: any, one at a time; the flag of a cancel may be set by any thread at any time. The
/// alert is waited for, see CheckAudioStatus(). Real-time: not safe.
class OVAudioFileReader {
  struct Key {};

 public:
  /// A reader of the file at `path`, or null when it cannot be read or the flag was set. Takes no
  /// more than about a second of work, however the file is damaged.
  ///
  /// @param cancelled  while it holds true, every call ends within a fraction of a second without
  ///                   a result; may be null
  [[nodiscard]] static std::shared_ptr<OVAudioFileReader> initWithFile(
      const std::string& path, std::shared_ptr<const std::atomic<bool>> cancelled = nullptr);

  /// For initWithFile() only.
  OVAudioFileReader(Key, std::shared_ptr<const std::atomic<bool>> cancelled)
      : cancelled_(std::move(cancelled)) {}
  ~OVAudioFileReader();
  OVAudioFileReader(const OVAudioFileReader&) = delete;
  OVAudioFileReader& operator=(const OVAudioFileReader&) = delete;

  /// Opens the file, in place of one that is open, and forgets what became of that one. False on
  /// failure, which is reported.
  [[nodiscard]] bool openFile(const std::string& path);

  /// Length of the sound in frames of the working format; 0 when unknown or nothing is open.
  /// Exact for good files except AAC in ADTS or CAF, whose silence at the start is not marked, and
  /// a hint only for damaged ones: never allocate by it. The first call counts the packets of MP3
  /// and ADTS files, half a second at most.
  [[nodiscard]] std::int64_t fileSizeInFrames();

  /// Reads the next `frames` frames into the chunk buffer, and returns how many there were: fewer
  /// near the end, 0 at the end, after a failure, when closed or cancelled. A size other than the
  /// last one makes the chunk buffer anew (8 bytes a frame); the first `frames` bytes of it are
  /// cleared before each read.
  [[nodiscard]] std::uint32_t readFrameChunkWithSize(std::uint64_t frames);

  /// The frames of the last read, interleaved pairs of float (left, right). Null before the first
  /// read; valid until the next read or the reader's end.
  [[nodiscard]] const void* exposeBuffer() const { return buffer_.get(); }

  /// The working format; its reserved field has the file's value.
  [[nodiscard]] const platform::AudioStreamBasicDescription& format() const { return format_; }

  /// Starts over with the first frame. The same reads give the same frames to the bit, except where
  /// damaged packets of a file leave the decoder guessing.
  void rewind();

  /// Closes the file. The chunk buffer stays.
  void close();

  /// Whether a read broke off because of the file or its medium: what came before is good. False
  /// again after rewind().
  [[nodiscard]] bool failed() const { return failed_; }

  /// Capacity of the chunk buffer in frames: the size asked for last.
  [[nodiscard]] std::uint64_t bufferSize() const { return bufferSize_; }

 private:
  struct Free {
    void operator()(std::byte* bytes) const { std::free(bytes); }
  };

  [[nodiscard]] bool openSteps(const std::string& path);
  [[nodiscard]] bool makeBuffer(std::uint64_t frames);
  void report(platform::AudioStatus status, const std::string& label, const std::string& reason);

  const std::shared_ptr<const std::atomic<bool>> cancelled_;  // null: nobody cancels
  std::unique_ptr<std::byte, Free> buffer_;
  std::unique_ptr<platform::ExtAudioFileInput> xafref_;  // null when closed
  std::uint64_t bufferSize_ = 0;                         // frames
  platform::AudioStreamBasicDescription format_;
  std::string path_;
  bool failed_ = false;
  bool hasReported_ = false;
};
