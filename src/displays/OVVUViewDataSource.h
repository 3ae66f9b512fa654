#pragma once

#include <optional>
#include <vector>

#include <QWidget>

/// Supplies the levels that a meter draws.
class OVVUViewDataSource {
 public:
  virtual ~OVVUViewDataSource() = default;

  /// One linear level per channel, 0 silence, 1 full scale; none if there is nothing to show.
  ///
  /// Threads: main. Real-time: not safe.
  [[nodiscard]] virtual std::optional<std::vector<float>> dataForVUView(QWidget* view) = 0;
};

/// The delegate that a meter keeps; meters call nothing on it.
///
/// Threads: main. Real-time: not safe.
class OVVUViewDelegate {
 public:
  virtual ~OVVUViewDelegate() = default;
};
