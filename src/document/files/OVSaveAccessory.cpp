#include "document/files/OVSaveAccessory.h"

#include <QHBoxLayout>
#include <QLabel>

#include "audio/OVFileKinds.h"
#include "platform/mainloop/Localization.h"

using platform::localized;

OVSaveAccessory::OVSaveAccessory(std::int32_t type)
    : type_(type), fileSaveAccessoryView_(new QWidget), fileTypeButton_(new QComboBox) {
  fileSaveAccessoryView_->setObjectName("fileSaveAccessoryView");
  auto* const row = new QHBoxLayout(fileSaveAccessoryView_);
  row->setContentsMargins(0, 0, 0, 0);
  auto* const label = new QLabel(localized("File &type:"));
  fileTypeButton_->setObjectName("fileTypeButton");
  fileTypeButton_->setAccessibleName(localized("File type"));
  for (const OVFileKind& kind : writableFileKinds()) {
    fileTypeButton_->addItem(localized(kind.title), kind.type);
  }
  fileTypeButton_->setCurrentIndex(fileTypeButton_->findData(type));
  label->setBuddy(fileTypeButton_);
  row->addWidget(label);
  row->addWidget(fileTypeButton_);
  row->addStretch();
}

std::int32_t OVSaveAccessory::chosenType() const {
  return fileTypeButton_ ? fileTypeButton_->currentData().toInt() : type_;
}
