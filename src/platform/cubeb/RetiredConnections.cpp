#include "platform/cubeb/RetiredConnections.h"

#include <utility>

#include "platform/base/Mutex.h"

namespace platform {

namespace {

// Those that the process ends with; other threads of theirs go on until then.
struct LeftOnes {
  Mutex mutex;
  std::vector<std::unique_ptr<CubebConnection>> connections GUARDED_BY(mutex);
};

void leaveToTheProcess(std::unique_ptr<CubebConnection> connection) {
  static auto* const left = new LeftOnes;  // never destroyed
  const MutexLock lock(left->mutex);
  left->connections.push_back(std::move(connection));
}

}  // namespace

RetiredConnections::~RetiredConnections() {
  for (Retired& each : retired_) {
    leaveToTheProcess(std::move(each.connection));
  }
}

void RetiredConnections::take(std::unique_ptr<CubebConnection> connection) {
  if (!connection->hasHandler()) {
    return;
  }
  connection->endNotices();
  const std::uint64_t notices = connection->notices();
  retired_.push_back({std::move(connection), notices, now_()});
}

void RetiredConnections::endQuietOnes() {
  const auto now = now_();
  std::erase_if(retired_, [&](Retired& each) {
    if (const std::uint64_t notices = each.connection->notices(); notices != each.notices) {
      each.notices = notices;
      each.quietSince = now;
    }
    return now - each.quietSince >= kQuiet;
  });
}

}  // namespace platform
