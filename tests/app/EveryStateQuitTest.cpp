// Quit in every state of a document, chosen in another window that has nothing to save.
#include <filesystem>
#include <string>
#include <tuple>

#include "app/QuitFixture.h"

namespace {

/// The effect of quitting on the program and on the document in a state.
struct Outcome {
  const char* why;
  bool asks = false;                  // one more question is on the screen
  bool tells = false;                 // an alert says why the program does not quit
  bool waits = false;                 // for an answer, or for the end of a file operation
  bool quits = false;                 // at once
  bool asksWhenTheStateEnds = false;  // one more question, when the state has ended
  bool quitsWhenTheStateEnds = false;
  bool recordsOn = false;
  bool othersStay = true;  // the windows that have nothing to save
};

/// The table. `edited`: the document had unsaved changes before it came into the state.
Outcome expected(State state, bool edited) {
  switch (state) {
    case State::asking:
    case State::askingAfterRecording:
      return {.why = "the question that is there is the quit's, too", .waits = true};
    case State::savePending:
      return {.why = "the save that was chosen before is completed first",
              .waits = true,
              .quitsWhenTheStateEnds = true};
    case State::savePanelWhileRecording:
    case State::importPanelWhileRecording:
      return {.why = "the panel comes first; nothing is paused before a question is there",
              .tells = true,
              .recordsOn = true};
    case State::savePanel:
    case State::importPanel:
      if (edited) {
        return {.why = "the panel comes first", .tells = true};
      }
      break;
    case State::recording:
      return {.why = "what is being recorded is unsaved", .asks = true, .waits = true};
    case State::saving:
      return {.why = "the file is completed first, which leaves nothing to ask",
              .waits = true,
              .quitsWhenTheStateEnds = true,
              .othersStay = edited};
    case State::exporting:
      if (edited) {
        return {.why = "an export saves nothing of the document",
                .waits = true,
                .asksWhenTheStateEnds = true};
      }
      return {.why = "the file is completed first",
              .waits = true,
              .quitsWhenTheStateEnds = true,
              .othersStay = false};
    default:
      if (edited) {
        return {.why = "unsaved changes are asked about", .asks = true, .waits = true};
      }
      break;
  }
  return {
      .why = "there is nothing to ask and nothing to complete", .quits = true, .othersStay = false};
}

std::string inWords(const Outcome& outcome) {
  std::string words;
  const auto add = [&words](bool is, const char* what) { words += is ? what : ""; };
  add(outcome.asks, "asks, ");
  add(outcome.tells, "tells, ");
  add(outcome.waits, "waits, ");
  add(outcome.quits, "quits, ");
  add(outcome.asksWhenTheStateEnds, "asks when the state ends, ");
  add(outcome.quitsWhenTheStateEnds, "quits when the state ends, ");
  add(outcome.recordsOn, "records on, ");
  add(outcome.othersStay, "other windows stay");
  return words;
}

using Cell = std::tuple<State, bool>;

class EveryStateQuitTest : public QuitFixture, public testing::WithParamInterface<Cell> {
 protected:
  static State state() { return std::get<State>(GetParam()); }
  static bool edited() { return std::get<bool>(GetParam()); }
  static bool isAsking() {
    return state() == State::asking || state() == State::askingAfterRecording;
  }

  EveryStateQuitTest() { document_->setDocumentEdited(edited()); }
};

TEST_P(EveryStateQuitTest, Does) {
  const Outcome wanted = expected(state(), edited());
  SCOPED_TRACE(wanted.why);
  ASSERT_NO_FATAL_FAILURE(keeper_.enter(state()));
  const std::size_t questions = panels_->sheets();
  Outcome seen{.why = wanted.why};

  delegate_.terminate();
  seen.asks = panels_->sheets() > questions;
  seen.tells = told() > 0;
  seen.waits = delegate_.isTerminating();
  seen.quits = quits_ > 0;
  seen.recordsOn = keeper_.recording();
  seen.othersStay = other_ && other_->isVisible();
  const std::size_t asked = panels_->sheets();

  keeper_.leave(state());
  if (wanted.quitsWhenTheStateEnds) {
    EXPECT_TRUE(runMainLoopUntil([this] { return quits_ > 0; }));
  } else if (delegate_.isTerminating()) {
    delegate_.checkTermination();  // what the timer does 30 times a second
  }
  seen.asksWhenTheStateEnds = panels_->sheets() > asked;
  seen.quitsWhenTheStateEnds = !seen.quits && quits_ > 0;
  EXPECT_EQ(inWords(seen), inWords(wanted));
}

// Its own question, if it has one, is answered with Save before.
TEST_P(EveryStateQuitTest, CancelInAnotherWindowUndoesWhatTheQuitAskedFor) {
  ASSERT_NO_FATAL_FAILURE(keeper_.enter(state()));
  documentOf(other_)->setDocumentEdited(true);
  const bool isRefused = expected(state(), edited()).tells;
  delegate_.terminate();
  EXPECT_EQ(panels_->sheets() == 0, isRefused) << "a quit that is refused asks no window";
  if (panels_->sheets() > 1) {
    panels_->answerSheet(VLRecorderWindowController::kSave);
  }
  if (panels_->sheets() > 0) {
    panels_->answerSheet(VLRecorderWindowController::kCancelClosing);
  }
  EXPECT_FALSE(delegate_.isTerminating());
  keeper_.leave(isAsking() ? State::idle : state());
  const bool closedBefore = state() == State::savePending;  // asked for by the window itself
  EXPECT_EQ(keeper_.closed(), closedBefore);
  EXPECT_FALSE(document_->shouldCloseAfterSave() && !closedBefore);
  EXPECT_EQ(panels_->sheets(), 0U);
  EXPECT_EQ(told(), isRefused ? 1U : 0U);
  EXPECT_TRUE(other_ && other_->isVisible());
  EXPECT_EQ(quits_, 0);
  if (state() >= State::loading && state() <= State::importing) {
    EXPECT_FALSE(std::filesystem::exists(keeper_.ownFile())) << "the save that waited was begun";
  }
}

std::string nameOfCell(const testing::TestParamInfo<Cell>& cell) {
  return nameOf(std::get<State>(cell.param)) +
         (std::get<bool>(cell.param) ? "_Edited" : "_Unedited");
}

INSTANTIATE_TEST_SUITE_P(Cell, EveryStateQuitTest,
                         testing::Combine(testing::ValuesIn(kStates), testing::Bool()), nameOfCell);

}  // namespace
