#pragma once

#include <functional>
#include <utility>

/// What a document is doing with a file; one thing at a time. Commands ask this, not the look of a
/// button.
///
/// Threads: main. Real-time: not safe.
class OVFileOperation {
 public:
  enum class State {
    none,
    openingImport,  ///< the file to import is being opened; the audio is not touched yet
    opening,
    importing,
    saving,
    exporting,
  };

  [[nodiscard]] State state() const { return state_; }
  [[nodiscard]] bool isActive() const { return state_ != State::none; }
  /// Audio comes in from a file.
  [[nodiscard]] bool isLoading() const {
    return state_ == State::opening || state_ == State::importing;
  }
  /// Audio goes out to a file.
  [[nodiscard]] bool isWriting() const {
    return state_ == State::saving || state_ == State::exporting;
  }

  void begin(State state) { change(state); }
  void end() { change(State::none); }

  /// Called after every change.
  void setChangeHandler(std::function<void()> handler) { changed_ = std::move(handler); }

 private:
  void change(State state) {
    state_ = state;
    if (changed_) {
      changed_();
    }
  }

  State state_ = State::none;
  std::function<void()> changed_;
};
