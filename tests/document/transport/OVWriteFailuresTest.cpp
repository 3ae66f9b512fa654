#include "document/transport/OVWriteFailures.h"

#include <cerrno>
#include <vector>

#include <gtest/gtest.h>

#include "support/fakes/RecordingServices.h"

class OVWriteFailuresTest : public testing::Test {
 protected:
  support::InstalledRecordingServices services_;
  std::vector<OVWriteFailures::Failure> reported_;
  OVWriteFailures failures_{
      [this](const OVWriteFailures::Failure& failure) { reported_.push_back(failure); }};
};

TEST_F(OVWriteFailuresTest, WhatFailsWhileALoadRunsIsTheLoads) {
  failures_.loadingBegins();
  failures_.failedToWrite(ENOSPC, nullptr);
  EXPECT_EQ(failures_.takeLoadingError(), ENOSPC);
  EXPECT_EQ(failures_.takeLoadingError(), 0);
  EXPECT_TRUE(reported_.empty());
}

TEST_F(OVWriteFailuresTest, WhatFailsBetweenLoadsAndRecordingsIsNobodys) {
  failures_.loadingBegins();
  failures_.loadingEnded();
  failures_.failedToWrite(ENOSPC, nullptr);
  EXPECT_EQ(failures_.takeLoadingError(), 0);
}

TEST_F(OVWriteFailuresTest, ALoadDoesNotInheritTheFailureOfAnotherOne) {
  failures_.loadingBegins();
  failures_.failedToWrite(EIO, nullptr);
  failures_.loadingBegins();
  EXPECT_EQ(failures_.takeLoadingError(), 0);
}

TEST_F(OVWriteFailuresTest, AChunkThatWasWrittenIsNotReported) {
  failures_.recordingBegins(0);
  failures_.chunkWritten(nullptr, 0, 4096);
  EXPECT_TRUE(reported_.empty());
}

TEST_F(OVWriteFailuresTest, TheUserIsToldWhyAndWhatIsKept) {
  OVWriteFailures::tellRecordingStopped(ENOSPC);
  ASSERT_EQ(services_->alerts().size(), 1u);
  EXPECT_EQ(services_->alerts()[0].title, "The recording was stopped");
  EXPECT_NE(services_->alerts()[0].message.find("The disk is full."), std::string::npos);
  EXPECT_NE(services_->alerts()[0].message.find("Everything recorded before is kept."),
            std::string::npos);
}
