#include "platform/ffmpeg/AudioFileTagReading.h"

#include <array>
#include <cstddef>
#include <string_view>

#include "platform/ffmpeg/Ffmpeg.h"

namespace platform {
namespace {

struct Key {
  AudioFileTag tag;
  const char* name;
};

// FFmpeg's names, and for each tag those that it passes on as they are in CAF and AIFF.
constexpr std::array kKeys{
    Key{AudioFileTag::title, "title"},      Key{AudioFileTag::artist, "artist"},
    Key{AudioFileTag::artist, "author"},    Key{AudioFileTag::album, "album"},
    Key{AudioFileTag::date, "date"},        Key{AudioFileTag::date, "recorded date"},
    Key{AudioFileTag::date, "year"},        Key{AudioFileTag::comment, "comment"},
    Key{AudioFileTag::comment, "comments"}, Key{AudioFileTag::genre, "genre"},
    Key{AudioFileTag::track, "track"},      Key{AudioFileTag::track, "track number"},
};

bool isContinuation(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

// The bytes of the UTF-8 character that begins with this one; 0 for none.
std::size_t lengthOfCharacter(char first) {
  const auto byte = static_cast<unsigned char>(first);
  return byte < 0x80   ? 1
         : byte < 0xC2 ? 0
         : byte < 0xE0 ? 2
         : byte < 0xF0 ? 3
         : byte < 0xF5 ? 4
                       : 0;
}

bool isUtf8(std::string_view text) {
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t length = lengthOfCharacter(text[i]);
    if (length == 0 || i + length > text.size()) {
      return false;
    }
    for (std::size_t k = 1; k < length; ++k) {
      if (!isContinuation(text[i + k])) {
        return false;
      }
    }
    i += length;
  }
  return true;
}

std::string fromLatin1(std::string_view text) {
  std::string utf8;
  for (const char each : text) {
    const auto byte = static_cast<unsigned char>(each);
    if (byte < 0x80) {
      utf8 += each;
    } else {
      utf8 += static_cast<char>(0xC0U | byte >> 6U);
      utf8 += static_cast<char>(0x80U | (byte & 0x3FU));
    }
  }
  return utf8;
}

void addTexts(const AVDictionary* dictionary, AudioFileTags& tags) {
  for (const Key& key : kKeys) {
    const AVDictionaryEntry* const entry = av_dict_get(dictionary, key.name, nullptr, 0);
    if (entry != nullptr && *entry->value != '\0') {
      tags.texts.try_emplace(key.tag,
                             isUtf8(entry->value) ? entry->value : fromLatin1(entry->value));
    }
  }
}

// The front cover if the pictures say which it is, otherwise the first.
void takeCover(const AVStream& stream, AudioFileTags& tags) {
  const AVPacket& picture = stream.attached_pic;
  const AVCodecID codec = stream.codecpar->codec_id;
  if ((stream.disposition & AV_DISPOSITION_ATTACHED_PIC) == 0 || picture.size <= 0 ||
      (codec != AV_CODEC_ID_MJPEG && codec != AV_CODEC_ID_PNG)) {
    return;
  }
  const AVDictionaryEntry* const role = av_dict_get(stream.metadata, "comment", nullptr, 0);
  if (tags.cover.empty() || (role != nullptr && std::string_view(role->value) == "Cover (front)")) {
    tags.cover.assign(reinterpret_cast<const char*>(picture.data),
                      static_cast<std::size_t>(picture.size));
  }
}

}  // namespace

AudioFileTags tagsOf(const AVFormatContext& file, const AVStream& sound) {
  AudioFileTags tags;
  addTexts(file.metadata, tags);
  addTexts(sound.metadata, tags);
  for (unsigned i = 0; i < file.nb_streams; ++i) {
    takeCover(*file.streams[i], tags);
  }
  return tags;
}

}  // namespace platform
