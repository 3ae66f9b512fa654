#include "platform/sound/CaptureLossDetector.h"

#include <gtest/gtest.h>

namespace platform::test {
namespace {

/// A device that captures at its own rate, and the detector's results.
class CaptureLossDetectorTest : public testing::Test {
 protected:
  /// Lets the time pass in which a device `ppm` millionths too slow captures `frames`.
  void pass(std::uint32_t frames, double ppm = 0) {
    now_ += std::chrono::duration_cast<AudioClock::TimePoint::duration>(
        std::chrono::duration<double>(frames / (44100.0 * (1 - ppm * 1e-6))));
  }
  void deliver(std::uint32_t frames) {
    const CaptureLossDetector::Loss loss = detector_.captured(frames, now_);
    reported_ += loss.frames;
    if (loss.frames > 0) {
      capturedSince_ = loss.capturedSince;
    }
  }

  void run(int seconds, double ppm = 0) {
    for (int i = 0; i < seconds * 43; ++i) {
      const std::uint32_t chunk = i % 3 == 0 ? 3 : 1537;  // uneven, 1025.67 on average
      pass(chunk, ppm);
      deliver(chunk);
    }
  }

  CaptureLossDetector detector_;
  AudioClock::TimePoint now_{std::chrono::hours(1)};
  std::uint64_t reported_ = 0;
  std::uint64_t capturedSince_ = 0;  // the last loss
};

TEST_F(CaptureLossDetectorTest, ASteadyDeviceRaisesNoAlarm) {
  run(600);
  EXPECT_EQ(reported_, 0U);
}

TEST_F(CaptureLossDetectorTest, ADriftingDeviceRaisesNoAlarm) {
  run(3600, 1000);
  EXPECT_EQ(reported_, 0U);
}

TEST_F(CaptureLossDetectorTest, AStallWhoseFramesArriveLateRaisesNoAlarm) {
  run(60);
  for (int i = 0; i < 10; ++i) {
    for (int late = 0; late < 129; ++late) {
      pass(1024);
    }
    for (int late = 0; late < 129; ++late) {
      deliver(1024);
    }
    run(7);
  }
  EXPECT_EQ(reported_, 0U);
}

TEST_F(CaptureLossDetectorTest, FramesThatNeverArriveAreReportedOnceInTheirNumber) {
  run(60);
  for (int i = 0; i < 338; ++i) {
    pass(1024);  // none of it arrives
  }
  run(60);
  EXPECT_NEAR(static_cast<double>(reported_), 338 * 1024, 2000);
}

TEST_F(CaptureLossDetectorTest, ALossInAStallIsFoundWithinASecondAfterIt) {
  run(60);
  for (int i = 0; i < 43; ++i) {
    pass(1024);  // none of it arrives
  }
  for (int i = 0; i < 46 && reported_ == 0; ++i) {
    pass(1024);
    deliver(1024);
  }
  EXPECT_NEAR(static_cast<double>(reported_), 43 * 1024, 10);
  run(60);
  EXPECT_NEAR(static_cast<double>(reported_), 43 * 1024, 2000);
}

TEST_F(CaptureLossDetectorTest, WhatIsMissingIsMissingBeforeWhatCameAfterTheBurst) {
  for (const int late : {0, 5, 20}) {
    detector_.reset();
    reported_ = 0;
    run(60);
    for (int i = 0; i < 43 + late; ++i) {
      pass(1024);
    }
    for (int i = 0; i < late; ++i) {
      deliver(1024);  // of the others, none arrives
    }
    std::int64_t after = -1024;  // without the last one
    for (int i = 0; i < 60 && reported_ == 0; ++i) {
      pass(1024);
      deliver(1024);
      after += 1024;
    }
    EXPECT_NEAR(static_cast<double>(reported_), 43 * 1024, 1600) << late;
    EXPECT_LE(static_cast<std::int64_t>(capturedSince_), after) << late;
    EXPECT_GE(static_cast<std::int64_t>(capturedSince_), after - 4410) << late;
  }
}

TEST_F(CaptureLossDetectorTest, ABurstAtTheStartOfAStreamRaisesNoAlarm) {
  for (int i = 0; i < 20; ++i) {
    deliver(1024);  // kept back by the server
  }
  run(60);
  EXPECT_EQ(reported_, 0U);
}

TEST_F(CaptureLossDetectorTest, APauseThatMakesUpForABurstAtTheStartRaisesNoAlarm) {
  for (const int burst : {10, 20, 40, 80}) {
    detector_.reset();
    for (int i = 0; i < burst; ++i) {
      deliver(1024);
    }
    for (int i = 0; i < burst; ++i) {
      pass(1024);
    }
    run(60);
    EXPECT_EQ(reported_, 0U) << burst;
  }
}

TEST_F(CaptureLossDetectorTest, AStreamThatPausesAfterItsFirstFramesRaisesNoAlarm) {
  deliver(1024);
  for (int i = 0; i < 80; ++i) {
    pass(1024);
  }
  run(60);
  EXPECT_EQ(reported_, 0U);
}

TEST_F(CaptureLossDetectorTest, ALossSoonAfterTheStartIsFoundSoon) {
  for (const int before : {1, 2, 3}) {
    for (const int lost : {10, 43, 870}) {
      detector_.reset();
      reported_ = 0;
      run(before);
      for (int i = 0; i < lost; ++i) {
        pass(1024);  // none of it arrives
      }
      run(4);  // the rest of one window, and a whole one
      EXPECT_NEAR(static_cast<double>(reported_), lost * 1024, 1600) << before;
      run(10);
      EXPECT_NEAR(static_cast<double>(reported_), lost * 1024, 1600) << before;
    }
  }
}

TEST_F(CaptureLossDetectorTest, AFreezeInTheFirstHalfSecondIsFound) {
  for (int i = 0; i < 10; ++i) {
    pass(1024);
    deliver(1024);
  }
  now_ += std::chrono::seconds(20);
  run(3);
  EXPECT_NEAR(static_cast<double>(reported_), 20 * 44100, 1600);
}

TEST_F(CaptureLossDetectorTest, ANewStreamStartsAfresh) {
  run(60);
  detector_.reset();
  now_ += std::chrono::seconds(100);
  run(60);
  EXPECT_EQ(reported_, 0U);
}

}  // namespace
}  // namespace platform::test
