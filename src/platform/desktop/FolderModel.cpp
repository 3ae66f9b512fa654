#include "platform/desktop/FolderModel.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include <QCollator>
#include <QDateTime>
#include <QLocale>

#include "platform/mainloop/Localization.h"
#include "platform/mainloop/ShownName.h"

namespace platform {
namespace {

QVariant alignmentOf(int column) {
  return QVariant((column == FolderModel::kSize ? Qt::AlignRight : Qt::AlignLeft) |
                  Qt::AlignVCenter);
}

}  // namespace

QString FolderModel::spaced(const QString& text) {
  constexpr QChar kEnSpace(0x2002);
  return kEnSpace + text + kEnSpace;
}

bool hasSuffix(const QString& name, const std::vector<std::string>& suffixes) {
  return std::any_of(suffixes.begin(), suffixes.end(), [&name](const std::string& suffix) {
    return name.endsWith(QLatin1Char('.') + QString::fromStdString(suffix), Qt::CaseInsensitive);
  });
}

std::vector<FolderRow> folderRows(const std::vector<FolderEntry>& entries) {
  QCollator collator;
  collator.setNumericMode(true);  // "take 9" before "take 10"
  struct Keyed {
    QCollatorSortKey key;
    std::size_t index;
  };
  std::vector<Keyed> keys;
  std::vector<QString> names;
  keys.reserve(entries.size());
  for (const FolderEntry& entry : entries) {
    names.push_back(QString::fromStdString(entry.name));
    keys.push_back({collator.sortKey(names.back()), keys.size()});
  }
  std::sort(keys.begin(), keys.end(), [&](const Keyed& a, const Keyed& b) {
    const int order = a.key.compare(b.key);
    return order != 0 ? order < 0 : entries[a.index].name < entries[b.index].name;
  });
  std::vector<FolderRow> rows;
  rows.reserve(entries.size());
  for (const Keyed& key : keys) {
    rows.push_back({.entry = entries[key.index],
                    .name = names[key.index],
                    .nameOrder = static_cast<int>(rows.size())});
  }
  return rows;
}

FolderModel::FolderModel(const QIcon& folder, const QIcon& file, QObject* parent)
    : QAbstractTableModel(parent), folderIcon_(folder), fileIcon_(file) {}

void FolderModel::setRows(std::vector<FolderRow> rows) {
  beginResetModel();
  rows_ = std::move(rows);
  choose();
  endResetModel();
}

void FolderModel::setSuffixes(std::vector<std::string> suffixes) {
  beginResetModel();
  suffixes_ = std::move(suffixes);
  choose();
  endResetModel();
}

void FolderModel::sort(int column, Qt::SortOrder order) {
  beginResetModel();
  sortColumn_ = column;
  sortOrder_ = order;
  choose();
  endResetModel();
}

bool FolderModel::isShown(const FolderRow& row) const {
  return row.entry.isFolder || suffixes_.empty() || hasSuffix(row.name, suffixes_);
}

bool FolderModel::isBefore(const FolderRow& a, const FolderRow& b) const {
  if (a.entry.isFolder != b.entry.isFolder) {
    return a.entry.isFolder;
  }
  const FolderRow& first = sortOrder_ == Qt::AscendingOrder ? a : b;
  const FolderRow& second = sortOrder_ == Qt::AscendingOrder ? b : a;
  if (sortColumn_ == kSize && a.entry.byteCount != b.entry.byteCount) {
    return first.entry.byteCount < second.entry.byteCount;
  }
  if (sortColumn_ == kModified && a.entry.modified != b.entry.modified) {
    return first.entry.modified < second.entry.modified;
  }
  return first.nameOrder < second.nameOrder;
}

void FolderModel::choose() {
  shown_.clear();
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    if (isShown(rows_[i])) {
      shown_.push_back(i);
    }
  }
  std::sort(shown_.begin(), shown_.end(),
            [this](std::size_t a, std::size_t b) { return isBefore(rows_[a], rows_[b]); });
}

int FolderModel::rowOf(const std::string& name) const {
  for (int row = 0; row < rowCount(); ++row) {
    if (entryAt(row).name == name) {
      return row;
    }
  }
  return -1;
}

int FolderModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(shown_.size());
}

int FolderModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : kColumnCount;
}

QString FolderModel::textOf(const FolderRow& row, int column) const {
  if (column == kName) {
    return shownName(row.name);
  }
  if (row.entry.isFolder || row.entry.modified == 0) {
    return {};
  }
  const QLocale locale;
  return column == kSize ? locale.formattedDataSize(static_cast<qint64>(row.entry.byteCount), 1,
                                                    QLocale::DataSizeSIFormat)
                         : locale.toString(QDateTime::fromSecsSinceEpoch(row.entry.modified),
                                           QLocale::ShortFormat);
}

QVariant FolderModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= rowCount()) {
    return {};
  }
  const FolderRow& row = shownAt(index.row());
  switch (role) {
    case Qt::DisplayRole:
      return textOf(row, index.column());
    case Qt::DecorationRole:
      return index.column() != kName ? QVariant() : row.entry.isFolder ? folderIcon_ : fileIcon_;
    case Qt::TextAlignmentRole:
      return alignmentOf(index.column());
    default:
      return {};
  }
}

QVariant FolderModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation == Qt::Horizontal && role == Qt::TextAlignmentRole) {
    return alignmentOf(section);
  }
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) {
    return {};
  }
  switch (section) {
    case kName:
      return localized("Name");
    case kSize:
      return spaced(localized("Size"));
    default:
      return spaced(localized("Date modified"));
  }
}

}  // namespace platform
