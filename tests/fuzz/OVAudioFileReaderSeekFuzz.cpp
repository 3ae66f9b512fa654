// Any bytes as a file whose reads fail at moments that the input chooses too: they end early, with
// and without an error, the bytes at another place cannot be reached, or the size is unknown. What
// must hold: no crash, no undefined behaviour, no endless work, finite samples only, one alert at
// most, just when the opening or a read failed; and where nothing went wrong on the way, the same
// frames after a rewind.
#include <array>
#include <cerrno>
#include <vector>

#include "fuzz/FuzzedReader.h"
#include "platform/media/FfmpegModule.h"

namespace {

enum class Trouble {
  none,
  error,      // no bytes
  part,       // some bytes, then an error
  shortened,  // some bytes, as at the end of the file
  jump,       // an error unless it goes on where the last read ended
  kinds,
};

/// What happens to one read after another; afterwards they succeed, or begin again.
struct Plan {
  struct Moment {
    Trouble trouble = Trouble::none;
    std::uint64_t bytes = 0;  // that are read all the same
    int error = 0;
  };

  explicit Plan(fuzz::Input& input) {
    const std::uint8_t options = input.byte();
    hidesSize = (options & 1) != 0;
    repeats = (options & 2) != 0;
    moments.resize(input.byte() % 32);
    for (Moment& moment : moments) {
      constexpr std::array kErrors{EIO, EINVAL, ENOMEM, EAGAIN, ESTALE, EISDIR};
      const std::uint8_t kind = input.byte();
      moment.trouble = static_cast<Trouble>(kind % static_cast<unsigned>(Trouble::kinds));
      moment.error = kErrors[kind / static_cast<unsigned>(Trouble::kinds) % kErrors.size()];
      moment.bytes = input.number(2);
    }
  }

  Moment next() {
    if (at == moments.size() && repeats) {
      at = 0;
    }
    return at < moments.size() ? moments[at++] : Moment{};
  }

  bool hidesSize = false;
  bool repeats = false;
  std::vector<Moment> moments;
  std::size_t at = 0;
  bool struck = false;  // something has gone wrong
};

class TroubledFile : public fuzz::BytesFile {
 public:
  TroubledFile(const fuzz::Input& bytes, Plan& plan)
      : BytesFile(bytes.data(), bytes.size()), plan_(plan) {}

  platform::FileTransfer readAt(void* destination, std::uint64_t byteCount,
                                std::uint64_t offset) override {
    const Plan::Moment moment = plan_.next();
    const bool strikes =
        moment.trouble != Trouble::none && (moment.trouble != Trouble::jump || offset != end_);
    if (!strikes) {
      const auto transfer = BytesFile::readAt(destination, byteCount, offset);
      end_ = offset + transfer.byteCount;
      return transfer;
    }
    plan_.struck = true;
    const bool hasSome = moment.trouble == Trouble::part || moment.trouble == Trouble::shortened;
    auto transfer =
        BytesFile::readAt(destination, hasSome ? std::min(byteCount, moment.bytes) : 0, offset);
    transfer.error = moment.trouble == Trouble::shortened ? 0 : moment.error;
    end_ = offset + transfer.byteCount;
    return transfer;
  }
  std::uint64_t size() override { return plan_.hidesSize ? 0 : BytesFile::size(); }

 private:
  Plan& plan_;
  std::uint64_t end_ = 0;  // of the last read
};

}  // namespace

void fuzz::prepare() {
  require(platform::ffmpegModule() != nullptr, "the module is there");
}

void fuzz::execute(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  const std::uint8_t kind = input.byte();
  Plan plan(input);
  OneFile file([&] { return std::make_unique<TroubledFile>(input, plan); });
  const platform::Installed<platform::UserAudioFiles>::Scope storage(file);
  const auto services = std::make_shared<CountingServices>();
  const platform::Installed<platform::ApplicationServices>::Scope installation(services);

  const auto reader = OVAudioFileReader::initWithFile(nameOfKind(kind));
  if (reader == nullptr) {
    require(services->alerts == 1, "a failed opening is told once");
    return;
  }
  require(reader->fileSizeInFrames() >= 0, "a length is not negative");
  const std::uint64_t first = hear(*reader);
  require(services->alerts == (reader->failed() ? 1 : 0), "a failed read is told once");
  reader->rewind();
  const std::uint64_t second = hear(*reader);
  require(plan.struck || second == first, "as many frames after a rewind");
  require(services->alerts <= 1, "nothing is told twice");
}
