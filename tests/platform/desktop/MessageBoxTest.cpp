#include "platform/desktop/MessageBox.h"

#include <gtest/gtest.h>
#include <QLabel>
#include <QPushButton>

namespace {

TEST(MessageBoxTest, HasABoldTitleAPlainMessageAndNoWarningSign) {
  QMessageBox box;
  platform::fillMessageBox(box, QStringLiteral("<b>1</b>"), QStringLiteral("<i>2</i>"));
  const auto* const title = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
  const auto* const message = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_informativelabel"));
  ASSERT_NE(title, nullptr);
  ASSERT_NE(message, nullptr);
  EXPECT_TRUE(title->font().bold());
  EXPECT_FALSE(message->font().bold());
  EXPECT_EQ(title->textFormat(), Qt::PlainText);
  EXPECT_EQ(message->textFormat(), Qt::PlainText);
  EXPECT_EQ(box.text(), "<b>1</b>");
  EXPECT_EQ(box.informativeText(), "<i>2</i>");
  EXPECT_EQ(box.icon(), QMessageBox::NoIcon);
}

TEST(MessageBoxTest, AMessageThatIsEmptyTakesNoRoom) {
  QMessageBox box;
  platform::fillMessageBox(box, QStringLiteral("Title"), {});
  EXPECT_EQ(box.findChild<QLabel*>(QStringLiteral("qt_msgbox_informativelabel")), nullptr);
}

}  // namespace
