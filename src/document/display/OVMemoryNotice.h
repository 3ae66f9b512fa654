#pragma once

#include "document/display/OVNotices.h"
#include "platform/base/MemoryReserve.h"

/// Says in the line of notices that memory runs out: some seconds after an allocation had to take
/// from the reserve, and as long as the reserve cannot be restored.
///
/// Threads: main. Real-time: not safe.
class OVMemoryNotice {
 public:
  /// `notices` outlives it.
  explicit OVMemoryNotice(OVNotices& notices) : notices_(notices) {}

  /// Call it often; it costs next to nothing while there is memory.
  void update();

 private:
  OVNotices& notices_;
  unsigned seen_ = platform::MemoryReserve::shortages();
};
