#pragma once

#include <memory>
#include <utility>

/// Guards callbacks of a document's parts that arrive later, from the main queue or a panel: they
/// run only while the document exists, and keep it alive while they run.
///
/// Threads: main for begin(); a guarded callback has the threads of the callback that it wraps.
/// Real-time: not safe.
class OVDocumentLife {
 public:
  /// `document` owns everything that the callbacks use.
  void begin(std::weak_ptr<void> document) { document_ = std::move(document); }
  [[nodiscard]] const std::weak_ptr<void>& document() const { return document_; }

  template <typename Callback>
  [[nodiscard]] auto guarded(Callback callback) const {
    return [document = document_, callback = std::move(callback)](auto&&... arguments) {
      if (const auto alive = document.lock()) {
        callback(std::forward<decltype(arguments)>(arguments)...);
      }
    };
  }

 private:
  std::weak_ptr<void> document_;
};
