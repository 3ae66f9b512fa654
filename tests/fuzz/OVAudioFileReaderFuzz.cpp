// Any bytes as a file: opened, measured, read, rewound and read again. What must hold whatever they
// are: no crash, no undefined behaviour, no endless work, finite samples only, the same frames
// after a rewind, one alert at most.
#include "fuzz/FuzzedReader.h"
#include "platform/media/FfmpegModule.h"

// The module must be loaded before the first input: its coverage counts too.
void fuzz::prepare() {
  require(platform::ffmpegModule() != nullptr, "the module is there");
}

// The first byte chooses the suffix.
void fuzz::execute(const std::uint8_t* data, std::size_t size) {
  if (size == 0) {
    return;
  }
  OneFile file([=] { return std::make_unique<BytesFile>(data + 1, size - 1); });
  const platform::Installed<platform::UserAudioFiles>::Scope storage(file);
  const auto services = std::make_shared<CountingServices>();
  const platform::Installed<platform::ApplicationServices>::Scope installation(services);

  const auto reader = OVAudioFileReader::initWithFile(nameOfKind(data[0]));
  if (reader == nullptr) {
    require(services->alerts == 1, "a failed opening is told once");
    return;
  }
  require(reader->fileSizeInFrames() >= 0, "a length is not negative");
  const std::uint64_t first = hear(*reader);
  const bool failed = reader->failed();
  require(services->alerts == (failed ? 1 : 0), "a failed read is told once");
  reader->rewind();
  require(hear(*reader) == first, "as many frames after a rewind");
  require(services->alerts <= 1, "nothing is told twice");
}
