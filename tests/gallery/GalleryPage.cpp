#include "gallery/GalleryPage.h"

#include <algorithm>
#include <utility>

#include <QPainter>

namespace {

constexpr int kMargin = 14;       // points, around tiles
constexpr int kLabelHeight = 14;  // points, below a tile
constexpr int kLabelSize = 9;
constexpr int kMaxRow = 900;  // points

QFont labelFont() {
  QFont font(QStringLiteral("Arial"));
  font.setPixelSize(kLabelSize);
  return font;
}

}  // namespace

GalleryPage::GalleryPage(QString name) : name_(std::move(name)), next_(kMargin, kMargin) {
  setAutoFillBackground(true);
  QPalette palette;
  palette.setColor(QPalette::Window, QColor(246, 246, 246));
  setPalette(palette);
  resize(kMargin, kMargin);
}

void GalleryPage::place(const QString& label, QSize size, QWidget* tile) {
  const int labelWidth = QFontMetrics(labelFont()).horizontalAdvance(label);
  if (next_.x() > kMargin && next_.x() + std::max(size.width(), labelWidth) > kMaxRow) {
    newRow();
  }
  tile->setParent(this);
  tile->setGeometry(QRect(next_, size));
  tiles_.push_back({label, tile->geometry()});
  next_.rx() += std::max(size.width(), labelWidth) + kMargin;
  rowHeight_ = std::max(rowHeight_, size.height());
  resize(std::max(width(), next_.x()), next_.y() + rowHeight_ + kLabelHeight + kMargin);
}

void GalleryPage::addView(const QString& label, QSize size, QWidget* view, const QColor& paper) {
  auto* const tile = new QWidget;
  tile->setAutoFillBackground(true);
  QPalette palette;
  palette.setColor(QPalette::Window, paper);
  tile->setPalette(palette);
  place(label, size, tile);
  view->setParent(tile);
  view->setGeometry(QRect(QPoint(0, 0), size));
}

void GalleryPage::newRow() {
  next_ = QPoint(kMargin, next_.y() + rowHeight_ + kLabelHeight + kMargin);
  rowHeight_ = 0;
}

void GalleryPage::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setFont(labelFont());
  painter.setPen(QColor(90, 90, 90));
  for (const Tile& tile : tiles_) {
    painter.drawText(tile.frame.bottomLeft() + QPoint(0, kLabelHeight - 1), tile.label);
  }
}
