#pragma once

#include "app/AppFixture.h"
#include "document/DocumentStates.h"

/// Two windows: one whose document the test brings into a state, with audio and a file name, and
/// then an empty one. Questions wait for the test's answer; those of the first window come first.
class QuitFixture : public AppFixture {
 protected:
  QuitFixture() {
    answerQuestionsWith(std::nullopt);
    window_ = spawn();
    other_ = spawn();
    document_ = documentOf(window_);
    document_->pauseButton(nullptr);  // the recorder made last is the one that the test feeds
    keeper_.fill(document_);
  }

  ~QuitFixture() override {
    answerQuestionsWith(VLRecorderWindowController::kDontSave);
    while (panels_->sheets() > 0) {
      panels_->answerSheet(VLRecorderWindowController::kDontSave);
    }
    for (OVRecorderWindow* const window : windows()) {
      window->performClose();
    }
    document_.reset();
    EXPECT_TRUE(runMainLoopUntil([] { return windows().empty(); }));
  }

  [[nodiscard]] std::size_t told() const {
    return services_->alerts().size() + services_->postedAlerts().size();
  }

  QPointer<OVRecorderWindow> window_;
  QPointer<OVRecorderWindow> other_;
  StateKeeper keeper_{panels_, queues_};
  std::shared_ptr<VLRecorderWindowController> document_;
};
