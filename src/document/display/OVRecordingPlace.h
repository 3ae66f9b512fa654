#pragma once

#include <cstdint>
#include <optional>

#include <QPointer>

#include "controls/buttons/OVTransportButton.h"
#include "waveform/views/OVRecordingTickView.h"

class OVDocumentAudio;
class OVFileOperation;
class OVFramePositions;
class OVRecorderWindow;
class OVTransport;

/// Shows where the next recording goes: by a tick over the waveform, and in the tooltip of Record.
/// Either may be missing. Nothing is marked while the document records, is empty or loads a file.
///
/// Threads: main. Real-time: not safe.
class OVRecordingPlace {
 public:
  /// The parts of the document that it uses; they outlive it.
  struct Parts {
    const OVDocumentAudio& audio;
    const OVFramePositions& positions;
    const OVFileOperation& operation;
    const OVTransport& transport;
  };

  explicit OVRecordingPlace(const Parts& parts) : parts_(parts) {}

  void connect(OVRecorderWindow* window);

  /// Shows the place if it is another one than at the last update; otherwise draws nothing.
  void update();

 private:
  struct Place {
    enum class Kind : std::uint8_t { none, recording, inside, end };
    Kind kind = Kind::none;
    std::uint64_t frame = 0;
    std::uint64_t size = 0;  // of the audio

    friend bool operator==(const Place&, const Place&) = default;
  };

  [[nodiscard]] Place place() const;
  void showTick(const Place& place) const;
  [[nodiscard]] QString tooltip(const Place& place) const;
  [[nodiscard]] QString time(const Place& place) const;

  const Parts parts_;
  QPointer<OVRecordingTickView> tick_;
  QPointer<OVTransportButton> record_;
  std::optional<Place> shown_;
};
