#include "gallery/GalleryAlerts.h"

#include <algorithm>
#include <set>
#include <utility>

#include <gtest/gtest.h>

#include "gallery/GalleryHome.h"
#include "support/WholeDialogs.h"

namespace {

/// A whole alert. The status of a file's failure stands in parentheses before the reason.
void expectWords(const support::RecordedAlert& alert) {
  SCOPED_TRACE(alert.title + ": " + alert.message);
  EXPECT_FALSE(alert.title.empty());
  EXPECT_EQ(alert.title.find('%'), std::string::npos);
  ASSERT_FALSE(alert.message.empty());
  EXPECT_NE(std::string(".!)").find(alert.message.back()), std::string::npos);
  EXPECT_EQ(alert.message.find("%"), std::string::npos);
}

}  // namespace

TEST(GalleryAlertsTest, EveryFailureIsToldOnceInWholeWordsAndTheLongestOfEachPartIsWhole) {
  constexpr std::size_t kTitles = 19;  // one for each place that alerts, and names of files
  const GalleryHome home;
  std::set<std::pair<std::string, std::string>> told;
  std::set<std::string> titles;
  for (const GalleryAlerts& part : galleryAlerts(home)) {
    for (const support::RecordedAlert& alert : part.alerts) {
      expectWords(alert);
      EXPECT_TRUE(told.emplace(alert.title, alert.message).second)
          << alert.title << ": " << alert.message << " is there twice";
      titles.insert(alert.title);
    }
    const auto longest = std::max_element(
        part.alerts.begin(), part.alerts.end(),
        [](const auto& a, const auto& b) { return a.message.size() < b.message.size(); });
    ASSERT_NE(longest, part.alerts.end()) << part.subject.toStdString();
    showAlertBox(*longest, 1.0, [](QMessageBox& box) {
      support::expectNothingClipped(box);
      support::expectKeyLetters(box);
    });
  }
  EXPECT_EQ(titles.size(), kTitles);
}
