#include "platform/mainloop/FailureReason.h"

#include <gtest/gtest.h>

#include <cerrno>

using platform::failureReason;

TEST(FailureReasonTest, IsASentenceForWhatAUserMeets) {
  EXPECT_EQ(failureReason(ENOSPC), "The disk is full.");
  EXPECT_EQ(failureReason(EACCES), failureReason(EPERM));
  EXPECT_EQ(failureReason(EISDIR), "There is a folder of this name.");
}

TEST(FailureReasonTest, IsTheSystemsOwnTextForAnythingElse) {
  EXPECT_NE(failureReason(ECHILD), "");
  EXPECT_NE(failureReason(ECHILD), failureReason(ENOSPC));
}
