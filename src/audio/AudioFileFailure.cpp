#include "audio/AudioFileFailure.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>

#include <QString>

#include "platform/files/ReplacementFile.h"
#include "platform/mainloop/Localization.h"
#include "platform/mainloop/ShownName.h"
#include "platform/media/AudioFileStatus.h"

namespace {

using platform::localized;
using platform::TextKey;
using platform::textKey;

struct Sentence {
  platform::AudioStatus status;
  TextKey text;
};

// No failure has this status: the last row of each table serves every status without its own row.
constexpr platform::AudioStatus kAnyOther = platform::kAudioStatusOk;

constexpr std::array kOpening{
    Sentence{platform::kFileNotFoundStatus, textKey("There is no file %1.")},
    Sentence{platform::kFilePermissionStatus,
             textKey("You are not allowed to read %1. Ask its owner, or change its permissions.")},
    Sentence{platform::kFolderStatus, textKey("%1 is a folder. Choose a sound file inside it.")},
    Sentence{
        platform::kNotARegularFileStatus,
        textKey("%1 is not an ordinary file, but a device or a connection to another program.")},
    Sentence{platform::kEmptyFileStatus, textKey("%1 is empty.")},
    Sentence{platform::kBadFileNameStatus, textKey("The name or the path of %1 is too long.")},
    Sentence{platform::kNoAudioStatus, textKey("There is no sound in %1.")},
    Sentence{platform::kUnsupportedDataFormatStatus,
             textKey("The sound in %1 is encoded in a way that cannot be read. Up to 8 channels "
                     "and rates from 1,000 to 768,000 Hz can be.")},
    Sentence{platform::kFileInputOutputStatus,
             textKey("The medium on which %1 is stored reported an error.")},
    Sentence{
        platform::kTooManyOpenFilesStatus,
        textKey(
            "%1 could not be opened, because too many files are open. Close some windows first.")},
    Sentence{platform::kOutOfMemoryStatus, textKey("There was not enough memory to read %1.")},
    Sentence{platform::kFfmpegMissingStatus,
             textKey("%1 cannot be read: FFmpeg’s libraries are missing on this computer.")},
    Sentence{kAnyOther, textKey("%1 is not a sound file that can be read, or it is damaged.")},
};

constexpr std::array kReading{
    Sentence{platform::kFileInputOutputStatus,
             textKey("The medium on which %1 is stored reported an error. What could be read "
                     "before it is kept.")},
    Sentence{platform::kOutOfMemoryStatus,
             textKey("There was not enough memory to read all of %1. What could be read is kept.")},
    Sentence{platform::kUnsupportedDataFormatStatus,
             textKey("From some place on the sound in %1 is encoded in a way that cannot be read. "
                     "What came before it is kept.")},
    Sentence{platform::kFileNotFoundStatus,
             textKey("%1 can no longer be read. What could be read of it is kept.")},
    Sentence{platform::kFilePermissionStatus,
             textKey("%1 can no longer be read. What could be read of it is kept.")},
    Sentence{kAnyOther, textKey("%1 is damaged or was cut off. What could be read of it is kept.")},
};

constexpr std::array kWriting{
    Sentence{platform::kFileNotFoundStatus,
             textKey("The folder in which %1 was to be written is not there. Choose another one.")},
    Sentence{
        platform::kFilePermissionStatus,
        textKey(
            "You are not allowed to write %1. Choose another folder, or change the permissions.")},
    Sentence{platform::kFolderStatus, textKey("%1 is a folder. Choose another name.")},
    Sentence{platform::kNotARegularFileStatus,
             textKey("%1 is not an ordinary file. Choose another name.")},
    Sentence{platform::kBadFileNameStatus,
             textKey("The name or the path of %1 is too long. Choose a shorter one.")},
    Sentence{platform::kDiskFullStatus,
             textKey("There is not enough room to write %1. Make room, or choose another disk.")},
    Sentence{platform::kFileTooLargeStatus,
             textKey("%1 would be larger than a file of its kind or on this disk may be. Choose "
                     "another kind of file or another disk.")},
    Sentence{
        platform::kTooManyOpenFilesStatus,
        textKey(
            "%1 could not be written, because too many files are open. Close some windows first.")},
    Sentence{platform::kOutOfMemoryStatus, textKey("There was not enough memory to write %1.")},
    Sentence{platform::kFfmpegMissingStatus,
             textKey("%1 cannot be written: FFmpeg’s libraries are missing on this computer.")},
    Sentence{platform::kUnsupportedDataFormatStatus,
             textKey("%1 cannot be written as a file of this kind.")},
    Sentence{platform::kUnsupportedFileTypeStatus,
             textKey("%1 cannot be written as a file of this kind.")},
    Sentence{kAnyOther, textKey("The medium on which %1 was to be written reported an error. It "
                                "may have been removed.")},
};

template <std::size_t rows>
std::string reasonIn(const std::array<Sentence, rows>& table, platform::AudioStatus status,
                     const std::string& path) {
  const auto* const row = std::find_if(
      table.begin(), table.end() - 1, [status](const auto& each) { return each.status == status; });
  // arg() replaces the placeholder only: a "%1" within the file's name is left as it is.
  return localized(row->text).arg(QString::fromStdString(shownFileName(path))).toStdString();
}

}  // namespace

std::string shownFileName(const std::string& path) {
  const std::size_t end = path.find_last_not_of('/');
  const std::string stripped = end == std::string::npos ? path : path.substr(0, end + 1);
  const std::size_t slash = stripped.rfind('/');
  return shownPath(slash == std::string::npos || slash + 1 == stripped.size()
                       ? stripped
                       : stripped.substr(slash + 1));
}

std::string shownPath(const std::string& path) {
  return localized("“%1”").arg(platform::shownName(path)).toStdString();
}

std::string openingFailureReason(platform::AudioStatus status, const std::string& path) {
  return reasonIn(kOpening, status, path);
}

std::string readingFailureReason(platform::AudioStatus status, const std::string& path) {
  return reasonIn(kReading, status, path);
}

std::string closedFolderReason(const std::string& folder) {
  return localized("You may not write in the folder %1. Choose another.")
      .arg(QString::fromStdString(shownFileName(folder)))
      .toStdString();
}

std::string writingFailureReason(platform::AudioStatus status, const std::string& path) {
  // A mere name tells nothing of a folder.
  const bool mayBeFolder =
      status == platform::kFilePermissionStatus && path.find('/') != std::string::npos;
  const std::string closed =
      mayBeFolder ? platform::ReplacementFile::closedFolderBeside(path, EACCES) : std::string();
  return closed.empty() ? reasonIn(kWriting, status, path) : closedFolderReason(closed);
}
