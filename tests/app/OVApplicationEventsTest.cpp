#include "app/OVApplicationEvents.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <QCoreApplication>
#include <QEvent>
#include <QFileOpenEvent>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class OVApplicationEventsTest : public testing::Test {
 protected:
  OVApplicationEventsTest() { receiver_.installEventFilter(&events_); }

  void send(QEvent& event) { QCoreApplication::sendEvent(&receiver_, &event); }

  /// Counts the events that the filter passes on.
  class Receiver : public QObject {
   public:
    int events = 0;
    bool event(QEvent* event) override {
      ++events;
      return QObject::event(event);
    }
  };

  std::vector<std::string> opened_;
  int terminations_ = 0;
  OVApplicationEvents events_{{.openFile = [this](const std::string& p) { opened_.push_back(p); },
                               .terminate = [this] { ++terminations_; }}};
  Receiver receiver_;
};

TEST_F(OVApplicationEventsTest, AFileOpenEventOpensItsFile) {
  QFileOpenEvent event(QStringLiteral("/music/Größe “1”.wav"));
  send(event);
  EXPECT_THAT(opened_, ElementsAre("/music/Größe “1”.wav"));
  EXPECT_EQ(terminations_, 0);
  EXPECT_EQ(receiver_.events, 0);
}

TEST_F(OVApplicationEventsTest, AnAddressThatIsNoFileOpensNothing) {
  QFileOpenEvent event(QUrl(QStringLiteral("https://example.org/a.wav")));
  send(event);
  EXPECT_THAT(opened_, IsEmpty());
  EXPECT_EQ(receiver_.events, 0);
}

TEST_F(OVApplicationEventsTest, AQuitEventAsksToTerminateAndEndsNothingItself) {
  QEvent event(QEvent::Quit);
  send(event);
  EXPECT_EQ(terminations_, 1);
  EXPECT_EQ(receiver_.events, 0);
}

TEST_F(OVApplicationEventsTest, EveryOtherEventPasses) {
  QEvent event(QEvent::User);
  send(event);
  EXPECT_EQ(receiver_.events, 1);
  EXPECT_EQ(terminations_, 0);
  EXPECT_THAT(opened_, IsEmpty());
}

}  // namespace
