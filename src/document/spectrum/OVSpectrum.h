#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>

#include <QPointer>

#include "document/spectrum/OVSpectrumAnalyser.h"
#include "platform/mainloop/Timer.h"

class OVAudioBufferInterface;
class OVFFTView;
class OVHoverButton;
class OVRecorderWindow;
class OVSpectrumStrip;
class OVTransportBackgroundView;

/// The spectrum below the transport bar: shown exactly while its timer (30 ticks a second) runs.
/// Its views may be missing.
///
/// Threads: main. Real-time: not safe.
class OVSpectrum {
 public:
  OVSpectrum();
  ~OVSpectrum();
  OVSpectrum(const OVSpectrum&) = delete;
  OVSpectrum& operator=(const OVSpectrum&) = delete;

  /// `toggle` is the button's action, called only while `target` exists.
  void connect(OVRecorderWindow* window, const std::weak_ptr<void>& target,
               std::function<void()> toggle);

  /// Shows or hides the spectrum; the timer calls `tick` while it is shown.
  void toggle(std::function<void()> tick);
  [[nodiscard]] bool isShown() const { return fftTimer_ != nullptr; }
  /// Ends the timer for good; the strip stays as it is.
  void close() { fftTimer_.reset(); }

  /// Shows the spectrum of stored audio from `fromFrame` on: 2048 bins. `buffer` may be null.
  void show(OVAudioBufferInterface* buffer, std::uint64_t fromFrame);
  /// Shows the spectrum of `size` bytes of freshly recorded floats: 512 bins. Does nothing for
  /// fewer than 4 bytes.
  void show(const void* data, std::uint32_t size);

 private:
  [[nodiscard]] OVSpectrumAnalyser* analyser();
  void showMagnitudes(std::span<const float> magnitudes);

  QPointer<OVHoverButton> fftButton_;
  QPointer<OVTransportBackgroundView> transportBackView_;
  QPointer<OVFFTView> fftView_;
  std::unique_ptr<OVSpectrumStrip> strip_;
  std::unique_ptr<OVSpectrumAnalyser> analyser_;  // created on first use
  std::unique_ptr<platform::Timer> fftTimer_;
};
