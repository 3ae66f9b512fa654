#pragma once

#include <memory>

struct AVCodecContext;
struct AVFormatContext;
struct AVFrame;
struct AVIOContext;
struct AVPacket;
struct SwrContext;

/// Owning pointers to FFmpeg's objects.
///
/// Threads: any, one at a time for each object. Real-time: not safe.
namespace platform {

struct AvRelease {
  void operator()(AVCodecContext* context) const;
  void operator()(AVFrame* frame) const;
  void operator()(AVPacket* packet) const;
  void operator()(SwrContext* context) const;
  void operator()(AVIOContext* context) const;  ///< with its buffer, unflushed
};

/// An opened demuxer's context is released differently from a muxer's.
struct AvCloseInput {
  void operator()(AVFormatContext* context) const;
};
struct AvFreeOutput {
  void operator()(AVFormatContext* context) const;
};

using AvCodec = std::unique_ptr<AVCodecContext, AvRelease>;
using AvFrame = std::unique_ptr<AVFrame, AvRelease>;
using AvPacket = std::unique_ptr<AVPacket, AvRelease>;
using AvConverter = std::unique_ptr<SwrContext, AvRelease>;
using AvStream = std::unique_ptr<AVIOContext, AvRelease>;
using AvInput = std::unique_ptr<AVFormatContext, AvCloseInput>;
using AvOutput = std::unique_ptr<AVFormatContext, AvFreeOutput>;

}  // namespace platform
