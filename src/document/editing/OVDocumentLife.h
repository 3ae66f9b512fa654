#pragma once

#include <memory>
#include <utility>

/// Callbacks of a document's parts that come later, from the main queue or from a panel, run only
/// while the document is there, and keep it for as long as they run.
///
/// Threads: main for begin(); a guarded callback keeps the threads of what it wraps.
/// Real-time: not safe.
class OVDocumentLife {
 public:
  /// `document` owns whatever the callbacks touch.
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
