#pragma once

#include <vector>

#include <QPoint>
#include <QRect>
#include <QString>
#include <QWidget>

/// A page of views, each with a label: tiles in rows.
///
/// Threads: main.
class GalleryPage : public QWidget {
 public:
  explicit GalleryPage(QString name);

  /// The name of the picture's file, without its scale and suffix.
  [[nodiscard]] const QString& name() const { return name_; }

  /// Places a tile of this size with its label below. The page grows as needed; the tile becomes
  /// its child.
  void place(const QString& label, QSize size, QWidget* tile);

  /// A tile that is a transport bar, for the buttons that need one.
  template <typename Bar>
  Bar* addBar(const QString& label, QSize size) {
    auto* const bar = new Bar;
    place(label, size, bar);
    return bar;
  }

  /// A tile of paper with a view that fills it.
  template <typename View>
  View* addView(const QString& label, QSize size, const QColor& paper = QColor(226, 226, 226)) {
    auto* const view = new View;
    addView(label, size, view, paper);
    return view;
  }

  void addView(const QString& label, QSize size, QWidget* view,
               const QColor& paper = QColor(226, 226, 226));

  /// The next tile begins a new row.
  void newRow();

  /// Where the tiles are, without their labels, in points.
  struct Tile {
    QString label;
    QRect frame;
  };
  [[nodiscard]] const std::vector<Tile>& tiles() const { return tiles_; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QString name_;
  std::vector<Tile> tiles_;
  QPoint next_;
  int rowHeight_ = 0;
};
