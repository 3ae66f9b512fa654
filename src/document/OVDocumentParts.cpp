#include "document/OVDocumentParts.h"

OVDocumentParts::OVDocumentParts(const Operations& operations)
    : keys(controls, transport, operations.menuCommand),
      loading({life, audio, positions, *summaries, history, operation, transport, file, panels,
               progress, markerAndTime, displayLoop},
              operations.loading),
      saving({life, audio, positions, history, operation, transport, file, panels, progress,
              displayLoop},
             operations.fileSavingComplete, [this] { unsavedChanges.saveFailed(); }),
      unsavedChanges({operation, history, file, transport, panels}, operations.saveFile,
                     operations.alertDidEnd) {}
