#pragma once

// What every command does in every state of a document, as rules and their exceptions.

#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <iterator>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "document/DocumentStates.h"

namespace everystate {

enum class Command {
  // The actions of the buttons, including disabled ones: a command may come late.
  recButton,
  playButton,
  pauseButton,
  stopButton,
  prevButton,
  nextButton,
  recMenu,
  playMenu,
  pauseMenu,
  stopMenu,
  prevMenu,
  nextMenu,
  keyR,
  keyReturn,
  keySpace,
  // Pressed in the state, released when the state has ended.
  heldR,
  heldReturn,
  heldSpace,
  click,
  drag,
  removeAfterMarker,
  removeBeforeMarker,
  reverseBuffer,
  undoCommand,
  redoCommand,
  saveFile,
  saveFileAs,
  importFile,
  openFileNamed,
  exportRingtone,
  dumpWaveform,
  toggleFFT,
  validateMenu,
  closeUnedited,
  closeEdited,
  cancelClosing,  // another window's Cancel, which ended a quit
  // The document's player if there is one, otherwise one that it has released.
  playbackEndsAtTheEnd,
  playbackEndsBelowTheEnd,
};

inline constexpr std::array<const char*, 38> kCommandNames = {"RecButton",
                                                              "PlayButton",
                                                              "PauseButton",
                                                              "StopButton",
                                                              "PrevButton",
                                                              "NextButton",
                                                              "RecMenu",
                                                              "PlayMenu",
                                                              "PauseMenu",
                                                              "StopMenu",
                                                              "PrevMenu",
                                                              "NextMenu",
                                                              "KeyR",
                                                              "KeyReturn",
                                                              "KeySpace",
                                                              "HeldR",
                                                              "HeldReturn",
                                                              "HeldSpace",
                                                              "Click",
                                                              "Drag",
                                                              "RemoveAfterMarker",
                                                              "RemoveBeforeMarker",
                                                              "ReverseBuffer",
                                                              "UndoCommand",
                                                              "RedoCommand",
                                                              "SaveFile",
                                                              "SaveFileAs",
                                                              "ImportFile",
                                                              "OpenFileNamed",
                                                              "ExportRingtone",
                                                              "DumpWaveform",
                                                              "ToggleFFT",
                                                              "ValidateMenu",
                                                              "CloseUnedited",
                                                              "CloseEdited",
                                                              "CancelClosing",
                                                              "PlaybackEndsAtTheEnd",
                                                              "PlaybackEndsBelowTheEnd"};

[[nodiscard]] inline std::vector<Command> allCommands() {
  std::vector<Command> commands;
  for (std::size_t i = 0; i < kCommandNames.size(); ++i) {
    commands.push_back(static_cast<Command>(i));
  }
  return commands;
}

[[nodiscard]] inline std::string nameOf(Command command) {
  return kCommandNames.at(static_cast<std::size_t>(command));
}

inline void PrintTo(Command command, std::ostream* out) {
  *out << nameOf(command);
}

enum class Doing { nothing, recording, playing, loading, importing, saving, exporting };

/// All that the user or the next command can observe of a document. Positions are in frames.
struct Situation {
  Doing doing = Doing::nothing;
  std::uint64_t marker = StateKeeper::kMarker;
  std::uint64_t recordAt = StateKeeper::kRecordAt;
  std::uint64_t length = StateKeeper::kBothTakesFrames;
  bool edited = false;
  std::string undo = "Record";  // the step that Undo offers, empty for none
  std::string redo;
  std::size_t questions = 0;
  bool questionTellsOfThePause = false;
  std::size_t openPanels = 0;
  std::size_t savePanels = 0;
  std::size_t alerts = 0;
  std::size_t cancelledQuits = 0;
  bool spectrum = false;
  bool closing = false;  // closes when its file is complete
  bool closed = false;
  bool editedBeforeTheStep = true;  // comes back with undo and redo; is not seen
  std::uint64_t lengthBeforeTheStep = StateKeeper::kFirstTakeFrames;  // likewise

  [[nodiscard]] bool inFileOperation() const { return doing >= Doing::loading; }
};

/// How the buttons look: a function only of what the document does.
[[nodiscard]] inline std::string buttonsOf(const Situation& at) {
  if (at.inFileOperation()) {
    return "rec disabled, play disabled, others disabled";
  }
  switch (at.doing) {
    case Doing::recording:
      return "rec on, play disabled, others enabled";
    case Doing::playing:
      return "rec disabled, play on, others enabled";
    default:
      return "rec off, play off, others enabled";
  }
}

/// The enabled commands of the menu.
[[nodiscard]] inline std::string menuOf(const Situation& at) {
  std::string enabled;
  if (!at.inFileOperation()) {
    enabled += at.undo.empty() ? "" : "undo ";
    enabled += at.redo.empty() ? "" : "redo ";
    enabled += at.doing == Doing::recording ? "" : "edit ";  // a cut would affect the recording
    enabled += "transport open file ";
  }
  return enabled + "other";
}

/// In words, one per line, so that a difference is readable.
[[nodiscard]] inline std::string inWords(const Situation& at, const std::string& buttons) {
  if (at.closed) {
    return "closed";
  }
  static constexpr std::array<const char*, 7> kDoing = {
      "nothing", "recording", "playing", "loading", "loading", "saving", "saving"};
  const auto line = [](const char* what, const auto& value) {
    return std::string(what) + ": " + value + "\n";
  };
  const auto yes = [](bool is) { return std::string(is ? "yes" : "no"); };
  return line("doing", kDoing.at(static_cast<std::size_t>(at.doing))) + line("buttons", buttons) +
         line("marker", std::to_string(at.marker)) +
         line("record at", std::to_string(at.recordAt)) +
         line("length", std::to_string(at.length)) + line("edited", yes(at.edited)) +
         line("undo", at.undo) + line("redo", at.redo) +
         line("questions", std::to_string(at.questions)) +
         line("question tells of the pause", yes(at.questionTellsOfThePause)) +
         line("open panels", std::to_string(at.openPanels)) +
         line("save panels", std::to_string(at.savePanels)) +
         line("alerts", std::to_string(at.alerts)) +
         line("cancelled quits", std::to_string(at.cancelledQuits)) +
         line("spectrum", yes(at.spectrum)) + line("closing", yes(at.closing));
}

// What happens to a situation ------------------------------------------------------------------

inline void pause(Situation& at) {
  if (at.doing == Doing::recording) {
    at.marker = at.recordAt < at.length ? at.recordAt : 0;
  } else if (at.doing == Doing::playing) {
    at.recordAt = at.marker;
  }
  if (at.doing == Doing::recording || at.doing == Doing::playing) {
    at.doing = Doing::nothing;
  }
}

inline void moveTo(Situation& at, std::uint64_t marker, std::uint64_t recordAt) {
  at.marker = marker;
  at.recordAt = at.doing == Doing::playing ? marker : recordAt;  // playback moves it too
}

inline void stop(Situation& at) {
  pause(at);
  moveTo(at, 0, at.length);
}

/// A new undoable step.
inline void begin(Situation& at, const std::string& step) {
  at.undo = step;
  at.redo.clear();
  at.editedBeforeTheStep = at.edited;
  at.lengthBeforeTheStep = at.length;
}

inline void record(Situation& at) {
  begin(at, "Record");
  at.edited = true;
  at.doing = Doing::recording;
}

inline void play(Situation& at) {
  at.doing = Doing::playing;
  at.marker = std::min(at.marker + StateKeeper::kPrimedFrames, at.length);
  at.recordAt = at.marker;
}

inline void cut(Situation& at, std::uint64_t length) {
  begin(at, "");
  at.length = length;
  at.edited = true;
  moveTo(at, 0, length);
}

inline void exchangeHistory(Situation& at) {
  std::swap(at.undo, at.redo);
  std::swap(at.edited, at.editedBeforeTheStep);
  std::swap(at.length, at.lengthBeforeTheStep);
}

inline void start(Situation& at, Doing operation) {
  pause(at);
  at.doing = operation;
}

inline void ask(Situation& at) {
  at.questionTellsOfThePause = at.doing == Doing::recording;
  if (at.doing == Doing::recording) {
    pause(at);
  }
  ++at.questions;
}

/// The running file operation ends.
inline void endFileOperation(Situation& at) {
  const std::uint64_t loadedUpTo = at.recordAt + StateKeeper::kFileFrames;
  switch (at.doing) {
    case Doing::loading:
      at.length = std::max(at.length, loadedUpTo);
      moveTo(at, 0, 0);
      break;
    case Doing::importing:
      at.length = std::max(at.length, loadedUpTo);
      at.edited = true;
      break;
    case Doing::saving:
      at.edited = false;
      moveTo(at, 0, at.length);
      break;
    default:  // an export moves no position
      break;
  }
  if (at.inFileOperation()) {
    at.doing = Doing::nothing;
  }
}

// The states -----------------------------------------------------------------------------------

/// The situation in which a command finds the document.
[[nodiscard]] inline Situation entered(State state, Command command) {
  Situation at;
  at.edited = command == Command::closeEdited;
  if (command == Command::redoCommand) {
    exchangeHistory(at);
  }
  const auto recordOneChunk = [&at] {
    record(at);
    at.recordAt += StateKeeper::kChunkFrames;
  };
  switch (state) {
    case State::idle:
      break;
    case State::recording:
      recordOneChunk();
      break;
    case State::playing:
      play(at);
      break;
    case State::loading:
      at.doing = Doing::loading;
      break;
    case State::savePending:
      at.closing = true;
      at.edited = true;
      [[fallthrough]];
    case State::importing:
      begin(at, "Import File");
      [[fallthrough]];
    case State::openingImport:
      at.doing = Doing::importing;
      break;
    case State::saving:
      at.doing = Doing::saving;
      break;
    case State::exporting:
      at.doing = Doing::exporting;
      break;
    case State::asking:
      at.edited = true;
      ask(at);
      break;
    case State::askingAfterRecording:
      recordOneChunk();
      ask(at);
      break;
    case State::savePanelWhileRecording:
      recordOneChunk();
      [[fallthrough]];
    case State::savePanel:
      ++at.savePanels;
      break;
    case State::importPanelWhileRecording:
      recordOneChunk();
      [[fallthrough]];
    case State::importPanel:
      ++at.openPanels;
      break;
  }
  if (command == Command::playbackEndsAtTheEnd) {
    at.marker = at.length;
    at.recordAt = at.doing == Doing::playing ? at.length : at.recordAt;
  }
  return at;
}

/// Changes the situation after a command as the end of the state does.
inline void end(State state, Situation& at) {
  if (at.closed) {
    return;
  }
  switch (state) {
    case State::recording:
    case State::playing:
      pause(at);
      break;
    case State::openingImport:
      begin(at, "Import File");
      break;
    case State::asking:
    case State::askingAfterRecording:
      --at.questions;
      at.questionTellsOfThePause = false;
      ++at.cancelledQuits;
      break;
    case State::savePanel:
    case State::savePanelWhileRecording:
      --at.savePanels;
      ++at.cancelledQuits;
      break;
    case State::importPanel:
    case State::importPanelWhileRecording:
      --at.openPanels;
      break;
    default:
      break;
  }
  endFileOperation(at);
  if (std::exchange(at.closing, false)) {
    at.closed = state != State::savePending || at.savePanels == 0;
    at.cancelledQuits += at.closed ? 0 : 1;  // a panel keeps the save from beginning
  }
}

// The rules ------------------------------------------------------------------------------------

using Effect = std::function<void(Situation&)>;

/// The effect of some commands in some states, and why.
struct Rule {
  const char* why;
  std::vector<State> states;
  std::vector<Command> commands;
  Effect atOnce = [](Situation&) {};
  Effect afterTheState = [](Situation&) {};  // when the state and its file operation have ended

  [[nodiscard]] bool holdsFor(State state, Command command) const {
    return std::find(states.begin(), states.end(), state) != states.end() &&
           std::find(commands.begin(), commands.end(), command) != commands.end();
  }
};

[[nodiscard]] inline std::vector<State> all() {
  return {kStates.begin(), kStates.end()};
}
[[nodiscard]] inline std::vector<State> where(bool (*is)(State)) {
  std::vector<State> states;
  std::copy_if(kStates.begin(), kStates.end(), std::back_inserter(states), is);
  return states;
}
[[nodiscard]] inline std::vector<State> fileOperations() {
  return where(isFileOperation);
}
[[nodiscard]] inline std::vector<State> recordings() {
  return where(isRecording);
}
[[nodiscard]] inline std::vector<State> panels() {
  return where([](State state) { return state >= State::savePanel; });
}
[[nodiscard]] inline std::vector<State> panelsAndQuestions() {
  return where([](State state) { return state >= State::asking; });
}
/// The states in which nothing runs; a panel or a question may be on the screen.
[[nodiscard]] inline std::vector<State> atRest() {
  return where([](State state) {
    return !isFileOperation(state) && !isRecording(state) && state != State::playing;
  });
}
[[nodiscard]] inline std::vector<State> freeOfFileOperations() {
  return where([](State state) { return !isFileOperation(state); });
}

/// The whole table: the first rule that matches a cell decides.
[[nodiscard]] inline std::vector<Rule> rules() {
  using C = Command;
  using S = State;
  const auto nothing = [](Situation&) {};
  return {
      {"Pause of the menu deliberately does nothing", all(), {C::pauseMenu}},
      {"what is shown enabled is looked at, not changed", all(), {C::validateMenu}},
      {"the spectrum needs nothing of the document",
       all(),
       {C::toggleFFT},
       [](Situation& at) { at.spectrum = true; }},

      // Close ------------------------------------------------------------------------------------
      {"a document that is being saved is asked about nothing: it closes when the file is complete",
       {S::saving},
       {C::closeUnedited, C::closeEdited},
       [](Situation& at) { at.closing = true; }},
      {"an export saves nothing of the document, so an edited one asks when it is complete",
       {S::exporting},
       {C::closeEdited},
       [](Situation& at) { at.closing = true; },
       [](Situation& at) {
         at.closed = false;
         ask(at);
       }},
      {"an export is completed before its window goes",
       {S::exporting},
       {C::closeUnedited},
       [](Situation& at) { at.closing = true; }},
      {"while a save that closes the window is pending, closing again changes nothing",
       {S::savePending},
       {C::closeUnedited, C::closeEdited}},
      {"a save that waits is given up, and the closing after it",
       {S::savePending},
       {C::cancelClosing},
       [](Situation& at) { at.closing = false; }},
      {"nothing closes; a question or a panel stays", all(), {C::cancelClosing}},
      {"the question is asked once",
       {S::asking, S::askingAfterRecording},
       {C::closeUnedited, C::closeEdited}},
      {"a panel has to be answered first", {S::savePanel, S::importPanel}, {C::closeEdited}},
      {"the same, what is being recorded is always unsaved, and the recording goes on",
       {S::savePanelWhileRecording, S::importPanelWhileRecording},
       {C::closeUnedited, C::closeEdited}},
      {"what is being recorded is unsaved; the question pauses it and says so",
       {S::recording},
       {C::closeUnedited, C::closeEdited},
       ask},
      {"unsaved changes are asked about; playing or loading goes on meanwhile",
       all(),
       {C::closeEdited},
       ask},
      {"there is nothing to ask",
       all(),
       {C::closeUnedited},
       [](Situation& at) { at.closed = true; }},

      // The end of playback ----------------------------------------------------
      {"playback that ends at the end of the audio does what Stop does",
       {S::playing},
       {C::playbackEndsAtTheEnd},
       stop},
      {"playback that ends below the end leaves the transport as a pause at that place",
       {S::playing},
       {C::playbackEndsBelowTheEnd},
       pause},
      {"nothing plays, but the marker is at the end as after a playback: as Stop",
       atRest(),
       {C::playbackEndsAtTheEnd},
       stop},
      {"a player that the document has let go of ends nothing that was begun since",
       all(),
       {C::playbackEndsAtTheEnd, C::playbackEndsBelowTheEnd}},

      // File operations --------------------------------------------------------
      {"a picture can be written at any time, and moves nothing",
       fileOperations(),
       {C::dumpWaveform},
       [](Situation& at) { ++at.savePanels; }},
      {"while a file operation runs nothing is recorded, played, moved, edited, undone or begun, "
       "and a key that went down meanwhile does nothing afterwards",
       fileOperations(),
       {C::recButton,          C::playButton,    C::pauseButton, C::stopButton,
        C::prevButton,         C::nextButton,    C::recMenu,     C::playMenu,
        C::stopMenu,           C::prevMenu,      C::nextMenu,    C::keyR,
        C::keyReturn,          C::keySpace,      C::heldR,       C::heldReturn,
        C::heldSpace,          C::click,         C::drag,        C::removeAfterMarker,
        C::removeBeforeMarker, C::reverseBuffer, C::undoCommand, C::redoCommand,
        C::saveFile,           C::saveFileAs,    C::importFile,  C::openFileNamed,
        C::exportRingtone}},

      // Record and Play --------------------------------------------------------
      {"recording and playing exclude each other",
       {S::playing},
       {C::recButton, C::recMenu, C::keyR, C::heldR}},
      {"recording and playing exclude each other", recordings(), {C::playButton}},
      {"the Record command pauses a recording, and so does the Play command",
       recordings(),
       {C::recButton, C::recMenu, C::keyR, C::playMenu, C::keySpace},
       pause},
      {"the Play command pauses a playback",
       {S::playing},
       {C::playButton, C::playMenu, C::keySpace},
       pause},
      {"nothing runs, so it begins; a panel does not keep it from that",
       atRest(),
       {C::recButton, C::recMenu, C::keyR},
       record},
      {"nothing runs, so it begins; a panel does not keep it from that",
       atRest(),
       {C::playButton, C::playMenu, C::keySpace},
       play},

      // Keys held beyond the state ---------------------------------------------
      {"what the key was to end has ended before it came up",
       {S::recording, S::playing},
       {C::heldR, C::heldSpace}},
      {"a key that comes up acts on what goes on then",
       recordings(),
       {C::heldR, C::heldSpace},
       nothing,
       pause},
      {"a key that comes up acts on what goes on then", atRest(), {C::heldR}, nothing, record},
      {"a key that comes up acts on what goes on then", atRest(), {C::heldSpace}, nothing, play},
      {"to the start is possible in each state, and after it",
       freeOfFileOperations(),
       {C::heldReturn},
       nothing,
       [](Situation& at) { moveTo(at, 0, 0); }},

      // Pause, Stop, positions -------------------------------------------------
      {"it pauses what runs", freeOfFileOperations(), {C::pauseButton}, pause},
      {"marker to the start, recording to the end",
       freeOfFileOperations(),
       {C::stopButton, C::stopMenu},
       stop},
      {"both positions move, and what runs goes on from there",
       freeOfFileOperations(),
       {C::prevButton, C::prevMenu, C::keyReturn},
       [](Situation& at) { moveTo(at, 0, 0); }},
      {"both positions move, and what runs goes on from there",
       freeOfFileOperations(),
       {C::nextButton, C::nextMenu},
       [](Situation& at) { moveTo(at, at.length, at.length); }},
      {"a click moves both positions, and so does a drag",
       freeOfFileOperations(),
       {C::click, C::drag},
       [](Situation& at) { moveTo(at, at.length / 4, at.length / 4); }},

      // Edits ------------------------------------------------------------------
      {"a cut pauses first and cuts at the marker of then",
       freeOfFileOperations(),
       {C::removeAfterMarker},
       [](Situation& at) {
         pause(at);
         cut(at, at.marker);
         at.undo = "Remove After Marker";
       }},
      {"a cut pauses first and cuts at the marker of then",
       freeOfFileOperations(),
       {C::removeBeforeMarker},
       [](Situation& at) {
         pause(at);
         cut(at, at.length - at.marker);
         at.undo = "Remove Before Marker";
       }},
      {"blocks cannot be reversed; the step is there all the same, and nothing is paused",
       freeOfFileOperations(),
       {C::reverseBuffer},
       [](Situation& at) {
         at.undo = "Reverse Audio";
         at.redo.clear();
       }},
      {"undo pauses what runs and moves no position",
       freeOfFileOperations(),
       {C::undoCommand},
       [](Situation& at) {
         pause(at);
         exchangeHistory(at);
       }},
      {"a recording is a step of its own: nothing is left to redo, and it goes on",
       {S::recording, S::askingAfterRecording, S::savePanelWhileRecording,
        S::importPanelWhileRecording},
       {C::redoCommand}},
      {"redo pauses what runs and moves no position",
       freeOfFileOperations(),
       {C::redoCommand},
       [](Situation& at) {
         pause(at);
         exchangeHistory(at);
       }},

      // Files ------------------------------------------------------------------
      {"one panel or question at a time",
       panelsAndQuestions(),
       {C::saveFile, C::saveFileAs, C::importFile, C::exportRingtone, C::dumpWaveform}},
      {"a document with a name is saved at once, with what was recorded so far",
       freeOfFileOperations(),
       {C::saveFile},
       [](Situation& at) { start(at, Doing::saving); }},
      {"nothing is paused while it is asked where",
       freeOfFileOperations(),
       {C::saveFileAs, C::exportRingtone, C::dumpWaveform},
       [](Situation& at) { ++at.savePanels; }},
      {"nothing is paused while it is asked which",
       freeOfFileOperations(),
       {C::importFile},
       [](Situation& at) { ++at.openPanels; }},
      {"opening pauses first and goes to the recording position of then",
       freeOfFileOperations(),
       {C::openFileNamed},
       [](Situation& at) { start(at, Doing::loading); }},
  };
}

// The cells ------------------------------------------------------------------------------------

/// The situation after a command in a state: at once, and when the state has ended.
struct Outcome {
  Situation atOnce;
  Situation afterTheState;
};

[[nodiscard]] inline const std::vector<Rule>& table() {
  static const std::vector<Rule> kTable = rules();
  return kTable;
}

/// The first rule that matches; null if there is none.
[[nodiscard]] inline const Rule* ruleFor(State state, Command command) {
  const auto rule = std::find_if(table().begin(), table().end(), [&](const Rule& candidate) {
    return candidate.holdsFor(state, command);
  });
  return rule == table().end() ? nullptr : &*rule;
}

[[nodiscard]] inline Outcome expected(State state, Command command) {
  const Rule& rule = *ruleFor(state, command);
  Outcome outcome;
  outcome.atOnce = entered(state, command);
  rule.atOnce(outcome.atOnce);
  outcome.afterTheState = outcome.atOnce;
  end(state, outcome.afterTheState);
  rule.afterTheState(outcome.afterTheState);
  return outcome;
}

/// The outcome in one word, for the name of the test.
[[nodiscard]] inline std::string headline(State state, Command command) {
  const Situation before = entered(state, command);
  const Outcome outcome = expected(state, command);
  const Situation& after = outcome.atOnce;
  Situation untouched = before;
  end(state, untouched);
  const Situation& later = outcome.afterTheState;
  if (after.closed) {
    return "Closes";
  }
  if (after.questions != before.questions) {
    return before.doing == Doing::recording ? "PausesAndAsks" : "Asks";
  }
  if (after.openPanels != before.openPanels || after.savePanels != before.savePanels) {
    return "ShowsAPanel";
  }
  if (after.undo != before.undo && after.doing != Doing::recording) {
    return after.undo == before.redo ? "ExchangesTheStep" : "Edits";
  }
  if (after.doing != before.doing) {
    static constexpr std::array<const char*, 7> kBegins = {"Pauses",  "Records", "Plays",  "Loads",
                                                           "Imports", "Saves",   "Exports"};
    return kBegins.at(static_cast<std::size_t>(after.doing));
  }
  if (after.spectrum != before.spectrum) {
    return "ShowsTheSpectrum";
  }
  if (after.marker != before.marker || after.recordAt != before.recordAt) {
    return "Moves";
  }
  if (later.closed != untouched.closed) {
    return later.closed ? "ClosesAfterwards" : "StaysOpen";
  }
  if (later.questions != untouched.questions) {
    return "AsksAfterwards";
  }
  if (later.doing != untouched.doing || later.marker != untouched.marker) {
    return "ActsAfterwards";
  }
  return "ChangesNothing";
}

}  // namespace everystate
