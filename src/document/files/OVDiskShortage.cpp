#include "document/files/OVDiskShortage.h"

#include <filesystem>
#include <new>
#include <system_error>

#include <QLocale>

#include "audio/AudioFileFailure.h"
#include "audio/OVAudioFileReader.h"
#include "platform/files/FreeSpace.h"
#include "platform/mainloop/Localization.h"

namespace {

// No sound that occurs takes less: even silence has packets of several bytes, with 4096 frames at
// most, which the working rate multiplies by five for telephone sound.
constexpr std::uint64_t kMaxFramesPerByte = 4096;

// The length in frames of the working format that a file promises; 0 for none, also for a damaged
// header that promises the impossible, and for an estimate, by which nothing is refused.
std::uint64_t promisedFrames(const OVAudioFileReader& reader, const std::string& path) {
  if (reader.isFileSizeEstimated()) {
    return 0;
  }
  const auto frames = static_cast<std::uint64_t>(reader.fileSizeInFrames());
  std::error_code error;
  const std::uint64_t bytes = std::filesystem::file_size(path, error);
  return !error && frames / kMaxFramesPerByte > bytes ? 0 : frames;
}

QString shownSize(std::uint64_t bytes, int decimals) {
  return QLocale().formattedDataSize(static_cast<qint64>(bytes), decimals,
                                     QLocale::DataSizeSIFormat);
}

}  // namespace

QString OVDiskShortage::sentence() const {
  constexpr int kMaxDecimals = 3;
  int decimals = 1;
  while (decimals < kMaxDecimals &&
         shownSize(neededBytes, decimals) == shownSize(freeBytes, decimals)) {
    ++decimals;
  }
  return platform::localized("It needs about %1, but the disk of the folder %2 has only %3 left.")
      .arg(shownSize(neededBytes, decimals), QString::fromStdString(shownPath(folder)),
           shownSize(freeBytes, decimals));
}

std::optional<OVDiskShortage> shortageOf(const std::string& folder, std::uint64_t neededBytes) {
  if (folder.empty() || neededBytes == 0) {
    return std::nullopt;
  }
  const auto space = platform::freeSpace()->ofFolder(folder);
  if (!space || space->freeBytes >= neededBytes) {
    return std::nullopt;
  }
  return OVDiskShortage{
      .folder = folder, .neededBytes = neededBytes, .freeBytes = space->freeBytes};
}

std::optional<OVDiskShortage> shortageOfLoading(const OVAudioFileReader& reader,
                                                const std::string& path,
                                                const std::string& folder) try {
  return shortageOf(folder, promisedFrames(reader, path) * platform::kWorkingFrameBytes);
} catch (const std::bad_alloc&) {
  return std::nullopt;
}
