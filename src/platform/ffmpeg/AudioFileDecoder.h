#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/ffmpeg/AudioFileDemuxer.h"
#include "platform/ffmpeg/AvResources.h"
#include "platform/ffmpeg/DecodingBudget.h"
#include "platform/ffmpeg/Mpeg4Edits.h"
#include "platform/files/File.h"

namespace platform {

/// Decodes a file's sound once, from start to end, without the silence that an encoder adds before
/// it and, where the file declares it, after it. What an edit list of MPEG-4 leaves out is left
/// out, to the frame.
///
/// Packets that cannot be decoded are skipped.
///
/// Threads: any, one at a time. Real-time: not safe.
class AudioFileDecoder {
 public:
  /// As AudioFileDemuxer::open().
  [[nodiscard]] static std::unique_ptr<AudioFileDecoder> open(File& file, std::uint64_t size,
                                                              const std::string& path,
                                                              DecodingBudget& interruption,
                                                              int& error);

  ~AudioFileDecoder();
  AudioFileDecoder(const AudioFileDecoder&) = delete;
  AudioFileDecoder& operator=(const AudioFileDecoder&) = delete;

  [[nodiscard]] const AudioFileDemuxer& demuxer() const { return *demuxer_; }

  /// The next decoded samples, valid until the next call. Null at the end; endError() is then set.
  [[nodiscard]] AVFrame* next();

  /// Why next() returned null: 0 at the end of a file with no detected damage, AVERROR_EXIT when
  /// interrupted, otherwise the error. AVERROR_INVALIDDATA for a file that is truncated or partly
  /// undecodable.
  [[nodiscard]] int endError() const { return endError_; }

 private:
  AudioFileDecoder() = default;

  [[nodiscard]] int start();
  [[nodiscard]] int decode(AVFrame& frame);
  [[nodiscard]] bool feed();
  [[nodiscard]] int decodePacket(AVFrame& frame);
  [[nodiscard]] bool cutToEdits(AVFrame& frame);
  void cutToPacket(AVFrame& frame, int leftOutBefore) const;
  void finish(int error);
  [[nodiscard]] bool isCutOff() const;

  std::unique_ptr<AudioFileDemuxer> demuxer_;
  AvCodec codec_;
  AvPacket packet_;
  AvFrame current_;     // returned by next()
  AvFrame ahead_;       // decoded ahead, to detect the last frame
  int aheadError_ = 0;  // why ahead_ is empty
  bool primed_ = false;
  int inputError_ = 0;  // the error that ended the packets; 0 before
  int endError_ = 0;
  bool ended_ = false;
  bool lostPackets_ = false;
  std::int64_t decodedFrames_ = 0;  // at the file's rate

  // MPEG-4: the position in the media, in frames at editsRate_.
  Mpeg4Edits edits_;
  int editsRate_ = 0;  // Hz; 0: nothing was decoded yet
  std::int64_t position_ = 0;
  int leftOut_ = 0;  // frames that the edits cut off the start of ahead_
};

}  // namespace platform
