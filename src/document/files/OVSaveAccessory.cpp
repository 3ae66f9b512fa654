#include "document/files/OVSaveAccessory.h"

#include <utility>

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include "audio/OVFileKinds.h"
#include "document/files/keptByKind.h"
#include "platform/mainloop/Localization.h"

using platform::localized;

OVSaveAccessory::OVSaveAccessory(std::int32_t type,
                                 std::shared_ptr<const platform::AudioFileTags> tags)
    : type_(type), fileSaveAccessoryView_(new QWidget), fileTypeButton_(new QComboBox) {
  fileSaveAccessoryView_->setObjectName("fileSaveAccessoryView");
  auto* const lines = new QVBoxLayout(fileSaveAccessoryView_);
  lines->setContentsMargins(0, 0, 0, 0);
  auto* const row = new QHBoxLayout;
  lines->addLayout(row);
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
  auto* const kept = new QLabel;
  kept->setObjectName("keptByKindLabel");
  kept->setWordWrap(true);
  lines->addWidget(kept);
  const auto show = [kept, tags = std::move(tags), choice = fileTypeButton_] {
    kept->setText(keptByKind(choice->currentData().toInt(), *tags));
  };
  QObject::connect(fileTypeButton_, &QComboBox::currentIndexChanged, kept, show);
  show();
}

std::int32_t OVSaveAccessory::chosenType() const {
  return fileTypeButton_ ? fileTypeButton_->currentData().toInt() : type_;
}
