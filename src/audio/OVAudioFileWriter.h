#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "platform/base/AudioTypes.h"
#include "platform/media/ExtAudioFileOutput.h"

/// Writes audio in the working format to a file of one of four kinds. Samples from 16-bit audio are
/// written bit for bit; AAC's length is exact to the frame.
///
///   open (or null) --sinkData()--> writing --close() or destruction--> closed
///
/// The file is complete only if close() returns true. An existing file is truncated at once and
/// keeps its permissions, so write to a file beside the one to be replaced; the caller syncs and
/// renames.
///
/// Reports a failure exactly once: prints it to standard error and shows an alert with the display
/// name and the reason in plain words.
///
/// Threads: any, one at a time; fileName() from any thread. Alerts are waited for, see
/// CheckAudioStatus(). Real-time: not safe.
class OVAudioFileWriter {
  struct Key {};

 public:
  /// Kinds of output files: 16-bit WAV, AIFF and CAF, and AAC in an MPEG-4 file.
  static constexpr auto kWave = static_cast<std::uint32_t>(platform::AudioFileKind::wave);
  static constexpr auto kAiff = static_cast<std::uint32_t>(platform::AudioFileKind::aiff);
  static constexpr auto kCaf = static_cast<std::uint32_t>(platform::AudioFileKind::caf);
  static constexpr auto kAac = static_cast<std::uint32_t>(platform::AudioFileKind::m4a);

  /// A writer to the file at `path`; null on failure, which is reported.
  ///
  /// @param outputFormat  one of the kinds; any other fails
  /// @param shownName     the file's name in alerts where `path` is a temporary name; if empty, the
  ///                      path's last component
  [[nodiscard]] static std::shared_ptr<OVAudioFileWriter> initWithFile(const std::string& path,
                                                                       std::uint32_t outputFormat,
                                                                       std::string shownName = {});

  /// A writer to a new, empty file that is open already, or could not be opened (an errno), which
  /// is reported as well; `shownName` is its name in alerts. The file gets the tags that its kind
  /// can hold; its sound is the same with and without them.
  [[nodiscard]] static std::shared_ptr<OVAudioFileWriter> initWithOpenFile(
      platform::Result<std::unique_ptr<platform::File>> file, std::uint32_t outputFormat,
      std::string shownName, const platform::AudioFileTags& tags = {});

  /// Maximum frames that a file of a kind can hold beside tags of so many bytes; nothing for no
  /// limit.
  [[nodiscard]] static std::optional<std::uint64_t> maximumFrames(std::uint32_t outputFormat,
                                                                  std::uint64_t tagBytes = 0);

  /// Whether files of a kind can hold a cover among their tags.
  [[nodiscard]] static bool holdsCover(std::uint32_t outputFormat);

  /// Bytes that a file of a kind with so many frames takes at least, an estimate; 0 for an unknown
  /// kind.
  [[nodiscard]] static std::uint64_t estimatedBytes(std::uint32_t outputFormat,
                                                    std::uint64_t frames);

  /// For the functions above only.
  OVAudioFileWriter(Key, std::string path, std::uint32_t outputFormat, std::string shownName);
  ~OVAudioFileWriter();  ///< closes
  OVAudioFileWriter(const OVAudioFileWriter&) = delete;
  OVAudioFileWriter& operator=(const OVAudioFileWriter&) = delete;

  /// Creates the file. False on failure, which is reported.
  [[nodiscard]] bool openFile(const std::string& path);

  /// Appends the whole frames (8 bytes each: left and right float) of `dataSize` bytes. Returns the
  /// number of bytes appended; 0 for no whole frame, after a failure and when closed.
  [[nodiscard]] std::uint64_t sinkData(const void* data, std::uint64_t dataSize);

  /// Finishes the file. False if it is not complete on disk as far as the system reports, because
  /// of this or an earlier failure. Repeated calls return the same.
  [[nodiscard]] bool close();

  /// Path of the file; empty for one that was open already. Fixed after construction: any thread.
  [[nodiscard]] const std::string& fileName() const { return fileName_; }
  [[nodiscard]] std::uint32_t outputFormat() const { return outputFormat_; }
  /// The format of the data to write: the working format.
  [[nodiscard]] const platform::AudioStreamBasicDescription& format() const { return format_; }

 private:
  template <typename Create>
  [[nodiscard]] bool open(Create create);
  [[nodiscard]] bool check(platform::AudioStatus status, const std::string& label);

  std::unique_ptr<platform::ExtAudioFileOutput> xafref_;  // null if opening failed
  platform::AudioStreamBasicDescription format_;
  const std::string fileName_;
  const std::uint32_t outputFormat_;
  const std::string shownName_;
  bool hasFailed_ = false;
  bool isClosed_ = false;
};
