#pragma once

#include <memory>
#include <optional>
#include <vector>

#include <QWidget>

#include "displays/OVVUViewDataSource.h"
#include "platform/mainloop/Timer.h"

/// Base of the level meters: polls the data source on its own timer for as long as it exists.
/// Subclasses draw the levels unchanged. Without levels, a meter requests no redraw: the last
/// picture stays until something else redraws the view.
///
/// Threads: main. Real-time: not safe.
class OVVUView : public QWidget {
  Q_OBJECT

 public:
  ~OVVUView() override;

  [[nodiscard]] std::weak_ptr<OVVUViewDataSource> datasource() const { return datasource_; }
  void setDatasource(std::weak_ptr<OVVUViewDataSource> datasource);

  /// Stored only.
  [[nodiscard]] std::weak_ptr<OVVUViewDelegate> delegate() const { return delegate_; }
  void setDelegate(std::weak_ptr<OVVUViewDelegate> delegate);

  /// Polls per second; setting it restarts the timer. No polls at 0 or below.
  [[nodiscard]] double pollingFrequency() const { return pollingFrequency_; }
  void setPollingFrequency(double pollingFrequency);

  /// Polls the data source once. If it returns at least one level, requests a redraw on a later
  /// pass of the main loop.
  void pollForData();

  /// The last levels, one linear level per channel, or those that a redraw has substituted.
  [[nodiscard]] const std::optional<std::vector<float>>& levelData() const { return levelData_; }

 protected:
  OVVUView(QWidget* parent, double pollingFrequency);

  void setLevelData(std::vector<float> levels);

 private:
  std::weak_ptr<OVVUViewDataSource> datasource_;
  std::weak_ptr<OVVUViewDelegate> delegate_;
  double pollingFrequency_ = 0.0;
  std::optional<std::vector<float>> levelData_;
  std::unique_ptr<platform::Timer> pollTimer_;
};
