#pragma once

#include <cstdint>
#include <memory>

#include <QComboBox>
#include <QPointer>
#include <QWidget>

#include "platform/media/AudioFileTags.h"

/// The selector of the file's kind in a save panel, with a line that says what the chosen kind
/// keeps. The panel owns the views; a copy refers to the same views.
///
/// Threads: main. Real-time: not safe.
class OVSaveAccessory {
 public:
  /// Offers the kinds that can be written, with `type` selected, for a document with these tags.
  OVSaveAccessory(std::int32_t type, std::shared_ptr<const platform::AudioFileTags> tags);

  [[nodiscard]] QWidget* view() const { return fileSaveAccessoryView_; }
  /// The chosen kind; remains available after the panel is gone.
  [[nodiscard]] std::int32_t chosenType() const;

 private:
  std::int32_t type_;
  QPointer<QWidget> fileSaveAccessoryView_;
  QPointer<QComboBox> fileTypeButton_;
};
