#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

#include "platform/base/AudioTypes.h"
#include "platform/media/ExtAudioFileInput.h"

/// Decodes an audio file (CAF, AIFF, WAV, MP3, AAC, MPEG-4 with suffix mp4, m4a or m4r; the content
/// counts, not the name) and delivers it in chunks of the working format.
///
///   open (or null) --readFrameChunkWithSize()--> reading --close() or destruction--> closed
///                                                  ↺ rewind()
///
/// Reports a failure exactly once: prints it to standard error and shows an alert with the file's
/// name and the reason in plain words. After that it reports nothing until it opens another file.
/// When initWithFile() returns null, the failure has been reported. A cancellation is not a failure
/// and is never shown.
///
/// All decodable audio of a damaged or truncated file is delivered first. The read after the last
/// delivered frame reports the damage and returns 0; failed() is then true. Garbage between or
/// after the packets of MP3 and AAC streams is mostly a tag and is silently skipped if there is any
/// sound.
///
/// Threads: any, one at a time; any thread may set the cancel flag at any time. Alerts are waited
/// for, see CheckAudioStatus(). Real-time: not safe.
class OVAudioFileReader {
  struct Key {};

 public:
  /// A reader of the file at `path`; null if it cannot be read or the flag is set. Takes at most
  /// about a second of work, however damaged the file is.
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

  /// Opens the file, replacing an open one, whose state is forgotten. False on failure, which is
  /// reported.
  [[nodiscard]] bool openFile(const std::string& path);

  /// Length of the sound in frames of the working format; 0 when unknown or nothing is open. Exact
  /// for good files, except AAC in CAF, which does not mark the silence at its start, and where
  /// isFileSizeEstimated(). Only a hint for damaged files: never allocate by it. Reads nothing.
  [[nodiscard]] std::int64_t fileSizeInFrames() const;

  /// Whether the length is estimated from the file's size and bit rate: that of MP3 without a
  /// length header and of AAC in ADTS, until the read after the last frame has made it exact.
  [[nodiscard]] bool isFileSizeEstimated() const;

  /// Share of the file's bytes that has been read, 0 to 1; 1 at the end or when nothing is open.
  [[nodiscard]] double shareRead() const;

  /// What the file says of its sound; never null, empty if nothing is open.
  [[nodiscard]] std::shared_ptr<const platform::AudioFileTags> tags() const;

  /// Reads the next `frames` frames into the chunk buffer and returns their number: fewer near the
  /// end, 0 at the end, after a failure, when closed or cancelled. A new size reallocates the chunk
  /// buffer (8 bytes a frame). Its first `frames` bytes are cleared before each read.
  [[nodiscard]] std::uint32_t readFrameChunkWithSize(std::uint64_t frames);

  /// The frames of the last read, interleaved pairs of float (left, right). Null before the first
  /// read; valid until the next read or the reader's destruction.
  [[nodiscard]] const void* exposeBuffer() const { return buffer_.get(); }

  /// The working format, except for the reserved field, which has the file's value.
  [[nodiscard]] const platform::AudioStreamBasicDescription& format() const { return format_; }

  /// Returns to the first frame. Repeated reads are bit-identical, except where the decoder must
  /// guess because of damaged packets.
  void rewind();

  /// Closes the file. The chunk buffer stays.
  void close();

  /// Whether the file or its medium ended a read: the audio before is good. False again after
  /// rewind().
  [[nodiscard]] bool failed() const { return failed_; }

  /// Capacity of the chunk buffer in frames: the last size requested.
  [[nodiscard]] std::uint64_t bufferSize() const { return bufferSize_; }

 private:
  struct Free {
    void operator()(std::byte* bytes) const { std::free(bytes); }
  };

  [[nodiscard]] bool openSteps(const std::string& path);
  [[nodiscard]] bool makeBuffer(std::uint64_t frames);
  void report(platform::AudioStatus status, const std::string& label, const std::string& reason);

  const std::shared_ptr<const std::atomic<bool>> cancelled_;  // null: no cancellation
  std::unique_ptr<std::byte, Free> buffer_;
  std::unique_ptr<platform::ExtAudioFileInput> xafref_;  // null when closed
  std::uint64_t bufferSize_ = 0;                         // frames
  platform::AudioStreamBasicDescription format_;
  std::string path_;
  bool failed_ = false;
  bool hasReported_ = false;
};
