#include "platform/ffmpeg/AvResources.h"

#include "platform/ffmpeg/Ffmpeg.h"

namespace platform {

void AvRelease::operator()(AVCodecContext* context) const {
  avcodec_free_context(&context);
}
void AvRelease::operator()(AVFrame* frame) const {
  av_frame_free(&frame);
}
void AvRelease::operator()(AVPacket* packet) const {
  av_packet_free(&packet);
}
void AvRelease::operator()(SwrContext* context) const {
  swr_free(&context);
}
void AvRelease::operator()(AVIOContext* context) const {
  av_freep(&context->buffer);
  avio_context_free(&context);
}
void AvCloseInput::operator()(AVFormatContext* context) const {
  avformat_close_input(&context);
}
void AvFreeOutput::operator()(AVFormatContext* context) const {
  avformat_free_context(context);
}

}  // namespace platform
