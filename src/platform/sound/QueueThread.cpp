#include "platform/sound/QueueThread.h"

#include <system_error>
#include <utility>

#include "platform/base/ApplicationServices.h"

namespace platform {

namespace {
// The Shared of the queue whose thread this is; only compared.
thread_local const void* currentQueue = nullptr;
}  // namespace

QueueThread::~QueueThread() {
  end();
  if (thread_.joinable()) {
    thread_.detach();  // destroyed on this thread itself, which is about to end
  }
}

AudioStatus QueueThread::start(std::function<void()> serve) {
  try {
    thread_ = std::thread([shared = shared_, its = std::move(serve)] { run(shared, its); });
  } catch (const std::system_error&) {
    return kNoThreadStatus;
  }
  return kAudioStatusOk;
}

void QueueThread::run(const std::shared_ptr<Shared>& shared, const std::function<void()>& serve) {
  const PostedAlertsScope posted;
  currentQueue = shared.get();
  for (;;) {
    shared->wake.wait();
    if (shared->ending.load(std::memory_order_acquire)) {
      return;
    }
    serve();
  }
}

void QueueThread::end() {
  shared_->ending.store(true, std::memory_order_release);
  shared_->wake.post();
  if (!isCurrent() && thread_.joinable()) {
    thread_.join();
  }
}

bool QueueThread::isCurrent() const {
  return currentQueue == shared_.get();
}

}  // namespace platform
