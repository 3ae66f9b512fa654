#include "document/spectrum/OVSpectrum.h"

#include <utility>

#include "controls/OVRecorderWindow.h"
#include "controls/OVSpectrumStrip.h"
#include "controls/OVTransportBackgroundView.h"
#include "controls/buttons/OVHoverButton.h"
#include "displays/OVFFTView.h"
#include "platform/views/ViewRedraw.h"

namespace {

constexpr double kInterval = 1.0 / 30.0;  // seconds

}  // namespace

OVSpectrum::OVSpectrum() = default;
OVSpectrum::~OVSpectrum() = default;

void OVSpectrum::connect(OVRecorderWindow* window, const std::weak_ptr<void>& target,
                         std::function<void()> toggle) {
  fftButton_ = window->findChild<OVHoverButton*>("fftButton");
  transportBackView_ = window->findChild<OVTransportBackgroundView*>("transportBackView");
  fftView_ = window->findChild<OVFFTView*>("fftView");
  if (fftView_) {
    strip_ = std::make_unique<OVSpectrumStrip>(window, fftView_->parentWidget());
  }
  if (fftButton_) {
    fftButton_->setAction([toggle = std::move(toggle)](OVTrackingButton*) { toggle(); });
    fftButton_->setTarget(target);
  }
}

void OVSpectrum::toggle(std::function<void()> tick) {
  if (fftTimer_) {
    fftTimer_.reset();
  } else {
    fftTimer_ = std::make_unique<platform::Timer>(kInterval, std::move(tick));
  }
  if (transportBackView_) {
    transportBackView_->setRenderBottomShadow(isShown());
    requestRedraw(transportBackView_);
  }
  if (fftButton_) {
    fftButton_->setIsOn(isShown());  // the menu item toggles it too
  }
  if (strip_) {
    strip_->setShown(isShown());
  }
}

// Created on first use: most windows never show a spectrum.
OVSpectrumAnalyser* OVSpectrum::analyser() {
  if (!analyser_) {
    analyser_ = OVSpectrumAnalyser::create();
  }
  return analyser_.get();
}

void OVSpectrum::show(OVAudioBufferInterface* buffer, std::uint64_t fromFrame) {
  if (auto* const spectrum = analyser()) {
    showMagnitudes(spectrum->doFFT(buffer, fromFrame));
  }
}

void OVSpectrum::show(const void* data, std::uint32_t size) {
  if (auto* const spectrum = analyser()) {
    showMagnitudes(spectrum->doFFTwithData(data, size));
  }
}

void OVSpectrum::showMagnitudes(std::span<const float> magnitudes) {
  if (magnitudes.empty() || !fftView_) {
    return;
  }
  fftView_->setSize(magnitudes.size());
  fftView_->setData(magnitudes.data());
  requestRedraw(fftView_);
}
