#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/RawAudio.h"
#include "support/TemporaryFolder.h"
#include "support/programs/PrivateSoundServer.h"
#include "support/programs/RunningOrvo.h"
#include "support/programs/VirtualScreen.h"

/// Base of the acceptance tests: a screen, a sound server, the real program, and what a user would
/// do and perceive.
///
/// Threads: the test's own.
class AcceptanceTest : public testing::Test {
 protected:
  using Window = support::VirtualScreen::Window;

  AcceptanceTest();

  /// Starts the program; a fatal failure if its window does not appear.
  void startOrvo(const support::RunningOrvo::Options& options = {});

  /// Plays a whole signal in place of the microphone.
  void feed(const support::Samples& signal);

  /// Presses R and waits until the recording grows.
  void beginRecording();
  /// Records a whole signal, from pressing R to pressing R again.
  void record(const support::Samples& signal);
  /// Waits until a document's temporary file holds the signal: every sample in order, apart from
  /// silence that a busy server inserted.
  void expectRecorded(const support::Samples& signal, std::size_t document = 0);

  /// From now on keeps what is played.
  void listen();
  [[nodiscard]] support::Samples heard() const;
  /// Waits until the signal was heard: every sample in order, apart from silence that a busy server
  /// inserted.
  void expectHeard(const support::Samples& signal);
  /// Whether it was heard without any inserted silence.
  [[nodiscard]] bool wasHeardWithoutAGap(const support::Samples& signal) const;
  /// Presses Space and waits until the server runs the program's stream.
  void beginPlaying();
  void waitUntilPlayed();

  /// The alerts and the questions about unsaved changes on the screen.
  [[nodiscard]] std::vector<Window> alerts() const;
  /// Waits for an alert, expects it to be the only one and presses its button.
  void expectOneAlertAndDismissIt();

  /// Answers to the question whether to save the changes.
  enum class Answer { save, dontSave, cancel };
  /// Waits for the only question whether to save the changes, and answers it by its keys.
  void answerSheet(Answer answer);
  /// Answers a given question.
  void answer(const Window& sheet, Answer answer);

  /// Presses the keys of New Recorder and waits for the new window; empty if none appeared within
  /// `patience`.
  [[nodiscard]] Window openFurtherWindow(std::chrono::milliseconds patience = support::kPatience);

  support::TemporaryFolder folder_;
  std::unique_ptr<support::VirtualScreen> screen_;
  std::unique_ptr<support::PrivateSoundServer> server_;
  std::unique_ptr<support::RunningOrvo> orvo_;
  std::unique_ptr<support::ChildProcess> listener_;
  int parts_ = 0;  ///< files written for feeding and listening, to give each its own name
};

/// Noise, slightly longer than this, so that no block size divides the length.
[[nodiscard]] support::Samples signalOfSeconds(double seconds, std::uint32_t seed);
