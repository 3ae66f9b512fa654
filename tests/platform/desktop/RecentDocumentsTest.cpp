#include "platform/desktop/RecentDocuments.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using platform::recentDocuments;
using platform::RecentDocumentsInstallation;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class FixedRecentDocuments : public platform::RecentDocuments {
 public:
  void noteNewRecentDocument(const std::string& path) override { noted.push_back(path); }
  std::vector<std::string> recentDocuments(std::size_t) const override { return noted; }

  std::vector<std::string> noted;
};

TEST(RecentDocuments, WithNoListInstalledAreALineOnStandardError) {
  testing::internal::CaptureStderr();
  recentDocuments().noteNewRecentDocument("/a.wav");
  EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("/a.wav"));
  EXPECT_THAT(recentDocuments().recentDocuments(9), IsEmpty());
}

TEST(RecentDocuments, GoToTheListThatWasInstalledLast) {
  FixedRecentDocuments outer;
  FixedRecentDocuments inner;
  {
    const RecentDocumentsInstallation installedOuter(outer);
    {
      const RecentDocumentsInstallation installedInner(inner);
      recentDocuments().noteNewRecentDocument("/inner.wav");
    }
    recentDocuments().noteNewRecentDocument("/outer.wav");
    EXPECT_THAT(recentDocuments().recentDocuments(9), ElementsAre("/outer.wav"));
  }
  EXPECT_THAT(inner.noted, ElementsAre("/inner.wav"));
  EXPECT_THAT(recentDocuments().recentDocuments(9), IsEmpty());
}

}  // namespace
