#pragma once

#include <QFileDialog>

#include "platform/desktop/FileDialogs.h"

namespace platform {

/// Places a request's accessory below the files of an open panel and reports the selected file to
/// the request; does nothing for a request without an accessory. Call before the panel is changed
/// in any other way.
///
/// Threads: main. Real-time: not safe.
void addAccessory(QFileDialog& panel, const OpenPanelRequest& request);

}  // namespace platform
