#include "document/files/OVDocumentPanels.h"

#include <utility>

#include "document/editing/OVDocumentLife.h"

template <typename Request, typename Answer>
auto OVDocumentPanels::shown(Request& request, Answer answer) {
  request.window = window_;
  isPanelShown_ = true;
  return life_.guarded([this, answer = std::move(answer)](const auto& given) {
    isPanelShown_ = false;
    answer(given);
  });
}

void OVDocumentPanels::open(platform::OpenPanelRequest request,
                            std::function<void(const std::optional<std::string>&)> chosen) {
  auto answer = shown(request, [chosen = std::move(chosen)](const std::vector<std::string>& paths) {
    chosen(paths.empty() ? std::nullopt : std::optional(paths.front()));
  });
  platform::fileDialogs()->beginOpenPanel(request, std::move(answer));
}

void OVDocumentPanels::save(platform::SavePanelRequest request,
                            std::function<void(const std::optional<std::string>&)> chosen) {
  auto answer = shown(request, std::move(chosen));
  platform::fileDialogs()->beginSavePanel(request, std::move(answer));
}

void OVDocumentPanels::ask(platform::SheetRequest request, std::function<void(int)> answered) {
  auto answer = shown(request, std::move(answered));
  platform::fileDialogs()->beginSheet(request, std::move(answer));
}
