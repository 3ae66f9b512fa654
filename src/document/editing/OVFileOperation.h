#pragma once

#include <functional>
#include <utility>

/// The file operation that a document is running, at most one at a time. Commands check this state
/// rather than the state of a button.
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
  /// A file is being read into the document.
  [[nodiscard]] bool isLoading() const {
    return state_ == State::opening || state_ == State::importing;
  }
  [[nodiscard]] bool isImport() const { return state_ == State::importing; }
  /// The document is being written to a file.
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
