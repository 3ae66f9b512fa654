#include "platform/mainloop/Localization.h"

#include <type_traits>

#include <gtest/gtest.h>
#include <QCoreApplication>
#include <QTranslator>

namespace platform {
namespace {

/// Translates every text into its context and the text itself.
class Echo : public QTranslator {
 public:
  Echo() { QCoreApplication::installTranslator(this); }
  ~Echo() override { QCoreApplication::removeTranslator(this); }
  [[nodiscard]] QString translate(const char* context, const char* text, const char*,
                                  int) const override {
    return QString::fromUtf8(context) + ": " + QString::fromUtf8(text);
  }
  [[nodiscard]] bool isEmpty() const override { return false; }
};

static_assert(!std::is_constructible_v<TextKey, const char*>, "a text in a variable is no key");

TEST(LocalizationTest, ATextWithoutATranslationIsShownAsItIs) {
  EXPECT_EQ(localized("Öffnen…"), "Öffnen…");
  EXPECT_EQ(localizedUtf8("100% of “%1”"), "100% of “%1”");
  EXPECT_EQ(localized(textKey("Open…")), "Open…");
}

TEST(LocalizationTest, LiteralsKeysAndInterfaceFilesAreLookedUpAlike) {
  const Echo echo;
  constexpr TextKey kKept = textKey("Open…");
  EXPECT_STREQ(kKept.english(), "Open…");
  EXPECT_EQ(localized(kKept), "Orvo: Open…");
  EXPECT_EQ(localizedUtf8(kKept), "Orvo: Open…");
  EXPECT_EQ(localized("Open…"), "Orvo: Open…");
  EXPECT_EQ(localizedUtf8("Open…"), "Orvo: Open…");
  EXPECT_EQ(localized("Open…", nullptr), "Orvo: Open…");
}

TEST(LocalizationTest, NoBlankFollowsAnIdeographicFullStop) {
  EXPECT_EQ(sentencesInARow({"One.", "Two."}), "One. Two.");
  EXPECT_EQ(sentencesInARow({"一。", "二。", "Three.", "四。"}), "一。二。Three. 四。");
  EXPECT_EQ(sentencesInARow({"", "One.", ""}), "One.");
  EXPECT_EQ(sentencesInARow({}), "");
}

}  // namespace
}  // namespace platform
