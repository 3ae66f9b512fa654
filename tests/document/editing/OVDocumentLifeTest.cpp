#include "document/editing/OVDocumentLife.h"

#include <gtest/gtest.h>

TEST(OVDocumentLife, AGuardedCallbackRunsWithItsArgumentsWhileTheDocumentIsThere) {
  const auto document = std::make_shared<int>(0);
  OVDocumentLife life;
  life.begin(document);
  int sum = 0;
  const auto add = life.guarded([&sum](int a, int b) { sum += a + b; });
  add(1, 2);
  EXPECT_EQ(sum, 3);
}

TEST(OVDocumentLife, ItDoesNothingOnceTheDocumentHasGone) {
  auto document = std::make_shared<int>(0);
  OVDocumentLife life;
  life.begin(document);
  bool called = false;
  const auto call = life.guarded([&called] { called = true; });
  document.reset();
  call();
  EXPECT_FALSE(called);
}

TEST(OVDocumentLife, TheDocumentIsKeptForAsLongAsTheCallbackRuns) {
  auto document = std::make_shared<int>(0);
  const std::weak_ptr<int> observed = document;
  OVDocumentLife life;
  life.begin(document);
  bool kept = false;
  life.guarded([&] {
    document.reset();
    kept = !observed.expired();
  })();
  EXPECT_TRUE(kept);
  EXPECT_TRUE(observed.expired());
}
