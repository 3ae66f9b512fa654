#pragma once

#include <QPointer>
#include <QProgressBar>

#include "controls/OVLoadingPanel.h"
#include "platform/mainloop/Localization.h"

class OVRecorderWindow;

/// The progress bar over the waveform and its label, both of which may be missing. Every operation
/// gets a new bar.
///
/// Threads: main. Real-time: not safe.
class OVProgressDisplay {
 public:
  void connect(OVRecorderWindow* window);

  /// Null if there is none.
  [[nodiscard]] QProgressBar* loadingIndicator() const { return loadingIndicator_; }

  /// Replaces the bar with a new, hidden one in the same place. `activity` is the text of its label
  /// and its accessible name.
  void recreate(bool indeterminate, platform::TextKey activity);
  /// Shows a new bar.
  void begin(platform::TextKey activity, bool indeterminate = false);
  /// Empties and hides the bar.
  void end();

  void setActivity(platform::TextKey activity);
  /// 0 to 1; larger values are shown as 1.
  void setValue(double value);
  void advance(double by) { setValue(value_ + by); }
  void show(bool shown);

 private:
  QPointer<OVLoadingPanel> loadingPanel_;
  QPointer<QProgressBar> loadingIndicator_;
  double value_ = 0.0;  // finer than the bar shows
};
