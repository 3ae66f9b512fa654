#pragma once

#include <QPointer>

#include "waveform/views/OVWaveFormView.h"

class OVDocumentFile;
class OVDocumentPanels;

/// Asks for a path and writes the view's picture to it as PNG, in the screen's own pixels, on the
/// global queue. Does nothing without a view.
///
/// Threads: main. Real-time: not safe.
void exportWaveformPicture(const QPointer<OVWaveFormView>& view, OVDocumentPanels& panels,
                           const OVDocumentFile& file);
