#pragma once

#include "platform/base/AudioTypes.h"

/// Statuses of audio files.
///
/// Threads: any. Real-time: safe.
namespace platform {

/// There is no file of that name, or no longer.
inline constexpr AudioStatus kFileNotFoundStatus = -43;
/// The user may not read it, or not write there.
inline constexpr AudioStatus kFilePermissionStatus = fourCharacterStatus("prm?");
/// It is a folder.
inline constexpr AudioStatus kFolderStatus = fourCharacterStatus("dir?");
/// It is a pipe, a socket or a device: reading one could wait for ever.
inline constexpr AudioStatus kNotARegularFileStatus = fourCharacterStatus("spc?");
/// It has no bytes at all.
inline constexpr AudioStatus kEmptyFileStatus = -39;
/// The name is too long for the system.
inline constexpr AudioStatus kBadFileNameStatus = -37;
/// The kind of file is known, but it holds no sound.
inline constexpr AudioStatus kNoAudioStatus = fourCharacterStatus("snd?");
/// Sound in an encoding, a rate or a number of channels that cannot be converted.
inline constexpr AudioStatus kUnsupportedDataFormatStatus = fourCharacterStatus("fmt?");
/// Damaged, or cut off.
inline constexpr AudioStatus kInvalidFileStatus = fourCharacterStatus("dta?");
/// The disk, or the user's share of it, is full.
inline constexpr AudioStatus kDiskFullStatus = -34;
/// Larger than the kind of file, the file system or a limit of the user allows.
inline constexpr AudioStatus kFileTooLargeStatus = fourCharacterStatus("big?");
/// The medium failed.
inline constexpr AudioStatus kFileInputOutputStatus = -36;
/// The process or the system has too many files open.
inline constexpr AudioStatus kTooManyOpenFilesStatus = -42;
inline constexpr AudioStatus kOutOfMemoryStatus = -108;
/// FFmpeg, which reads and writes audio files, is not there.
inline constexpr AudioStatus kFfmpegMissingStatus = fourCharacterStatus("lib?");
/// Whoever asked has changed their mind: no failure, never shown.
inline constexpr AudioStatus kCancelledStatus = -128;

}  // namespace platform
