#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <QLabel>

#include "document/files/OVImportPlace.h"
#include "platform/mainloop/Timer.h"

/// The line of the import panel that says where the chosen file goes in and what it replaces. It
/// follows the place while the panel is open, since a recording or playback goes on.
///
/// The file's length is read in the background, without an alert. Until it is known, and for a file
/// whose length is unknown or whose medium does not answer, the line says only the place. What is
/// found out about a file that is no longer the chosen one is dropped.
///
/// Threads: main. Real-time: not safe.
class OVImportPlaceLabel : public QLabel {
  Q_OBJECT

 public:
  /// How many media may be waited for at a time; the length of a file that is chosen beyond that is
  /// not read.
  static constexpr int kMaxReads = 4;

  /// `place` is asked now, at every choice, and a few times a second.
  explicit OVImportPlaceLabel(std::function<OVImportPlace()> place);
  ~OVImportPlaceLabel() override;

  /// The chosen file; empty for none.
  void choose(const std::string& path);

 private:
  using Cancelled = std::shared_ptr<std::atomic<bool>>;

  void read();
  void cancelRead();
  void found(const Cancelled& ended, std::optional<OVImportLength> length);
  void update();

  const std::function<OVImportPlace()> place_;
  std::string path_;
  std::optional<OVImportLength> length_;  // of the chosen file, once known
  Cancelled reading_;                     // the read of the chosen file; null for none
  int reads_ = 0;                         // that have not ended, cancelled ones too
  platform::Timer timer_;
};
