#pragma once

#include <cstddef>
#include <cstdint>

/// Plain audio types that every layer shares. Standard library only.
///
/// Threads: any. Real-time: safe.
namespace platform {

/// Result of a call to a sound device, audio queue or audio file. 0 is success; CheckAudioStatus
/// describes every other code in words. Often four printable characters.
using AudioStatus = std::int32_t;

inline constexpr AudioStatus kAudioStatusOk = 0;

/// Packs four characters into a status or an identifier, most significant first.
constexpr std::uint32_t fourCharacterCode(const char (&code)[5]) {
  std::uint32_t value = 0;
  for (int i = 0; i < 4; ++i) {
    value = (value << 8) | static_cast<unsigned char>(code[i]);
  }
  return value;
}

constexpr AudioStatus fourCharacterStatus(const char (&code)[5]) {
  return static_cast<AudioStatus>(fourCharacterCode(code));
}

/// The file type is not supported.
inline constexpr AudioStatus kUnsupportedFileTypeStatus = fourCharacterStatus("wht?");
/// The sound server or driver is unreachable, or no suitable device exists.
inline constexpr AudioStatus kDeviceUnavailableStatus = fourCharacterStatus("!dev");
/// The device was unplugged, or its sound server died.
inline constexpr AudioStatus kDeviceLostStatus = fourCharacterStatus("gone");
/// The device has stood still for some seconds, or its sound server does not answer.
inline constexpr AudioStatus kDeviceStalledStatus = fourCharacterStatus("hang");
/// A parameter is out of range, such as an unsupported format.
inline constexpr AudioStatus kInvalidParameterStatus = -50;
/// The queue was disposed of, or its state does not allow the call.
inline constexpr AudioStatus kInvalidQueueStateStatus = fourCharacterStatus("!que");
/// The system cannot create another thread.
inline constexpr AudioStatus kNoThreadStatus = fourCharacterStatus("!thr");

inline constexpr std::uint32_t kLinearPcmFormat = fourCharacterCode("lpcm");
inline constexpr std::uint32_t kFloatFormatFlag = 1;
inline constexpr std::uint32_t kPackedFormatFlag = 8;

/// Layout of samples in memory. 40 bytes, with the fields in the order that audio queues and files
/// exchange.
struct AudioStreamBasicDescription {
  double mSampleRate = 0;             ///< frames a second
  std::uint32_t mFormatID = 0;        ///< four characters
  std::uint32_t mFormatFlags = 0;     ///< kFloatFormatFlag | kPackedFormatFlag | …
  std::uint32_t mBytesPerPacket = 0;  ///< bytes
  std::uint32_t mFramesPerPacket = 0;
  std::uint32_t mBytesPerFrame = 0;  ///< bytes, all channels of one frame
  std::uint32_t mChannelsPerFrame = 0;
  std::uint32_t mBitsPerChannel = 0;
  std::uint32_t mReserved = 0;

  friend bool operator==(const AudioStreamBasicDescription&,
                         const AudioStreamBasicDescription&) = default;
};
static_assert(sizeof(AudioStreamBasicDescription) == 40);

inline constexpr std::uint32_t kWorkingRate = 44100;  ///< frames a second
inline constexpr std::size_t kWorkingChannels = 2;    ///< left, right
inline constexpr std::uint32_t kWorkingFrameBytes = kWorkingChannels * sizeof(float);

/// Frames that a recorder receives at a time: 92.9 ms.
inline constexpr std::uint32_t kRecordingChunkFrames = 4096;
/// Frames of a file read or written at a time: six seconds.
inline constexpr std::uint32_t kFileChunkFrames = 6 * kWorkingRate;

/// The format of every buffer, recorder and player: interleaved 32-bit float in native byte order.
inline constexpr AudioStreamBasicDescription kWorkingFormat{
    .mSampleRate = kWorkingRate,
    .mFormatID = kLinearPcmFormat,
    .mFormatFlags = kFloatFormatFlag | kPackedFormatFlag,
    .mBytesPerPacket = kWorkingFrameBytes,
    .mFramesPerPacket = 1,
    .mBytesPerFrame = kWorkingFrameBytes,
    .mChannelsPerFrame = kWorkingChannels,
    .mBitsPerChannel = 32,
    .mReserved = 0,
};

/// Level of one channel over the last buffer, linear: 0 is silence, 1 is full scale.
struct AudioQueueLevelMeterState {
  float mAveragePower = 0;  ///< root mean square
  float mPeakPower = 0;     ///< largest magnitude
};
static_assert(sizeof(AudioQueueLevelMeterState) == 8);

}  // namespace platform
