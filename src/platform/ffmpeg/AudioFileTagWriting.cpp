#include "platform/ffmpeg/AudioFileTagWriting.h"

#include <array>
#include <cerrno>
#include <cstring>

#include "platform/ffmpeg/AvResources.h"
#include "platform/ffmpeg/Ffmpeg.h"

namespace platform {
namespace {

struct Key {
  AudioFileTag tag;
  const char* name;       // FFmpeg's, which every muxer but one translates
  const char* nameInCaf;  // that format's own
};

constexpr std::array kKeys{
    Key{AudioFileTag::title, "title", "title"},
    Key{AudioFileTag::artist, "artist", "artist"},
    Key{AudioFileTag::album, "album", "album"},
    Key{AudioFileTag::date, "date", "recorded date"},
    Key{AudioFileTag::comment, "comment", "comments"},
    Key{AudioFileTag::genre, "genre", "genre"},
    Key{AudioFileTag::track, "track", "track number"},
};

AVCodecID pictureCodec(const std::string& bytes) {
  return bytes.starts_with("\x89PNG") ? AV_CODEC_ID_PNG : AV_CODEC_ID_MJPEG;
}

int addCoverStream(AVFormatContext& muxer, const std::string& cover) {
  AVStream* const picture = avformat_new_stream(&muxer, nullptr);
  if (picture == nullptr) {
    return AVERROR(ENOMEM);
  }
  picture->disposition = AV_DISPOSITION_ATTACHED_PIC;
  picture->time_base = muxer.streams[0]->time_base;
  picture->codecpar->codec_type = AVMEDIA_TYPE_VIDEO;
  picture->codecpar->codec_id = pictureCodec(cover);
  picture->codecpar->width = 1;  // FFmpeg wants a size, and writes none
  picture->codecpar->height = 1;
  return av_dict_set(&picture->metadata, "comment", "Cover (front)", 0);
}

}  // namespace

int addTags(AVFormatContext& muxer, AudioFileKind kind, const AudioFileTags& tags) {
  for (const Key& key : kKeys) {
    const auto text = tags.texts.find(key.tag);
    if (text == tags.texts.end()) {
      continue;
    }
    const char* const name = kind == AudioFileKind::caf ? key.nameInCaf : key.name;
    if (const int result = av_dict_set(&muxer.metadata, name, text->second.c_str(), 0);
        result < 0) {
      return result;
    }
  }
  return tags.cover.empty() || !holdsCover(kind) ? 0 : addCoverStream(muxer, tags.cover);
}

int writeCover(AVFormatContext& muxer, const AudioFileTags& tags) {
  if (muxer.nb_streams < 2) {
    return 0;
  }
  const AvPacket packet(av_packet_alloc());
  if (packet == nullptr) {
    return AVERROR(ENOMEM);
  }
  if (const int result = av_new_packet(packet.get(), static_cast<int>(tags.cover.size()));
      result < 0) {
    return result;
  }
  std::memcpy(packet->data, tags.cover.data(), tags.cover.size());
  packet->stream_index = 1;
  packet->flags |= AV_PKT_FLAG_KEY;
  packet->pts = 0;
  packet->dts = 0;
  return av_write_frame(&muxer, packet.get());
}

}  // namespace platform
