#pragma once

#include <memory>
#include <optional>
#include <vector>

#include <QWidget>

#include "displays/OVVUViewDataSource.h"
#include "displays/OVVUViewDelegate.h"
#include "platform/Timer.h"

/// The level meter of the recorder window: one circle a channel, its opacity following the level.
///
/// It asks its data source on a timer of its own, 30 times a second, for as long as it lives, and
/// draws what it answers as it is. An answer without levels draws nothing new: the last picture
/// stays until something else redraws the view.
///
/// Threads: main. Real-time: not safe.
class OVCircularVUView : public QWidget {
  Q_OBJECT

 public:
  explicit OVCircularVUView(QWidget* parent = nullptr);
  ~OVCircularVUView() override;

  [[nodiscard]] std::weak_ptr<OVVUViewDataSource> datasource() const { return datasource_; }
  void setDatasource(std::weak_ptr<OVVUViewDataSource> datasource);

  /// Stored only.
  [[nodiscard]] std::weak_ptr<OVVUViewDelegate> delegate() const { return delegate_; }
  void setDelegate(std::weak_ptr<OVVUViewDelegate> delegate);

  /// Polls a second; setting it starts the timer anew. None at 0 and below.
  [[nodiscard]] double pollingFrequency() const { return pollingFrequency_; }
  void setPollingFrequency(double pollingFrequency);

  /// Asks the data source once, and for a redraw on a later pass of the main loop if it answered
  /// with at least one level.
  void pollForData();

  /// The last answer, one linear level a channel; two of silence once the view has been drawn
  /// without any.
  [[nodiscard]] const std::optional<std::vector<float>>& levelData() const { return levelData_; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  std::weak_ptr<OVVUViewDataSource> datasource_;
  std::weak_ptr<OVVUViewDelegate> delegate_;
  double pollingFrequency_ = 0.0;
  std::optional<std::vector<float>> levelData_;
  std::unique_ptr<platform::Timer> pollTimer_;
};
