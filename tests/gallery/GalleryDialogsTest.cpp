#include "gallery/GalleryDialogs.h"

#include <set>

#include <gtest/gtest.h>
#include <QDialog>

#include "gallery/GalleryHome.h"
#include "gallery/GalleryPanels.h"
#include "support/WholeDialogs.h"

namespace {

class GalleryDialogsTest : public testing::Test {
 protected:
  void look(const QString& name, QWidget& shown) {
    SCOPED_TRACE(name.toStdString());
    EXPECT_TRUE(names_.insert(name).second) << "two pictures of this name";
    support::expectNothingClipped(shown);
    if (qobject_cast<QDialog*>(&shown) != nullptr) {
      support::expectKeyLetters(shown);
    }
    expectOneColumn(shown);
  }

  /// The kind is chosen below the name, and both begin at the same place.
  static void expectOneColumn(const QWidget& shown) {
    const auto* const kind = shown.findChild<QWidget*>("fileTypeButton");
    if (kind != nullptr) {
      const auto* const name = shown.findChild<QWidget*>("fileNameEdit");
      EXPECT_EQ(kind->mapTo(&shown, QPoint()).x(), name->x());
      EXPECT_GT(kind->mapTo(&shown, QPoint()).y(), name->y());
    }
  }

  std::set<QString> names_;
};

}  // namespace

TEST_F(GalleryDialogsTest, EachAppearsWholeAndHasAKeyLetterOnEveryButton) {
  const GalleryHome home;
  EXPECT_TRUE(forEachGalleryDialog(
      1.0, home, [this](const QString& name, QWidget& shown) { look(name, shown); }));
}

TEST_F(GalleryDialogsTest, EachPanelOfRecoveredRecordingsIsWhole) {
  forEachGalleryPanel(1.0, [this](const QString& name, QWidget& shown) { look(name, shown); });
  EXPECT_EQ(names_.size(), 6U);
}
