#include "document/display/OVClipping.h"

#include <algorithm>
#include <cmath>
#include <span>

#include "controls/OVRecorderWindow.h"
#include "displays/OVTimeText.h"
#include "document/editing/OVDocumentAudio.h"
#include "document/editing/OVDocumentLife.h"
#include "platform/mainloop/Localization.h"

void OVClipping::connect(OVRecorderWindow* window) {
  lamp_ = window->findChild<OVClippingLamp*>("clippingLamp");
  if (lamp_) {
    lamp_->setAction([lamp = lamp_](OVTrackingButton*) { lamp->turnOff(); });
    lamp_->setTarget(life_.document());
  }
}

void OVClipping::begin() {
  firstFrame_.store(kNone, std::memory_order_relaxed);
  shown_.reset();
  if (lamp_) {
    lamp_->turnOff();
  }
}

void OVClipping::chunkWritten(const void* data, std::uint64_t atByteOffset,
                              std::uint32_t withSize) {
  if (firstFrame_.load(std::memory_order_relaxed) != kNone) {
    return;
  }
  const std::span samples(static_cast<const float*>(data), withSize / sizeof(float));
  const auto clipped =
      std::ranges::find_if(samples, [](float sample) { return std::abs(sample) >= kClipped; });
  const std::uint64_t frameSize = audio_.bytesPerFrame();
  if (clipped != samples.end() && frameSize != 0) {
    const auto place = static_cast<std::uint64_t>(clipped - samples.begin()) * sizeof(float);
    firstFrame_.store((atByteOffset + place) / frameSize, std::memory_order_relaxed);
  }
}

void OVClipping::update() {
  const auto clipped = firstFrame();
  if (!clipped || clipped == shown_) {
    return;
  }
  shown_ = clipped;
  if (lamp_) {
    const QString time = OVTimeText::formatTime(audio_.secondsOfFrames(*clipped));
    lamp_->light(platform::localized("Too loud: clipped at %1. Click to turn off.").arg(time));
  }
}

std::optional<std::uint64_t> OVClipping::firstFrame() const {
  const std::uint64_t frame = firstFrame_.load(std::memory_order_relaxed);
  return frame == kNone ? std::nullopt : std::optional(frame);
}
