#pragma once

#include <functional>
#include <memory>

#include "document/OVDocumentEvents.h"
#include "document/OVMarkerMovement.h"
#include "document/OVUnsavedChanges.h"
#include "document/display/OVClipping.h"
#include "document/display/OVDiskWatch.h"
#include "document/display/OVDisplayLoop.h"
#include "document/display/OVInputNotices.h"
#include "document/display/OVLossMarks.h"
#include "document/display/OVMarkerAndTime.h"
#include "document/display/OVMemoryNotice.h"
#include "document/display/OVNotices.h"
#include "document/display/OVProgressDisplay.h"
#include "document/display/OVRecordingPlace.h"
#include "document/editing/OVDocumentAudio.h"
#include "document/editing/OVDocumentLife.h"
#include "document/editing/OVEditHistory.h"
#include "document/editing/OVFileOperation.h"
#include "document/editing/OVFramePositions.h"
#include "document/files/OVDocumentFile.h"
#include "document/files/OVDocumentPanels.h"
#include "document/files/OVFileLoading.h"
#include "document/files/OVFileSaving.h"
#include "document/files/OVRecoveredOrigin.h"
#include "document/spectrum/OVRecordedChunk.h"
#include "document/spectrum/OVSpectrum.h"
#include "document/summaries/OVDocumentSummaries.h"
#include "document/transport/OVInputWatch.h"
#include "document/transport/OVTransport.h"
#include "document/transport/OVTransportControls.h"
#include "document/transport/OVTransportKeys.h"

/// The parts of one document, each with one subject. A part is declared after the parts it uses.
///
/// Threads: main, unless a part states otherwise. Real-time: not safe.
struct OVDocumentParts {
  /// Operations of the controller that the parts call.
  struct Operations {
    std::function<void(OVTransportControls::Button)> menuCommand;
    OVFileLoading::Callbacks loading;
    std::function<void()> fileSavingComplete;
    std::function<bool()> saveFile;  ///< false if nothing was begun
    std::function<void(int)> alertDidEnd;
  };

  explicit OVDocumentParts(const Operations& operations);

  /// Connects the parts to their views in the window.
  void connect(OVRecorderWindow* window);
  /// A load has ended.
  void loadEnded();

  OVDocumentEvents events;
  OVDocumentLife life;
  OVNotices notices;
  OVDocumentAudio audio;
  OVFramePositions positions;
  OVFileOperation operation;
  const std::shared_ptr<OVDocumentSummaries> summaries = std::make_shared<OVDocumentSummaries>();
  OVEditHistory history{audio, *summaries};
  OVTransport transport{{life, audio, positions, *summaries, history, operation}};
  OVInputWatch inputWatch{transport};
  OVTransportControls controls;
  OVTransportKeys keys;
  OVDiskWatch diskWatch{life, audio, notices};
  OVMarkerAndTime markerAndTime{audio};
  OVProgressDisplay progress;
  OVRecordingPlace recordingPlace{{audio, positions, operation, transport}};
  OVClipping clipping{life, audio};
  OVLossMarks lossMarks{audio, history};
  OVDisplayLoop displayLoop{{life, audio, positions, operation, *summaries, transport,
                             markerAndTime, progress, recordingPlace, clipping}};
  OVSpectrum spectrum;
  OVMarkerMovement markerMovement{
      {audio, positions, *summaries, transport, markerAndTime, spectrum}};
  OVRecordedChunk fft_data;  // thread-safe: filled by the writer's thread, read on main
  OVDocumentFile file;
  OVMemoryNotice memoryNotice{notices};
  OVInputNotices inputNotices{notices, [this] { return file.shownName(); }};
  OVDocumentPanels panels{life};
  OVFileLoading loading;
  OVFileSaving saving;
  OVRecoveredOrigin recovered;
  OVUnsavedChanges unsavedChanges;
};
