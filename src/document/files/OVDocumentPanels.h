#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <QPointer>
#include <QWidget>

#include "platform/desktop/FileDialogs.h"

class OVDocumentLife;

/// The panels and questions of one document, one at a time. An answer comes only while the document
/// is there; by then the panel counts as closed.
///
/// Threads: main. Real-time: not safe.
class OVDocumentPanels {
 public:
  explicit OVDocumentPanels(const OVDocumentLife& life) : life_(life) {}

  /// The window that they belong to; may be null.
  void setWindow(QWidget* window) { window_ = window; }

  [[nodiscard]] bool isShown() const { return isPanelShown_; }

  /// The window of each request is filled in. `chosen` gets a path, or nothing where the panel was
  /// cancelled.
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
