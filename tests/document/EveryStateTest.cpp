// Every command in every state of a document: one test per cell of the table in EveryState.h.
#include <array>
#include <set>
#include <tuple>
#include <utility>

#include <gtest/gtest.h>
#include <QMouseEvent>

#include "document/DocumentStates.h"
#include "document/EveryState.h"
#include "support/fakes/RecordingDesktop.h"
#include "support/fakes/RecordingServices.h"
#include "waveform/views/OVWaveFormView.h"

namespace everystate {

namespace {

constexpr std::uint16_t kKeyR = 15;
constexpr std::uint16_t kKeyReturn = 36;
constexpr std::uint16_t kKeySpace = 49;

using Controller = VLRecorderWindowController;
using MenuAction = Controller::MenuAction;

}  // namespace

class EveryStateTest : public testing::TestWithParam<std::tuple<State, Command>> {
 protected:
  static State state() { return std::get<State>(GetParam()); }
  static Command command() { return std::get<Command>(GetParam()); }

  EveryStateTest() {
    document_ = Controller::initWithWindowNibName("VNRecorderWindow");
    window_ = document_->window();
    keeper_.fill(document_);
    if (command() == Command::redoCommand) {
      document_->undoCommand();
      StateKeeper::settle();
      document_->setDocumentEdited(true);
    } else {
      document_->setDocumentEdited(command() == Command::closeEdited);
    }
    letGo_ = OVAQPlayer::initWithBuffer(document_->buffer(), 0);
  }

  ~EveryStateTest() override {
    letGo_.reset();
    panels_->answerEverySheetWith(Controller::kDontSave);
    while (panels_->sheets() > 0) {
      panels_->answerSheet(Controller::kDontSave);
    }
    if (window_) {
      window_->performClose();
    }
    document_->windowWillClose(nullptr);  // also if a pending save keeps it open
    document_.reset();
    StateKeeper::settle();
    delete window_.data();
  }

  void give() {
    switch (command()) {
      case Command::recButton:
        return keeper_.press("recButton", &Controller::recButton);
      case Command::playButton:
        return keeper_.press("playButton", &Controller::playButton);
      case Command::pauseButton:
        return keeper_.press("pauseButton", &Controller::pauseButton);
      case Command::stopButton:
        return keeper_.press("stopButton", &Controller::stopButton);
      case Command::prevButton:
        return keeper_.press("prevButton", &Controller::prevButton);
      case Command::nextButton:
        return keeper_.press("nextButton", &Controller::nextButton);
      case Command::recMenu:
        return document_->recMenu(nullptr);
      case Command::playMenu:
        return document_->playMenu(nullptr);
      case Command::pauseMenu:
        return document_->pauseMenu(nullptr);
      case Command::stopMenu:
        return document_->stopMenu(nullptr);
      case Command::prevMenu:
        return document_->prevMenu(nullptr);
      case Command::nextMenu:
        return document_->nextMenu(nullptr);
      case Command::keyR:
      case Command::keyReturn:
      case Command::keySpace:
        keyDown();
        return keyUp();
      case Command::heldR:
      case Command::heldReturn:
      case Command::heldSpace:
        return keyDown();
      case Command::click:
        return sendMouse(QEvent::MouseButtonPress);
      case Command::drag:
        return sendMouse(QEvent::MouseMove);
      case Command::removeAfterMarker:
        return document_->removeAfterMarker(nullptr);
      case Command::removeBeforeMarker:
        return document_->removeBeforeMarker(nullptr);
      case Command::reverseBuffer:
        return document_->reverseBuffer(nullptr);
      case Command::undoCommand:
        return document_->undoCommand();
      case Command::redoCommand:
        return document_->redoCommand();
      case Command::saveFile:
        return document_->saveFile(nullptr);
      case Command::saveFileAs:
        return document_->saveFileAs(nullptr);
      case Command::importFile:
        return document_->importFile(nullptr);
      case Command::openFileNamed:
        return document_->openFileNamed(keeper_.otherFile());
      case Command::exportRingtone:
        return document_->exportRingtone(nullptr);
      case Command::dumpWaveform:
        return document_->dumpWaveform(nullptr);
      case Command::toggleFFT:
        return document_->toggleFFT(nullptr);
      case Command::validateMenu:
        return;
      case Command::closeUnedited:
      case Command::closeEdited:
        return keeper_.close();
      case Command::cancelClosing:
        return document_->cancelClosing();
      case Command::playbackEndsAtTheEnd:
      case Command::playbackEndsBelowTheEnd:
        return endPlayback();
    }
  }

  bool isHeld() const {
    return command() == Command::heldR || command() == Command::heldReturn ||
           command() == Command::heldSpace;
  }
  void keyDown() { document_->windowDidReceiveKeyDown(window_, keyCode()); }
  void keyUp() { document_->windowDidReceiveKeyUp(window_, keyCode()); }

  /// What the user sees now.
  Situation seen() {
    Situation at;
    at.closed = keeper_.closed();
    if (at.closed) {
      return at;
    }
    at.doing = doing();
    at.marker = document_->playbackPosition();
    at.recordAt = document_->recordingPosition();
    at.length = document_->buffer()->bufferSizeInFrames();
    at.edited = document_->isDocumentEdited();
    const auto manager = document_->windowWillReturnUndoManager();
    at.undo = manager->undoActionName();
    at.redo = manager->redoActionName();
    at.questions = panels_->sheets();
    at.questionTellsOfThePause = panels_->sheets() > 0 && panels_->sheet().message != kPlainMessage;
    at.openPanels = panels_->openPanels();
    at.savePanels = panels_->savePanels();
    at.alerts = services_->alerts().size() + services_->postedAlerts().size();
    at.cancelledQuits = services_->cancelledTerminations();
    at.spectrum = document_->isSpectrumShown();
    at.closing = document_->shouldCloseAfterSave();
    return at;
  }

  std::string buttons() {
    std::string others;
    for (const char* const name : {"prevButton", "nextButton", "stopButton", "pauseButton"}) {
      const std::string look = lookOf(name) == "disabled" ? "disabled" : "enabled";
      others += others.find(look) == std::string::npos ? look : "";
    }
    return "rec " + lookOf("recButton") + ", play " + lookOf("playButton") + ", others " + others;
  }

  std::string menu() {
    static constexpr std::array<std::pair<MenuAction, const char*>, 8> kKinds = {
        {{MenuAction::reverseBuffer, "reverse "},
         {MenuAction::undo, "undo "},
         {MenuAction::redo, "redo "},
         {MenuAction::edit, "edit "},
         {MenuAction::transport, "transport "},
         {MenuAction::open, "open "},
         {MenuAction::file, "file "},
         {MenuAction::other, "other"}}};
    std::string enabled;
    for (const auto& [kind, name] : kKinds) {
      enabled += document_->validateMenuItem(kind) ? name : "";
    }
    return enabled;
  }

  /// The recorder would write at the document's recording position.
  void expectTheRecorderToAgree(const Situation& at) {
    if (!at.closed && at.doing != Doing::playing && document_->recorder()) {
      EXPECT_EQ(document_->recorder()->writingPosition() / StateKeeper::kFrameBytes, at.recordAt)
          << "where the recorder writes";
    }
  }

  // `longest`: the length that a load on another thread may have reached already.
  void expectSituation(const Situation& wanted, const char* when, std::uint64_t longest = 0) {
    Situation at = seen();
    if (at.doing == Doing::loading && at.length > wanted.length && at.length <= longest) {
      at.length = wanted.length;
    }
    EXPECT_EQ(inWords(at, at.closed ? "" : buttons()), inWords(wanted, buttonsOf(wanted))) << when;
    expectTheRecorderToAgree(at);
  }

  support::InstalledRecordingServices services_;
  support::InstalledSteppedQueues queues_;
  support::InstalledScriptedPanels panels_;
  support::RecordingDesktop desktop_;
  StateKeeper keeper_{panels_, queues_};
  std::shared_ptr<Controller> document_;
  QPointer<OVRecorderWindow> window_;

 private:
  static constexpr const char* kPlainMessage = "Your changes will be lost if you don’t save them.";

  static std::uint16_t keyCode() {
    switch (command()) {
      case Command::keyReturn:
      case Command::heldReturn:
        return kKeyReturn;
      case Command::keySpace:
      case Command::heldSpace:
        return kKeySpace;
      default:
        return kKeyR;
    }
  }

  Doing doing() const {
    if (keeper_.recording()) {
      EXPECT_FALSE(document_->isFileIOActive()) << "recording during a file operation";
      return Doing::recording;
    }
    if (keeper_.playing()) {
      EXPECT_FALSE(document_->isFileIOActive()) << "playing during a file operation";
      return Doing::playing;
    }
    if (!document_->isFileIOActive()) {
      return Doing::nothing;
    }
    return document_->isSaving() ? Doing::saving : Doing::loading;
  }

  std::string lookOf(const char* name) {
    auto* const button = window_->findChild<OVTransportButton*>(name);
    std::string look = button->isOn() ? "on" : "off";
    if (!button->isEnabled()) {
      look = button->isOn() ? "on and disabled" : "disabled";
    }
    return look + (button->isHighlighted() ? " and pressed" : "");
  }

  // At a quarter of the width, through the view, which passes no event on while it is disabled.
  void sendMouse(QEvent::Type type) {
    auto* const view = window_->findChild<OVWaveFormView*>("wfView");
    const QPointF place(view->width() / 4.0, view->height() / 2.0);
    QMouseEvent event(type, place, view->mapToGlobal(place), Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    QCoreApplication::sendEvent(view, &event);
  }

  void endPlayback() {
    if (state() == State::playing) {
      queues_.output().changeRunning(0);
      EXPECT_TRUE(drainMainQueue());
    } else {
      document_->playerStoppedPlayback(letGo_.get());
    }
  }

  std::shared_ptr<OVAQPlayer> letGo_;  // of the document's audio, but not the document's
};

TEST_P(EveryStateTest, Does) {
  ASSERT_NE(ruleFor(state(), command()), nullptr);
  const Outcome outcome = expected(state(), command());
  ASSERT_NO_FATAL_FAILURE(keeper_.enter(state()));
  if (command() == Command::playbackEndsAtTheEnd) {
    document_->setPlaybackPosition(document_->buffer()->bufferSizeInFrames());
    document_->updatePlaybackMarkerView();
  }
  const Situation before = entered(state(), command());
  ASSERT_EQ(inWords(seen(), buttons()), inWords(before, buttonsOf(before))) << "not entered";
  if (command() == Command::validateMenu) {
    EXPECT_EQ(menu(), menuOf(before));
  }
  SCOPED_TRACE(ruleFor(state(), command())->why);
  give();
  if (!keeper_.closed()) {
    document_->updatePlaybackMarkerView();
  }
  if (!isHeld()) {
    expectSituation(outcome.atOnce, "at once", outcome.afterTheState.length);
  }
  keeper_.leave(state());
  if (isHeld()) {
    keyUp();
    document_->updatePlaybackMarkerView();
  }
  expectSituation(outcome.afterTheState, "when the state has ended");
}

std::string nameOfCell(const testing::TestParamInfo<EveryStateTest::ParamType>& cell) {
  const State state = std::get<State>(cell.param);
  const Command command = std::get<Command>(cell.param);
  const std::string outcome =
      ruleFor(state, command) == nullptr ? "NobodyHasThoughtOfIt" : headline(state, command);
  return nameOf(state) + "_" + nameOf(command) + "_" + outcome;
}

INSTANTIATE_TEST_SUITE_P(Cell, EveryStateTest,
                         testing::Combine(testing::ValuesIn(kStates),
                                          testing::ValuesIn(allCommands())),
                         nameOfCell);

TEST(EveryStateTableTest, EachCellIsDecidedByARule) {
  for (const State state : kStates) {
    for (const Command command : allCommands()) {
      EXPECT_NE(ruleFor(state, command), nullptr) << nameOf(state) << " " << nameOf(command);
    }
  }
}

TEST(EveryStateTableTest, EachRuleDecidesACell) {
  std::set<const Rule*> used;
  for (const State state : kStates) {
    for (const Command command : allCommands()) {
      used.insert(ruleFor(state, command));
    }
  }
  for (const Rule& rule : table()) {
    EXPECT_EQ(used.count(&rule), 1U) << rule.why;
  }
}

TEST(EveryStateTableTest, EachStateAndEachCommandHasANameOfItsOwn) {
  std::set<std::string> names;
  for (const State state : kStates) {
    names.insert(nameOf(state));
  }
  for (const Command command : allCommands()) {
    names.insert(nameOf(command));
  }
  EXPECT_EQ(names.size(), kStates.size() + kCommandNames.size());
  EXPECT_EQ(static_cast<std::size_t>(Command::playbackEndsBelowTheEnd) + 1, kCommandNames.size());
}

}  // namespace everystate
