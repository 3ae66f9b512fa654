#include "app/OVFirstWindowWatcher.h"

#include <gtest/gtest.h>

#include <QWidget>

#include "support/MainLoop.h"

namespace {

class Drawn : public QWidget {
 public:
  bool isDrawn = false;

 protected:
  void paintEvent(QPaintEvent*) override { isDrawn = true; }
};

TEST(OVFirstWindowWatcherTest, IsToldOnceAfterItHasBeenDrawn) {
  int told = 0;
  bool drawnBefore = false;
  Drawn first;
  Drawn second;
  const OVFirstWindowWatcher firstWindow([&] {
    ++told;
    drawnBefore = first.isDrawn;
  });
  first.show();
  ASSERT_TRUE(runMainLoopUntil([&] { return told > 0; }));
  EXPECT_TRUE(drawnBefore);
  second.show();
  ASSERT_TRUE(runMainLoopUntil([&] { return second.isDrawn; }));
  ASSERT_TRUE(drainMainQueue());
  EXPECT_EQ(told, 1);
}

TEST(OVFirstWindowWatcherTest, IsNotWaitedForLongerThanTheLongestWait) {
  int told = 0;
  const OVFirstWindowWatcher firstWindow([&] { ++told; });
  EXPECT_TRUE(runMainLoopUntil([&] { return told == 1; }));
}

}  // namespace
