#pragma once

/// The delegate that a meter keeps; meters call nothing on it.
///
/// Threads: main. Real-time: not safe.
class OVVUViewDelegate {
 public:
  virtual ~OVVUViewDelegate() = default;
};
