#include "platform/desktop/OpenPanelAccessory.h"

#include <QDir>
#include <QGridLayout>
#include <QLineEdit>

namespace platform {
namespace {

// The path that a name in the panel's field stands for; empty for none. Looks at no file, since a
// folder may not answer.
std::string pathOf(const QFileDialog& panel, const QString& name) {
  return name.isEmpty() ? "" : panel.directory().absoluteFilePath(name).toStdString();
}

}  // namespace

void addAccessory(QFileDialog& panel, const OpenPanelRequest& request) {
  if (request.accessoryView == nullptr) {
    return;
  }
  // Only Qt's own dialog takes an accessory.
  panel.setOption(QFileDialog::DontUseNativeDialog);
  request.accessoryView->setParent(&panel);
  if (auto* const grid = qobject_cast<QGridLayout*>(panel.layout())) {
    grid->addWidget(request.accessoryView, grid->rowCount(), 0, 1, grid->columnCount());
  }
  request.accessoryView->show();
  auto* const field = panel.findChild<QLineEdit*>("fileNameEdit");
  if (field != nullptr && request.selectionChanged) {
    // A selection in the list is shown in the field as well.
    QObject::connect(field, &QLineEdit::textChanged, &panel,
                     [&panel, changed = request.selectionChanged](const QString& name) {
                       changed(pathOf(panel, name));
                     });
  }
}

}  // namespace platform
