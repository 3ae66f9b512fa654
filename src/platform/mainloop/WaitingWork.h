#pragma once

#include <functional>
#include <memory>
#include <utility>

#include <QObject>
#include <QPointer>

#include "platform/mainloop/MainQueue.h"

namespace platform {

/// Runs `work` on a thread of its own, for calls of the system that may never return: it takes no
/// thread of the global queue, and nobody waits for it, not even the end of the program. False if
/// no thread can be had, or too many of them have not returned yet.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] bool beginWaitingWork(std::function<void()> work);

/// The same, then passes what `work` returned to `done` on the main thread, unless `owner` has been
/// destroyed by then.
///
/// Threads: main. Real-time: not safe.
template <typename Work, typename Done>
[[nodiscard]] bool beginWaitingWork(QObject* owner, Work work, Done done) {
  return beginWaitingWork(
      [guard = QPointer<QObject>(owner), work = std::move(work), done = std::move(done)]() mutable {
        auto result = std::make_shared<decltype(work())>(work());
        mainQueue().async([guard = std::move(guard), done = std::move(done), result] {
          if (guard) {
            done(*result);
          }
        });
      });
}

}  // namespace platform
