#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/ffmpeg/AudioFileDemuxer.h"
#include "platform/ffmpeg/AvResources.h"
#include "platform/ffmpeg/DecodingBudget.h"
#include "platform/files/File.h"

namespace platform {

/// The decoded sound of a file, from its beginning to its end, once: without the silence that an
/// encoder puts before it and, where the file tells, after it.
///
/// Packets that cannot be decoded are left out, and the rest goes on.
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

  /// The next decoded stretch, valid until the next call; null at the end, then endError() is set.
  [[nodiscard]] AVFrame* next();

  /// Why next() gave nothing: 0 for the end of a file that is whole as far as it tells,
  /// AVERROR_EXIT when it was interrupted, else what is wrong with it. AVERROR_INVALIDDATA for a
  /// file that is cut off or of which something could not be decoded.
  [[nodiscard]] int endError() const { return endError_; }

 private:
  AudioFileDecoder() = default;

  [[nodiscard]] int start();
  [[nodiscard]] int decode(AVFrame& frame);
  [[nodiscard]] bool feed();
  void cutToPacket(AVFrame& frame) const;
  void finish(int error);
  [[nodiscard]] bool isCutOff() const;

  std::unique_ptr<AudioFileDemuxer> demuxer_;
  AvCodec codec_;
  AvPacket packet_;
  AvFrame current_;     // given out
  AvFrame ahead_;       // decoded already, to see whether the current one is the last
  int aheadError_ = 0;  // why there is none ahead
  bool primed_ = false;
  int inputError_ = 0;  // what ended the packets; 0 while they last
  int endError_ = 0;
  bool ended_ = false;
  bool lostPackets_ = false;
  std::int64_t decodedFrames_ = 0;  // at the file's rate
};

}  // namespace platform
