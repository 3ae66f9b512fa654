#include "gallery/GalleryHome.h"

#include <cstdint>
#include <fstream>

#include <QBuffer>
#include <QImage>

#include "audio/OVAudioFileWriter.h"
#include "platform/files/UserAudioFiles.h"
#include "support/RawAudio.h"
#include "support/programs/AudioFileTools.h"

namespace {

std::string cover() {
  QImage picture(64, 64, QImage::Format_RGB32);
  picture.fill(QColor(90, 120, 160));
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  picture.save(&buffer, "PNG");
  return bytes.toStdString();
}

platform::AudioFileTags tags() {
  using platform::AudioFileTag;
  return {.texts = {{AudioFileTag::title, "Evening"},
                    {AudioFileTag::artist, "Two voices"},
                    {AudioFileTag::album, "Autumn"},
                    {AudioFileTag::date, "2026"}},
          .cover = cover()};
}

void write(const std::string& path, std::uint32_t kind, double seconds,
           const platform::AudioFileTags& tags) {
  const auto writer = OVAudioFileWriter::initWithOpenFile(
      platform::userAudioFiles()->createForWriting(path), kind, path, tags);
  const support::Samples samples = support::tune(seconds);
  if (writer) {
    static_cast<void>(writer->sinkData(samples.data(), samples.size() * sizeof(float)));
    static_cast<void>(writer->close());
  }
}

}  // namespace

GalleryHome::GalleryHome() : former_(qgetenv("HOME")), music_(home_.makeFolder("Music")) {
  static_cast<void>(home_.makeFolder("Music/Older takes"));
  write(take(), 0, 8.0, {});
  write(tagged(), 3, 12.0, tags());
  static_cast<void>(support::writeBytes(
      finerTake(), support::wavBytes(96'000, 2, 24, std::string(3'456'000, '\1'))));
  std::ofstream(music_ + "/A song with a long name that says everything about it.mp3")
      << std::string(2'345'678, 'x');
  std::ofstream(music_ + "/Interview.png") << cover();
  std::ofstream(music_ + "/Notes.txt") << "not listed";
  qputenv("HOME", QByteArray::fromStdString(home_.path()));
}

GalleryHome::~GalleryHome() {
  qputenv("HOME", former_);
}
