#pragma once

#include <optional>
#include <vector>

#include <QWidget>

/// Supplies the levels that a meter draws.
class OVVUViewDataSource {
 public:
  virtual ~OVVUViewDataSource() = default;

  /// One linear level a channel, 0 silence, 1 full scale; none when there is nothing to show.
  ///
  /// Threads: main. Real-time: not safe.
  [[nodiscard]] virtual std::optional<std::vector<float>> dataForVUView(QWidget* view) = 0;
};
