#include "controls/OVLoadingPanel.h"

#include <algorithm>

#include <gtest/gtest.h>
#include <QHBoxLayout>

#include "controls/OVLoadingIndicator.h"
#include "support/Pixels.h"

namespace {

class OVLoadingPanelTest : public testing::Test {
 protected:
  OVLoadingPanelTest() {
    QPalette white;
    white.setColor(QPalette::Window, Qt::white);  // as bright as the marker's line
    view_.setPalette(white);
    view_.resize(400, 40);
    auto* const holder = new QHBoxLayout(&view_);
    holder->addWidget(panel_, 0, Qt::AlignRight);
    auto* const row = new QHBoxLayout(panel_);
    row->setContentsMargins(10, 4, 10, 3);
    row->addWidget(label_);
    row->addWidget(indicator_);
    view_.show();
  }

  [[nodiscard]] QImage picture() { return view_.grab(panel_->geometry()).toImage(); }

  /// The highest green value in a part of the panel.
  [[nodiscard]] int lightest(const QRect& part) {
    const QImage shown = picture();
    int green = 0;
    for (int y = part.top(); y <= part.bottom(); ++y) {
      for (int x = part.left(); x <= part.right(); ++x) {
        green = std::max(green, shown.pixelColor(x, y).green());
      }
    }
    return green;
  }

  QWidget view_;
  OVLoadingPanel* panel_ = new OVLoadingPanel;
  OVLoadingLabel* label_ = new OVLoadingLabel;
  OVLoadingIndicator* indicator_ = new OVLoadingIndicator;
};

TEST_F(OVLoadingPanelTest, HidesWhatLiesBelowAndLightensItsGroundAsAnOverlayDoes) {
  const QColor below = blended(Qt::white, QColor(36, 50, 69), 230.0 / 255.0);
  const QColor expected = blended(below, Qt::white, 0.1);
  EXPECT_LE(colorDistance(picture().pixelColor(panel_->width() / 2, 1), expected), 2);
  EXPECT_EQ(picture().pixelColor(0, 0), QColor(Qt::white)) << "a round corner";
}

TEST_F(OVLoadingPanelTest, TheWordsAreShownAndNameTheBar) {
  panel_->setActivity(QStringLiteral("Saving"));
  EXPECT_EQ(label_->text(), QStringLiteral("Saving"));
  EXPECT_EQ(indicator_->accessibleName(), QStringLiteral("Saving"));
}

TEST_F(OVLoadingPanelTest, ItIsAtOnceAsWideAsTheWordsNeed) {
  const int right = view_.rect().right() - view_.layout()->contentsMargins().right();
  for (const char* const words : {"Saving", "Something that takes more words", "Saving"}) {
    panel_->setActivity(QString::fromLatin1(words));
    EXPECT_EQ(label_->width(), label_->sizeHint().width()) << words;
    EXPECT_EQ(indicator_->size(), QSize(150, 4)) << words;
    EXPECT_EQ(panel_->geometry().right(), right) << words;
  }
}

TEST_F(OVLoadingPanelTest, TheWordsStayLightWhileTheViewBelowIsDisabled) {
  panel_->setActivity(QStringLiteral("Saving"));
  const int enabled = lightest(label_->geometry());
  EXPECT_GT(enabled, 170);
  view_.setEnabled(false);
  EXPECT_EQ(lightest(label_->geometry()), enabled);
}

TEST_F(OVLoadingPanelTest, WithoutLabelAndBarItStaysEmpty) {
  OVLoadingPanel empty;
  empty.setActivity(QStringLiteral("Saving"));
  EXPECT_TRUE(empty.children().isEmpty());
}

}  // namespace
