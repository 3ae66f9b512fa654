#pragma once

#include <QWidget>

namespace support {

/// A view of a given class on a screen of any pixel ratio.
///
/// Threads: main.
template <typename View>
class ViewOnScreen final : public View {
 public:
  double ratio = 1.0;

 protected:
  [[nodiscard]] int metric(QPaintDevice::PaintDeviceMetric kind) const override {
    if (kind == QPaintDevice::PdmDevicePixelRatio) {
      return static_cast<int>(ratio);
    }
    if (kind == QPaintDevice::PdmDevicePixelRatioScaled) {
      return static_cast<int>(ratio * QPaintDevice::devicePixelRatioFScale());
    }
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    if (kind == QPaintDevice::PdmDevicePixelRatioF_EncodedA ||
        kind == QPaintDevice::PdmDevicePixelRatioF_EncodedB) {
      return QPaintDevice::encodeMetricF(kind, ratio);
    }
#endif
    return View::metric(kind);
  }
};

}  // namespace support
