#include "audio/AudioFileFailure.h"

#include <QChar>
#include <QString>

#include "platform/mainloop/Localization.h"
#include "platform/media/AudioFileStatus.h"

namespace {

using platform::localized;
using platform::TextKey;
using platform::textKey;

// Replaces the placeholder only: a "%1" within the file's name is left as it is.
std::string withName(TextKey sentence, const std::string& path) {
  return localized(sentence).arg(QString::fromStdString(shownFileName(path))).toStdString();
}

TextKey openingSentence(platform::AudioStatus status) {
  switch (status) {
    case platform::kFileNotFoundStatus:
      return textKey("%1 is no longer there. It may have been moved, renamed or deleted.");
    case platform::kFilePermissionStatus:
      return textKey("You are not allowed to read %1. Ask its owner, or change its permissions.");
    case platform::kFolderStatus:
      return textKey("%1 is a folder. Choose a sound file inside it.");
    case platform::kNotARegularFileStatus:
      return textKey(
          "%1 is not an ordinary file, but a device or a connection to another program.");
    case platform::kEmptyFileStatus:
      return textKey("%1 is empty.");
    case platform::kBadFileNameStatus:
      return textKey("The name or the path of %1 is too long.");
    case platform::kNoAudioStatus:
      return textKey("There is no sound in %1.");
    case platform::kUnsupportedDataFormatStatus:
      return textKey(
          "The sound in %1 is encoded in a way that cannot be read. Up to 8 channels and rates "
          "from 1,000 to 768,000 Hz can be.");
    case platform::kFileInputOutputStatus:
      return textKey("The medium on which %1 is stored reported an error.");
    case platform::kTooManyOpenFilesStatus:
      return textKey(
          "%1 could not be opened, because too many files are open. Close some windows first.");
    case platform::kOutOfMemoryStatus:
      return textKey("There was not enough memory to read %1.");
    case platform::kFfmpegMissingStatus:
      return textKey("%1 cannot be read: FFmpeg's libraries are missing on this computer.");
    default:
      return textKey("%1 is not a sound file that can be read, or it is damaged.");
  }
}

TextKey readingSentence(platform::AudioStatus status) {
  switch (status) {
    case platform::kFileInputOutputStatus:
      return textKey(
          "The medium on which %1 is stored reported an error. What could be read before it is "
          "kept.");
    case platform::kOutOfMemoryStatus:
      return textKey("There was not enough memory to read all of %1. What could be read is kept.");
    case platform::kUnsupportedDataFormatStatus:
      return textKey(
          "From some place on the sound in %1 is encoded in a way that cannot be read. What "
          "came "
          "before it is kept.");
    case platform::kFileNotFoundStatus:
    case platform::kFilePermissionStatus:
      return textKey("%1 can no longer be read. What could be read of it is kept.");
    default:
      return textKey("%1 is damaged or was cut off. What could be read of it is kept.");
  }
}

TextKey writingSentence(platform::AudioStatus status) {
  switch (status) {
    case platform::kFileNotFoundStatus:
      return textKey("The folder in which %1 was to be written is not there. Choose another one.");
    case platform::kFilePermissionStatus:
      return textKey(
          "You are not allowed to write %1. Choose another folder, or change the permissions.");
    case platform::kFolderStatus:
      return textKey("%1 is a folder. Choose another name.");
    case platform::kNotARegularFileStatus:
      return textKey("%1 is not an ordinary file. Choose another name.");
    case platform::kBadFileNameStatus:
      return textKey("The name or the path of %1 is too long. Choose a shorter one.");
    case platform::kDiskFullStatus:
      return textKey("There is not enough room to write %1. Make room, or choose another disk.");
    case platform::kFileTooLargeStatus:
      return textKey(
          "%1 would be larger than a file of its kind or on this disk may be. Choose another "
          "kind of file or another disk.");
    case platform::kTooManyOpenFilesStatus:
      return textKey(
          "%1 could not be written, because too many files are open. Close some windows first.");
    case platform::kOutOfMemoryStatus:
      return textKey("There was not enough memory to write %1.");
    case platform::kFfmpegMissingStatus:
      return textKey("%1 cannot be written: FFmpeg's libraries are missing on this computer.");
    case platform::kUnsupportedDataFormatStatus:
    case platform::kUnsupportedFileTypeStatus:
      return textKey("%1 cannot be written as a file of this kind.");
    default:
      return textKey(
          "The medium on which %1 was to be written reported an error. It may have been "
          "removed.");
  }
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
  QString shown = QString::fromUtf8(path);
  for (QChar& character : shown) {
    // Formatting characters too: some reverse the direction of the text after them.
    if (character.category() == QChar::Other_Control ||
        character.category() == QChar::Other_Format ||
        character.category() == QChar::Separator_Line ||
        character.category() == QChar::Separator_Paragraph) {
      character = u' ';
    }
  }
  return localized("“%1”").arg(shown).toStdString();
}

std::string openingFailureReason(platform::AudioStatus status, const std::string& path) {
  return withName(openingSentence(status), path);
}

std::string readingFailureReason(platform::AudioStatus status, const std::string& path) {
  return withName(readingSentence(status), path);
}

std::string writingFailureReason(platform::AudioStatus status, const std::string& path) {
  return withName(writingSentence(status), path);
}
