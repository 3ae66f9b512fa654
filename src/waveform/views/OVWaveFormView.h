#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include <QImage>
#include <QPointF>
#include <QSizeF>
#include <QWidget>

#include "platform/base/GuardedPointer.h"
#include "platform/views/FocusRing.h"
#include "waveform/OVWaveformSummary.h"
#include "waveform/views/OVWaveFormDrawing.h"

class OVWaveFormView;

/// A step of the marker by an arrow key.
struct OVMarkerStep {
  enum class Length : std::uint8_t { second, tenthOfSecond, devicePixel };

  Length length = Length::second;
  bool isForward = false;
};

/// Notified of clicks and drags in a waveform view.
///
/// Threads: main. Real-time: not safe.
class OVWaveFormViewDelegate {
 public:
  virtual ~OVWaveFormViewDelegate() = default;

  /// `atPosition` is in the view's coordinates (points, origin bottom left) and never outside the
  /// view: a click beyond an edge counts as that edge. `timeLinePosition` is its x as a fraction
  /// of the view's width, 0 to 1.
  virtual void waveFormViewReceivedClick(OVWaveFormView* view, QPointF atPosition,
                                         double timeLinePosition) = 0;
  virtual void waveFormViewReceivedDrag(OVWaveFormView* view, QPointF atPosition,
                                        double timeLinePosition) = 0;

  /// The marker's current position, 0 to 1 of the view's width, from which the keys move it.
  virtual double waveFormViewTimeLinePosition(OVWaveFormView* view) = 0;
};

/// Shows a waveform summary over a dark blue gradient with a grid, and turns clicks and drags into
/// positions on the time line.
///
/// The picture is rendered off screen when the number of elements, the size or the screen's pixel
/// ratio has changed or a new rendering was requested. Every redraw copies only the dirty part to
/// the screen. While the summary regenerates, the last picture stays, unless
/// overrideRegenerationCheck is set. A disabled view ignores input. Setting a property does not
/// redraw; call update().
///
/// Reached by Tab, it moves the marker that is laid over it with the keys: Left and Right by a
/// second, with Shift by a tenth of a second, with Ctrl by the time of a device pixel; Page Up and
/// Page Down by a tenth of the width, Home and End to the ends. The step handler is called for an
/// arrow; the delegate is notified of the other keys as of a drag. Other keys pass to the window.
///
/// Threads: main, except where noted. Real-time: not safe.
class OVWaveFormView : public QWidget {
  Q_OBJECT
  Q_PROPERTY(QString accessibleValue READ accessibleValue)

 public:
  explicit OVWaveFormView(QWidget* parent = nullptr);
  ~OVWaveFormView() override;

  /// The summary to draw; may be null.
  /// Threads: any.
  [[nodiscard]] std::shared_ptr<OVWaveformSummary> waveForm() const { return waveForm_.get(); }
  void setWaveForm(std::shared_ptr<OVWaveformSummary> waveForm) {
    waveForm_.set(std::move(waveForm));
  }

  /// Whether the grid moves one point to the right at each rendering.
  [[nodiscard]] bool scrollBack() const { return scrollBack_; }
  void setScrollBack(bool scrollBack) { scrollBack_ = scrollBack; }

  /// Whether the next redraw renders again.
  /// Threads: any.
  [[nodiscard]] bool shouldRedrawWaveform() const;
  void setShouldRedrawWaveform(bool should);

  /// Whether to render even while the summary regenerates.
  [[nodiscard]] bool overrideRegenerationCheck() const { return overrideRegenerationCheck_; }
  void setOverrideRegenerationCheck(bool override) { overrideRegenerationCheck_ = override; }

  /// The last rendering, null before the first: the view's size in points times the pixel ratio.
  [[nodiscard]] QImage image() const { return image_; }

  /// Position and length as text, evaluated whenever assistive technology requests them.
  [[nodiscard]] QString accessibleValue() const;
  void setTimeLineText(std::function<QString()> text);

  /// Called with each step of the arrow keys. Without one, they pass to the window.
  void setStepHandler(std::function<void(OVMarkerStep)> handler) { step_ = std::move(handler); }

  [[nodiscard]] std::weak_ptr<OVWaveFormViewDelegate> delegate() const { return delegate_; }
  void setDelegate(std::weak_ptr<OVWaveFormViewDelegate> delegate);

  /// Horizontal offset of the vertical grid lines, points, 0 to 24 (excluded).
  [[nodiscard]] double bg_scroll_x() const { return bg_scroll_x_; }
  /// Number of elements and size of the view, points, at the last rendering.
  [[nodiscard]] std::uint64_t prevBufsize() const { return prevBufsize_; }
  [[nodiscard]] QSizeF prevImageSize() const { return prevImageSize_; }

  /// The layers, drawn for the view's size into a painter in view coordinates. drawGrid() moves
  /// the grid on when scrollBack is set. The time scale is not part of the view's own drawing.
  void drawGradient(QPainter& painter);
  void drawGrid(QPainter& painter);
  void drawWaveform(QPainter& painter, double alpha);
  void drawTimescale(QPainter& painter);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  [[nodiscard]] bool needsRendering(std::uint64_t elementCount) const;
  void render(std::uint64_t elementCount);
  void prepareBitmap();
  void scrollGrid();
  [[nodiscard]] double markerPosition();
  [[nodiscard]] std::optional<double> positionAfterKey(const QKeyEvent& event);
  [[nodiscard]] bool stepMarker(const QKeyEvent& event);
  [[nodiscard]] bool moveMarker(const QKeyEvent& event);

  platform::GuardedPointer<std::shared_ptr<OVWaveformSummary>> waveForm_;

  // Set by the generating thread; cleared only by the main thread, before it reads the elements, so
  // a generation in between causes one extra rendering, never a missing one. Relaxed: the elements
  // have their own lock.
  std::atomic<bool> shouldRedrawWaveform_{true};

  // Main thread only.
  double bg_scroll_x_ = 0.0;
  bool scrollBack_ = false;
  bool overrideRegenerationCheck_ = false;
  std::uint64_t prevBufsize_ = 0;
  QSizeF prevImageSize_{0.0, 0.0};
  QImage image_;
  std::weak_ptr<OVWaveFormViewDelegate> delegate_;
  std::function<QString()> timeLineText_;
  std::function<void(OVMarkerStep)> step_;
  platform::FocusRing focusRing_;
  OVWaveFormDrawing drawing_;
  std::vector<float> elements_;  // memory for the copy of the elements, kept between renderings
};
