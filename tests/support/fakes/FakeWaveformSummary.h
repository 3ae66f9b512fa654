#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "waveform/OVWaveformSummary.h"

/// A summary with elements set by a test. Counts the copies made of them, and fails the test if its
/// generation lock is taken.
/// Threads: one, except isRegenerating and the counter.
class FakeWaveformSummary final : public OVWaveformSummary {
 public:
  explicit FakeWaveformSummary(std::vector<float> elements = {}) : elements_(std::move(elements)) {}

  void setElements(std::vector<float> elements) { elements_ = std::move(elements); }
  void setRegenerating(bool regenerating) { isRegenerating_ = regenerating; }
  [[nodiscard]] int copiesTaken() const { return copiesTaken_; }
  [[nodiscard]] const float* lastDestination() const { return lastDestination_; }

  void generate(const std::atomic<bool>*) override {}
  void generateNoLock(const std::atomic<bool>*) override {}
  void setShouldRegenerateWaveform(bool) override {}
  [[nodiscard]] bool isRegenerating() const override { return isRegenerating_; }
  void reset() override {}
  [[nodiscard]] std::uint64_t readerPos() const override { return 0; }
  [[nodiscard]] std::uint64_t elementCount() const override { return elements_.size(); }
  [[nodiscard]] const float* data() const override { return elements_.data(); }
  void copyElementsInto(std::vector<float>& elements) const override {
    elements.assign(elements_.begin(), elements_.end());
    lastDestination_ = elements.data();
    ++copiesTaken_;
  }
  [[nodiscard]] double powerAtPosition(double) const override { return 0.0; }
  [[nodiscard]] double maxAmplitude() const override { return 1.0; }
  [[nodiscard]] std::shared_ptr<OVWaveformSummary> copy() const override {
    return std::make_shared<FakeWaveformSummary>(elements_);
  }
  [[nodiscard]] std::shared_ptr<OVAudioBufferInterface> audioBuffer() const override {
    return nullptr;
  }
  void lock() override { ADD_FAILURE() << "a view took the lock that a generation holds"; }
  void unlock() override {}

 private:
  std::vector<float> elements_;
  std::atomic<bool> isRegenerating_{false};
  mutable std::atomic<int> copiesTaken_{0};
  mutable const float* lastDestination_ = nullptr;
};
