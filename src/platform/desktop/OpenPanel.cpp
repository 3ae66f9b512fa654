#include "platform/desktop/OpenPanel.h"

#include <algorithm>

#include <QPushButton>

#include "platform/mainloop/Localization.h"
#include "platform/mainloop/ShownName.h"

namespace platform {

OpenPanel::OpenPanel(const OpenPanelRequest& request)
    : FilePanel(request.window, request.title, localized("&Look in:"),
                request.allowsMultipleSelection ? Selection::several : Selection::one),
      selectionChanged_(request.selectionChanged) {
  setObjectName("openPanel");
  auto* const label = new QLabel(localized("Files of &type:"));
  label->setObjectName("fileTypeLabel");
  auto* const types = new QComboBox;
  types->setObjectName("fileTypeCombo");
  types->addItem(localized("Audio Files"));
  types->addItem(localized("All Files"));
  label->setBuddy(types);
  grid()->addWidget(label, kTypeRow, 0);
  grid()->addWidget(types, kTypeRow, 1, 1, kNameColumns - 1);
  model()->setSuffixes(request.fileTypes);
  connect(types, &QComboBox::currentIndexChanged, this,
          [this, suffixes = request.fileTypes](int i) {
            model()->setSuffixes(i == 0 ? suffixes : std::vector<std::string>());
          });
  if (request.accessoryView != nullptr) {
    grid()->addWidget(request.accessoryView, kTypeRow + 1, 0, 1, kNameColumns + 1);
  }
  auto* const open = buttons()->addButton(request.acceptLabel, QDialogButtonBox::AcceptRole);
  open->setDefault(true);
  open->setEnabled(false);
  buttons()->addButton(localized("&Cancel"), QDialogButtonBox::RejectRole);
  connect(this, &FilePanel::namesChanged, this, &OpenPanel::tellSelection);
}

void OpenPanel::tellSelection() const {
  if (selectionChanged_) {
    selectionChanged_(names().size() == 1 ? pathOf(names().front()) : std::string());
  }
}

void OpenPanel::accept() {
  std::vector<std::string> paths;
  for (const std::string& name : names()) {
    paths.push_back(pathOf(name));
  }
  if (!paths.empty()) {
    look(paths, [this, paths](const std::vector<PathKind>& kinds) { take(paths, kinds); });
  }
}

void OpenPanel::take(const std::vector<std::string>& paths, const std::vector<PathKind>& kinds) {
  if (paths.size() == 1 && kinds.front() == PathKind::folder) {
    showFolder(paths.front());
    setName({});
    return;
  }
  const auto missing = std::find(kinds.begin(), kinds.end(), PathKind::missing);
  if (missing != kinds.end()) {
    const auto index = static_cast<std::size_t>(missing - kinds.begin());
    say(localized("There is no file “%1”.").arg(shownName(paths[index])));
    return;
  }
  paths_ = paths;
  QDialog::accept();
}

}  // namespace platform
