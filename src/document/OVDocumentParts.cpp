#include "document/OVDocumentParts.h"

#include "controls/OVRecorderWindow.h"

OVDocumentParts::OVDocumentParts(const Operations& operations)
    : keys(controls, transport, operations.menuCommand),
      loading({life, audio, positions, *summaries, history, operation, transport, file, panels,
               progress, markerAndTime, displayLoop},
              operations.loading),
      saving({life, audio, positions, history, operation, transport, file, panels, progress,
              displayLoop},
             operations.fileSavingComplete, [this] { unsavedChanges.saveFailed(); }),
      recovered({audio, operation, history, file, loading}),
      unsavedChanges({operation, history, file, transport, panels, recovered}, operations.saveFile,
                     operations.alertDidEnd) {
  const auto lookAtInput = [this] {
    if (inputWatch.look()) {
      inputNotices.update(inputWatch.state());
    }
    lossMarks.update(inputWatch.state().losses);
  };
  displayLoop.setTickHandler([this, lookAtInput] {
    lookAtInput();
    memoryNotice.update();
  });
  transport.addStateHandler([this](OVTransportState state) {
    diskWatch.setRecording(state == OVTransportState::recording);
  });
  transport.setRecordingHandler([this, lookAtInput] {
    lookAtInput();  // a recording may have ended since the last tick
    clipping.begin();
    lossMarks.begin();
  });
  file.setTakenHandler([this](const std::string& path) {
    if (events.saved) {
      events.saved(path);
    }
  });
}

void OVDocumentParts::connect(OVRecorderWindow* window) {
  const QPointer<OVWaveFormView> waveform = window->findChild<OVWaveFormView*>("wfView");
  file.connect(window);
  history.setWindow(window);
  panels.setWindow(window);
  unsavedChanges.setWindow(window);
  progress.connect(window);
  markerAndTime.connect(window);
  summaries->setView(waveform);
  displayLoop.setView(waveform);
  notices.connect(window);
  recordingPlace.connect(window);
  clipping.connect(window);
  lossMarks.connect(window);
  if (waveform) {
    waveform->setStepHandler(life.guarded([this, waveform](OVMarkerStep step) {
      markerMovement.step(step, waveform->width() * waveform->devicePixelRatioF());
    }));
  }
}

void OVDocumentParts::loadEnded() {
  recovered.loadEnded();
  unsavedChanges.loadEnded();
  if (loading.takeOpenedNothing() && events.nothingOpened) {
    events.nothingOpened();
  }
}
