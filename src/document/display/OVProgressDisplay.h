#pragma once

#include <QPointer>
#include <QProgressBar>

#include "controls/OVLoadingPanel.h"
#include "platform/mainloop/Localization.h"

class OVRecorderWindow;

/// The progress bar over the waveform and the words beside it, both of which may be missing. A
/// fresh bar is made for every operation.
///
/// Threads: main. Real-time: not safe.
class OVProgressDisplay {
 public:
  void connect(OVRecorderWindow* window);

  /// Null where there is none.
  [[nodiscard]] QProgressBar* loadingIndicator() const { return loadingIndicator_; }

  /// Replaces the bar by a fresh one in the same place, hidden. `activity` is what it is for: the
  /// words beside it and its name.
  void recreate(bool indeterminate, platform::TextKey activity);
  /// A fresh bar, shown.
  void begin(platform::TextKey activity, bool indeterminate = false);
  /// Empty and hidden.
  void end();

  void setActivity(platform::TextKey activity);
  /// 0 to 1 of the whole; more is shown as 1.
  void setValue(double value);
  void advance(double by) { setValue(value_ + by); }
  void show(bool shown);

 private:
  QPointer<OVLoadingPanel> loadingPanel_;
  QPointer<QProgressBar> loadingIndicator_;
  double value_ = 0.0;  // finer than the bar shows
};
