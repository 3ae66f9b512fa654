#include "controls/OVRecorderWindow.h"
#include "controls/OVSpectrumStrip.h"
#include "controls/buttons/OVHoverButton.h"
#include "controls/OVTransportBackgroundView.h"
#include "displays/OVFFTView.h"
#include "document/VLRecorderWindowController.h"
#include "document/spectrum/OVSpectrumAnalyser.h"

namespace {

constexpr double kSpectrumInterval = 1.0 / 30.0;  // seconds

}  // namespace

void VLRecorderWindowController::setupSpectrum() {
  if (window_ && fftView_) {
    spectrumStrip_ = std::make_unique<OVSpectrumStrip>(window_, fftView_->parentWidget());
  }
  if (fftButton_) {
    fftButton_->setAction([this](OVTrackingButton* sender) { toggleFFT(sender); });
    fftButton_->setTarget(weak_from_this());
  }
}

void VLRecorderWindowController::toggleFFT(QObject* /*sender*/) {
  if (fftTimer_) {
    fftTimer_.reset();
  } else {
    fftTimer_ = std::make_unique<platform::Timer>(kSpectrumInterval, [self = weak_from_this()] {
      if (const auto controller = self.lock()) {
        controller->fireFFT();
      }
    });
  }
  if (transportBackView_) {
    transportBackView_->setRenderBottomShadow(isSpectrumShown());
    setViewNeedsDisplay(transportBackView_);
  }
  if (fftButton_) {
    fftButton_->setIsOn(isSpectrumShown());  // the menu item turns it too
  }
  if (spectrumStrip_) {
    spectrumStrip_->setShown(isSpectrumShown());
  }
}

void VLRecorderWindowController::fireFFT() {
  if (isPlaying()) {
    doFFT();
  }
  if (isRecording()) {
    const auto quarter = fft_data_.nextQuarter();
    doFFTwithData(quarter.data(), static_cast<std::uint32_t>(quarter.size()));
  }
}

// Made when it is first needed: most windows never show a spectrum.
OVSpectrumAnalyser* VLRecorderWindowController::spectrumAnalyser() {
  if (!spectrumAnalyser_) {
    spectrumAnalyser_ = OVSpectrumAnalyser::create();
  }
  return spectrumAnalyser_.get();
}

void VLRecorderWindowController::doFFT() {
  if (auto* const analyser = spectrumAnalyser()) {
    showMagnitudes(analyser->doFFT(buffer_.get(), playbackPosition()));
  }
}

void VLRecorderWindowController::doFFTwithData(const void* data, std::uint32_t size) {
  if (auto* const analyser = spectrumAnalyser()) {
    showMagnitudes(analyser->doFFTwithData(data, size));
  }
}

void VLRecorderWindowController::showMagnitudes(std::span<const float> magnitudes) {
  if (magnitudes.empty() || !fftView_) {
    return;
  }
  fftView_->setSize(magnitudes.size());
  fftView_->setData(magnitudes.data());
  setViewNeedsDisplay(fftView_);
}
