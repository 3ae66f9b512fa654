#include "app/OVRecoveredPanel.h"

#include <algorithm>
#include <utility>

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QPixmap>
#include <QPushButton>
#include <QSignalBlocker>
#include <QStyle>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "platform/base/AudioTypes.h"
#include "platform/desktop/MessageBox.h"
#include "platform/mainloop/Localization.h"

using platform::localized;
using platform::textKey;

namespace {

constexpr int kPathRole = Qt::UserRole;
constexpr int kMinimumTextWidth = 440;  // points
constexpr int kRowGap = 8;              // points, so that the boxes of two rows stand apart
constexpr int kIconGap = 12;            // points, as in an alert
constexpr int kMaximumListHeight = 260;
constexpr int kColumnSpace = 16;

platform::TextKey nameOf(OVRecoveredFile::State state) {
  switch (state) {
    case OVRecoveredFile::State::whole:
      return textKey("Complete");
    case OVRecoveredFile::State::beingWritten:
      return textKey("Still being written");
    case OVRecoveredFile::State::waitingForRoom:
      return textKey("Waiting for room on the disk");
    case OVRecoveredFile::State::damaged:
      return textKey("Damaged");
  }
  return textKey("Damaged");
}

std::string pathOf(const QTreeWidgetItem& row) {
  return row.data(0, kPathRole).toByteArray().toStdString();
}

}  // namespace

QString recoveredLengthText(std::uint64_t frames) {
  constexpr std::uint64_t kMinute = 60;  // seconds
  constexpr std::uint64_t kHour = 60 * kMinute;
  const std::uint64_t seconds = frames / platform::kWorkingRate;
  if (seconds >= kHour) {
    return localized("%1 h %2 min").arg(seconds / kHour).arg(seconds % kHour / kMinute);
  }
  if (seconds >= kMinute) {
    return localized("%1 min %2 s").arg(seconds / kMinute).arg(seconds % kMinute);
  }
  return localized("%1 s").arg(seconds);
}

OVRecoveredPanel::OVRecoveredPanel(Occasion occasion, Commands commands)
    : occasion_(occasion),
      commands_(std::move(commands)),
      title_(new QLabel),
      heading_(new QLabel),
      list_(new QTreeWidget),
      buttons_(new QDialogButtonBox) {
  setObjectName("recoveredPanel");
  setAttribute(Qt::WA_DeleteOnClose);
  setAttribute(Qt::WA_QuitOnClose, false);
  setWindowTitle(localized("Recovered Recordings"));
  makeList();
  makeButtons();
  auto* const column = new QVBoxLayout(this);
  column->addLayout(makeHeading());
  column->addWidget(list_, 1);
  column->addWidget(buttons_);
}

QLayout* OVRecoveredPanel::makeHeading() {
  auto* const icon = new QLabel;
  platform::showProgramPicture(*icon);
  title_->setObjectName("recoveredTitle");
  platform::makeTitle(*title_);
  heading_->setObjectName("recoveredHeading");
  auto* const texts = new QVBoxLayout;
  for (QLabel* const text : {title_, heading_}) {
    text->setWordWrap(true);
    text->setMinimumWidth(kMinimumTextWidth);
    texts->addWidget(text);
  }
  auto* const row = new QHBoxLayout;
  row->addWidget(icon, 0, Qt::AlignTop);
  row->addSpacing(kIconGap);
  row->addLayout(texts, 1);
  return row;
}

void OVRecoveredPanel::makeList() {
  list_->setObjectName("recoveredList");
  list_->setAccessibleName(windowTitle());
  list_->setHeaderLabels({localized("Date"), localized("Length"), localized("State")});
  list_->setRootIsDecorated(false);
  list_->setAllColumnsShowFocus(true);
  list_->setUniformRowHeights(true);
  list_->setTabKeyNavigation(false);
  list_->setSizeAdjustPolicy(QAbstractScrollArea::AdjustToContents);
  list_->setMaximumHeight(kMaximumListHeight);
  list_->header()->setSectionsMovable(false);
  connect(list_, &QTreeWidget::itemChanged, this, &OVRecoveredPanel::enableButtons);
}

void OVRecoveredPanel::makeButtons() {
  open_ = buttons_->addButton(localized("&Open"), QDialogButtonBox::AcceptRole);
  later_ = buttons_->addButton(
      occasion_ == Occasion::command ? localized("&Close") : localized("&Later"),
      QDialogButtonBox::RejectRole);
  delete_ = buttons_->addButton(localized("&Delete"), QDialogButtonBox::DestructiveRole);
  open_->setObjectName("openRecovered");
  later_->setObjectName("recoveredLater");
  delete_->setObjectName("deleteRecovered");
  connect(buttons_, &QDialogButtonBox::rejected, this, &QDialog::reject);
  connect(buttons_, &QDialogButtonBox::accepted, this, [this] { commands_.open(chosen()); });
  connect(delete_, &QPushButton::clicked, this, [this] { commands_.remove(chosen()); });
}

void OVRecoveredPanel::setFiles(const std::vector<OVRecoveredFile>& files) {
  const Paths unchecked = pathsThatAre(Qt::Unchecked);
  {
    const QSignalBlocker rebuilding(list_);
    list_->clear();
    for (const OVRecoveredFile& file : files) {
      addRow(file, unchecked);
    }
    list_->setCurrentItem(list_->topLevelItem(0));
  }
  for (int column = 0; column < list_->columnCount() - 1; ++column) {  // the last one stretches
    list_->resizeColumnToContents(column);
    list_->setColumnWidth(column, list_->columnWidth(column) + kColumnSpace);
  }
  for (int row = 0; row < list_->topLevelItemCount(); ++row) {
    // The width counts for the column, too: only then it is known.
    list_->topLevelItem(row)->setSizeHint(
        0, QSize(list_->columnWidth(0), list_->fontMetrics().height() + kRowGap));
  }
  list_->setVisible(!files.empty());
  showHeading();
  enableButtons();
  adjustSize();
}

void OVRecoveredPanel::addRow(const OVRecoveredFile& file, const Paths& unchecked) {
  const QString start = QLocale().toString(file.start, QLocale::ShortFormat);
  const QString length = file.frames == 0 ? QStringLiteral("–") : recoveredLengthText(file.frames);
  const QString state = localized(nameOf(file.state));
  auto* const row = new QTreeWidgetItem(list_, {start, length, state});
  row->setData(0, kPathRole, QByteArray::fromStdString(file.path));
  row->setData(0, Qt::AccessibleTextRole, QStringList{start, length, state}.join(", "));
  if (isBeingMade(file.state)) {
    row->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren);
    // As wide as the box of the other rows, so that the texts stand below each other.
    QPixmap noBox(list_->style()->pixelMetric(QStyle::PM_IndicatorWidth, nullptr, list_), 1);
    noBox.fill(Qt::transparent);
    row->setData(0, Qt::DecorationRole, noBox);
    return;
  }
  row->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable |
                Qt::ItemNeverHasChildren);
  const bool wasUnchecked =
      std::find(unchecked.begin(), unchecked.end(), file.path) != unchecked.end();
  row->setCheckState(0, wasUnchecked ? Qt::Unchecked : Qt::Checked);
}

OVRecoveredPanel::Paths OVRecoveredPanel::chosen() const {
  return pathsThatAre(Qt::Checked);
}

OVRecoveredPanel::Paths OVRecoveredPanel::pathsThatAre(Qt::CheckState state) const {
  Paths paths;
  for (int i = 0; i < list_->topLevelItemCount(); ++i) {
    const QTreeWidgetItem* const row = list_->topLevelItem(i);
    const QVariant mark = row->data(0, Qt::CheckStateRole);
    if (mark.isValid() && mark.toInt() == state) {
      paths.push_back(pathOf(*row));
    }
  }
  return paths;
}

void OVRecoveredPanel::showHeading() {
  const int count = list_->topLevelItemCount();
  const QString title = count > 0 && occasion_ == Occasion::unexpectedEnd
                            ? localized("Orvo ended unexpectedly.")
                            : "";
  QStringList sentences;
  if (count == 0) {
    sentences << localized("There are no recovered recordings.");
  } else {
    sentences << localized("Recordings kept: %1").arg(count)
              << localized(
                     "Each recording opens in a window of its own. It is kept until you save "
                     "or discard it.");
  }
  title_->setText(title);
  title_->setVisible(!title.isEmpty());
  heading_->setText(sentences.join("\n\n"));
  // A window's size does not follow the height of wrapped text.
  heading_->setMinimumHeight(heading_->heightForWidth(kMinimumTextWidth));
  setAccessibleDescription(platform::sentencesInARow(QStringList(title) + sentences));
}

void OVRecoveredPanel::enableButtons() {
  const bool any = !chosen().empty();
  open_->setEnabled(any);
  delete_->setEnabled(any);
  QPushButton* const usual = any ? open_ : later_;
  usual->setDefault(true);
  if (focusWidget() == nullptr || !focusWidget()->isEnabled()) {
    usual->setFocus();
  }
}
