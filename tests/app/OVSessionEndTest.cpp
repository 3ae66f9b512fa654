#include "app/OVSessionEnd.h"

#include <gtest/gtest.h>

namespace {

/// A session manager: a call counts only after interaction was allowed.
struct Session {
  bool allows = true;
  bool interacting = false;
  int cancelled = 0;
  int released = 0;

  bool allowsInteraction() { return interacting = allows; }
  void cancel() {
    cancelled += interacting ? 1 : 0;
    interacting = false;
  }
  void release() {
    released += interacting ? 1 : 0;
    interacting = false;
  }
};

TEST(OVSessionEndTest, IsCancelledWhileSomethingIsAskedOrSaved) {
  Session session;
  askAtSessionEnd(session, true, [] { return false; });
  EXPECT_EQ(session.cancelled, 1);
  EXPECT_EQ(session.released, 0);
}

TEST(OVSessionEndTest, GoesOnWhenTheUserAgreed) {
  Session session;
  askAtSessionEnd(session, true, [] { return true; });
  EXPECT_EQ(session.cancelled, 0);
  EXPECT_EQ(session.released, 1);
}

TEST(OVSessionEndTest, IsNotInterruptedWithNothingToAsk) {
  Session session;
  askAtSessionEnd(session, false, [] {
    ADD_FAILURE() << "asked";
    return false;
  });
  EXPECT_FALSE(session.interacting);
  EXPECT_EQ(session.cancelled + session.released, 0);
}

TEST(OVSessionEndTest, AsksNothingWhereNobodyMayBeAsked) {
  Session session{.allows = false};
  askAtSessionEnd(session, true, [] {
    ADD_FAILURE() << "asked";
    return false;
  });
  EXPECT_EQ(session.cancelled + session.released, 0);
}

}  // namespace
