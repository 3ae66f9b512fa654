#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <QPointer>
#include <QWidget>

#include "platform/desktop/FileDialogs.h"

class OVDocumentLife;

/// The panels and questions of one document, one at a time. Answers are delivered only while the
/// document exists; isShown() is false by then.
///
/// Threads: main. Real-time: not safe.
class OVDocumentPanels {
 public:
  explicit OVDocumentPanels(const OVDocumentLife& life) : life_(life) {}

  /// The window that the panels belong to; may be null.
  void setWindow(QWidget* window) { window_ = window; }

  [[nodiscard]] bool isShown() const { return isPanelShown_; }

  /// Each fills in the request's window. `chosen` receives a path, or nothing if cancelled.
  void open(platform::OpenPanelRequest request,
            std::function<void(const std::optional<std::string>&)> chosen);
  void save(platform::SavePanelRequest request,
            std::function<void(const std::optional<std::string>&)> chosen);
  void ask(platform::SheetRequest request, std::function<void(int)> answered);

 private:
  template <typename Request, typename Answer>
  [[nodiscard]] auto shown(Request& request, Answer answer);

  const OVDocumentLife& life_;
  QPointer<QWidget> window_;
  bool isPanelShown_ = false;
};
