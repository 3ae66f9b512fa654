#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include <QPointer>

#include "audio/OVRecordingLosses.h"
#include "waveform/views/OVLossMarksView.h"

class OVDocumentAudio;
class OVEditHistory;
class OVRecorderWindow;

/// Marks the losses of the last recording over the waveform, whose view may be missing. The marks
/// stay until the next recording begins, and as long as the audio stands as it was recorded: an
/// edit moves or removes what they mark.
///
/// Threads: main. Real-time: not safe.
class OVLossMarks {
 public:
  /// Parts of the document; they outlive it.
  OVLossMarks(const OVDocumentAudio& audio, const OVEditHistory& history)
      : audio_(audio), history_(history) {}

  void connect(OVRecorderWindow* window);

  /// A recording begins; its step has begun.
  void begin();
  /// Shows the losses of the recording, or of the last one; draws nothing if they are shown.
  void update(const std::vector<OVRecordingLoss>& losses);

 private:
  struct Shown {
    std::size_t losses = 0;
    std::uint64_t size = 0;  // of the audio, frames

    friend bool operator==(const Shown&, const Shown&) = default;
  };

  void showLosses(const std::vector<OVRecordingLoss>& losses) const;

  const OVDocumentAudio& audio_;
  const OVEditHistory& history_;
  QPointer<OVLossMarksView> view_;
  std::optional<std::uint64_t> revision_;  // of the history, while it is as recorded
  Shown shown_;
};
