#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <utility>

#include <QString>

#include "document/display/OVNotices.h"
#include "document/transport/OVInputState.h"

/// Turns the state of the input into notices: what is recorded from, that there is no microphone,
/// that nothing comes in, what was lost, that recording has ended. Each lost stretch is also a line
/// on the console, which names the document.
///
/// Threads: main. Real-time: not safe.
class OVInputNotices {
 public:
  /// Digital silence of this many frames is told: 5 s.
  static constexpr std::uint64_t kSilentFrames = 5 * std::uint64_t{platform::kWorkingRate};

  /// `documentName` is asked when it is needed.
  OVInputNotices(OVNotices& notices, std::function<QString()> documentName)
      : notices_(notices), documentName_(std::move(documentName)) {}

  /// Call often, at least several times a second; does nothing while nothing changes.
  void update(const OVInputState& now);

 private:
  void begin(const OVInputState& now);
  void end(const OVInputState& now);
  void showSource(const OVInputState& now);
  void showMicrophone(const OVInputState& now);
  void showSilence(const OVInputState& now);
  void showLosses(const OVInputState& now);
  void showLossesInAll(const OVInputState& now);
  void log(const OVRecordingLoss& loss) const;

  OVNotices& notices_;
  const std::function<QString()> documentName_;
  bool wasRecording_ = false;
  std::optional<std::string> shownSource_;  // its id, which may be empty
  std::size_t shownLosses_ = 0;             // of this recording
};
