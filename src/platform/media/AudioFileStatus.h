#pragma once

#include "platform/base/AudioTypes.h"

/// Statuses of audio files.
///
/// Threads: any. Real-time: safe.
namespace platform {

inline constexpr AudioStatus kFileNotFoundStatus = -43;
/// No permission to read or write.
inline constexpr AudioStatus kFilePermissionStatus = fourCharacterStatus("prm?");
/// The path is a folder.
inline constexpr AudioStatus kFolderStatus = fourCharacterStatus("dir?");
/// A pipe, a socket or a device: reading one could block forever.
inline constexpr AudioStatus kNotARegularFileStatus = fourCharacterStatus("spc?");
inline constexpr AudioStatus kEmptyFileStatus = -39;
/// The name is too long for the system.
inline constexpr AudioStatus kBadFileNameStatus = -37;
/// The file type is known, but the file holds no sound.
inline constexpr AudioStatus kNoAudioStatus = fourCharacterStatus("snd?");
/// The encoding, sample rate or number of channels cannot be converted.
inline constexpr AudioStatus kUnsupportedDataFormatStatus = fourCharacterStatus("fmt?");
/// Damaged or truncated.
inline constexpr AudioStatus kInvalidFileStatus = fourCharacterStatus("dta?");
/// The disk or the user's quota is full.
inline constexpr AudioStatus kDiskFullStatus = -34;
/// Larger than the file type, the file system or a user limit allows.
inline constexpr AudioStatus kFileTooLargeStatus = fourCharacterStatus("big?");
/// The medium failed.
inline constexpr AudioStatus kFileInputOutputStatus = -36;
/// The process or the system has too many files open.
inline constexpr AudioStatus kTooManyOpenFilesStatus = -42;
inline constexpr AudioStatus kOutOfMemoryStatus = -108;
/// FFmpeg, which reads and writes audio files, is missing.
inline constexpr AudioStatus kFfmpegMissingStatus = fourCharacterStatus("lib?");
/// Cancelled by the user: not a failure, never shown.
inline constexpr AudioStatus kCancelledStatus = -128;

}  // namespace platform
