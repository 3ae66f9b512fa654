#pragma once

#include <cstdint>
#include <string>

#include <QString>

#include "document/VLRecorderWindowController.h"
#include "document/files/OVSaveJob.h"
#include "platform/mainloop/Localization.h"

// What the controller's sources for saving, exporting and closing share.

/// What the file writer calls AAC.
constexpr std::int32_t kAacType = 3;

/// What a save or an export writes, and what becomes of the document afterwards.
struct VLRecorderWindowController::SavingRequest {
  OVSaveJob::Request job;
  std::int32_t type = -1;
  bool isExport = false;
};

/// Path of the folder that holds a file; empty for a name alone.
[[nodiscard]] std::string folderOf(const std::string& path);

/// A sentence about a file, "%1" of which is the file's name as people see it.
[[nodiscard]] QString sentenceWithName(platform::TextKey sentence, const std::string& path);
