#pragma once

#include <cstdint>

#include <QComboBox>
#include <QPointer>
#include <QWidget>

/// What stands below the files in a panel that saves: the choice of the file's kind. The panel that
/// shows it owns the views; a copy refers to the same ones.
///
/// Threads: main. Real-time: not safe.
class OVSaveAccessory {
 public:
  /// Offers the kinds that can be written, `type` chosen.
  explicit OVSaveAccessory(std::int32_t type);

  [[nodiscard]] QWidget* view() const { return fileSaveAccessoryView_; }
  /// The kind that is chosen, or was when the panel went.
  [[nodiscard]] std::int32_t chosenType() const;

 private:
  std::int32_t type_;
  QPointer<QWidget> fileSaveAccessoryView_;
  QPointer<QComboBox> fileTypeButton_;
};
