#pragma once

#include <string>
#include <vector>

#include <QAbstractTableModel>
#include <QIcon>
#include <QString>

#include "platform/files/FolderListing.h"

namespace platform {

/// An entry with what is shown of it.
struct FolderRow {
  FolderEntry entry;
  QString name;       ///< bytes that are no text are replaced
  int nameOrder = 0;  ///< place among the names, in the user's language
};

/// The entries of a folder as rows, in the order of their names.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] std::vector<FolderRow> folderRows(const std::vector<FolderEntry>& entries);

/// A folder's content for a view: name, size and date. Folders come first. The kind of a file is
/// known by its suffix alone: no file is opened.
///
/// Threads: main. Real-time: not safe.
class FolderModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  enum Column { kName = 0, kSize, kModified, kColumnCount };

  FolderModel(const QIcon& folder, const QIcon& file, QObject* parent);

  void setRows(std::vector<FolderRow> rows);
  /// Shows only files with one of these suffixes, without the dot; all if empty.
  void setSuffixes(std::vector<std::string> suffixes);

  /// A text of the columns of sizes and dates with a blank on either side, as their headers have.
  [[nodiscard]] static QString spaced(const QString& text);

  /// The entry in a row of the view.
  [[nodiscard]] const FolderEntry& entryAt(int row) const { return shownAt(row).entry; }
  [[nodiscard]] const QString& nameAt(int row) const { return shownAt(row).name; }
  /// The row of an entry; -1 for none.
  [[nodiscard]] int rowOf(const std::string& name) const;

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                    int role) const override;
  void sort(int column, Qt::SortOrder order) override;

 private:
  [[nodiscard]] const FolderRow& shownAt(int row) const {
    return rows_[shown_[static_cast<std::size_t>(row)]];
  }
  [[nodiscard]] bool isShown(const FolderRow& row) const;
  [[nodiscard]] bool isBefore(const FolderRow& a, const FolderRow& b) const;
  void choose();
  [[nodiscard]] QString textOf(const FolderRow& row, int column) const;

  const QIcon folderIcon_;
  const QIcon fileIcon_;
  std::vector<FolderRow> rows_;
  std::vector<std::size_t> shown_;  // indexes of rows_, in the order of the view
  std::vector<std::string> suffixes_;
  int sortColumn_ = kName;
  Qt::SortOrder sortOrder_ = Qt::AscendingOrder;
};

/// Whether a name ends in a dot and one of the suffixes, ignoring case.
[[nodiscard]] bool hasSuffix(const QString& name, const std::vector<std::string>& suffixes);

}  // namespace platform
