#include "document/display/OVMemoryNotice.h"

#include <chrono>
#include <new>

#include <gtest/gtest.h>

#include "platform/base/MemoryReserve.h"

namespace {

class OVMemoryNoticeTest : public testing::Test {
 protected:
  void pass(OVNotices::Duration time) {
    now_ += time;
    notices_.tick();
  }

  const platform::MemoryReserve reserve_;
  OVNotices::TimePoint now_;
  OVNotices notices_{[this] { return now_; }};
  OVMemoryNotice notice_{notices_};
};

TEST_F(OVMemoryNoticeTest, NothingIsSaidWhileThereIsMemory) {
  notice_.update();
  EXPECT_EQ(notices_.text(), "");
}

TEST_F(OVMemoryNoticeTest, AShortageIsToldForSomeSecondsAndTheNextOneAgain) {
  for (int time = 0; time < 2; ++time) {
    std::get_new_handler()();
    notice_.update();
    EXPECT_EQ(notices_.text(), "This computer is running out of memory");
    notice_.update();  // restores it
    pass(OVNotices::kShownFor);
    EXPECT_EQ(notices_.text(), "");
  }
}

TEST_F(OVMemoryNoticeTest, EveryDocumentTellsIt) {
  OVNotices others{[this] { return now_; }};
  OVMemoryNotice another{others};
  std::get_new_handler()();
  notice_.update();
  another.update();
  EXPECT_EQ(notices_.text(), others.text());
  EXPECT_NE(others.text(), "");
}

}  // namespace
