#include "app/OVApplicationServices.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QWindow>

#include "platform/mainloop/MainQueue.h"
#include "support/MainLoop.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAre;

std::vector<QMessageBox*> alertsOnScreen() {
  std::vector<QMessageBox*> found;
  for (QWidget* const widget : QApplication::topLevelWidgets()) {
    auto* const alert = qobject_cast<QMessageBox*>(widget);
    if (alert != nullptr && alert->isVisible()) {
      found.push_back(alert);
    }
  }
  return found;
}

/// A user who reads each alert from the alert's own event loop, and presses its button.
class Person {
 public:
  using Look = std::function<void(QMessageBox&)>;

  explicit Person(Look look = nullptr) : look_(std::move(look)) {
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { attend(); });
    timer_.start(0);
  }

  /// Texts of the alerts so far.
  [[nodiscard]] const std::vector<std::string>& seen() const { return seen_; }
  /// The most alerts that were on the screen at once.
  [[nodiscard]] std::size_t mostAtOnce() const { return mostAtOnce_; }

 private:
  void attend() {
    mostAtOnce_ = std::max(mostAtOnce_, alertsOnScreen().size());
    auto* const alert = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    if (alert == nullptr || alert == attended_) {
      return;
    }
    QMessageBox* const before = std::exchange(attended_, alert);
    seen_.push_back(alert->text().toStdString());
    if (look_) {
      look_(*alert);
    }
    if (alert->isVisible()) {
      alert->buttons().front()->click();
    }
    attended_ = before;
  }

  const Look look_;
  QTimer timer_;
  QMessageBox* attended_ = nullptr;  // being read, with the loop running
  std::vector<std::string> seen_;
  std::size_t mostAtOnce_ = 0;
};

/// What the receivers were called with, and on which thread.
struct Received {
  std::mutex mutex;
  std::vector<std::pair<std::string, std::thread::id>> lines;  // guarded by mutex
  std::vector<std::pair<std::string, std::thread::id>> files;  // guarded by mutex
  std::vector<std::thread::id> cancels;                        // guarded by mutex
};

class OVApplicationServicesTest : public testing::Test {
 protected:
  static std::shared_ptr<OVApplicationServices> servicesFor(
      const std::shared_ptr<Received>& received) {
    return std::make_shared<OVApplicationServices>(OVApplicationServices::Receivers{
        .logToConsole =
            [received](const std::string& text) {
              const std::lock_guard lock(received->mutex);
              received->lines.emplace_back(text, std::this_thread::get_id());
            },
        .registerTempFile =
            [received](const std::string& path) {
              const std::lock_guard lock(received->mutex);
              received->files.emplace_back(path, std::this_thread::get_id());
            },
        .cancelTermination =
            [received] {
              const std::lock_guard lock(received->mutex);
              received->cancels.push_back(std::this_thread::get_id());
            }});
  }

  static void expectEnded(std::future<void>& work) {
    EXPECT_TRUE(runMainLoopUntil(
        [&] { return work.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }));
  }

  std::shared_ptr<Received> received_ = std::make_shared<Received>();
  std::shared_ptr<OVApplicationServices> services_ = servicesFor(received_);
  const std::thread::id mainThread_ = std::this_thread::get_id();
};

// Synchronous alerts

TEST_F(OVApplicationServicesTest, AnAlertHasItsTwoTextsOneButtonAndTheWholeApplicationsAttention) {
  Person person([](const QMessageBox& alert) {
    EXPECT_EQ(alert.text(), "Title");
    EXPECT_EQ(alert.informativeText(), "Message");
    ASSERT_THAT(alert.buttons(), SizeIs(1));
    EXPECT_EQ(alert.buttons().front()->text(), "&OK");
    EXPECT_TRUE(alert.buttons().front()->icon().isNull());
    EXPECT_TRUE(alert.findChild<QLabel*>("qt_msgbox_label")->font().bold());
    EXPECT_EQ(alert.windowModality(), Qt::ApplicationModal);
  });
  services_->showModalAlert("Title", "Message");
  EXPECT_THAT(person.seen(), ElementsAre("Title"));
  EXPECT_THAT(alertsOnScreen(), IsEmpty());
}

TEST_F(OVApplicationServicesTest, NamesOfFilesAreNoMarkup) {
  Person person([](const QMessageBox& alert) {
    EXPECT_EQ(alert.text(), "<b>a</b>.wav");
    EXPECT_EQ(alert.informativeText(), "“<img src=x>&amp;” is empty.");
    int labels = 0;
    for (const QLabel* const label : alert.findChildren<QLabel*>()) {
      EXPECT_EQ(label->textFormat(), Qt::PlainText);
      labels += label->text().isEmpty() ? 0 : 1;
    }
    EXPECT_EQ(labels, 2);
  });
  services_->showModalAlert("<b>a</b>.wav", "“<img src=x>&amp;” is empty.");
  EXPECT_THAT(person.seen(), SizeIs(1));
}

TEST_F(OVApplicationServicesTest, WhatDisturbsALineIsNotShown) {
  Person person([](const QMessageBox& alert) {
    EXPECT_EQ(alert.text(), "a b.wav");
    EXPECT_EQ(alert.informativeText(), "The file /tmp/ orvo is not there.\n\nLook again.");
  });
  services_->showModalAlert("a\tb.wav", "The file /tmp/\u202Eorvo is not there.\n\nLook again.");
  EXPECT_THAT(person.seen(), SizeIs(1));
}

TEST_F(OVApplicationServicesTest, AnAlertThatIsClosedWithoutItsButtonIsDismissedToo) {
  Person person([](QMessageBox& alert) {
    QTest::keyClick(&alert, Qt::Key_Escape);
    EXPECT_FALSE(alert.isVisible());
  });
  services_->showModalAlert("Title", "Message");
  EXPECT_THAT(person.seen(), SizeIs(1));
}

TEST_F(OVApplicationServicesTest, AnAlertThatIsTheOnlyWindowDoesNotEndTheProgram) {
  const QSignalSpy quits(qApp, &QGuiApplication::lastWindowClosed);
  Person person;
  services_->showModalAlert("Title", "Message");
  EXPECT_TRUE(drainMainQueue());
  EXPECT_THAT(quits, IsEmpty());
}

TEST_F(OVApplicationServicesTest, AnAlertStandsAboveTheWindowInFrontAndOutlivesIt) {
  auto window = std::make_unique<QWidget>();
  window->show();
  window->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
  Person person([&](const QMessageBox& alert) {
    EXPECT_EQ(alert.windowHandle()->transientParent(), window->windowHandle());
    EXPECT_EQ(alert.parentWidget(), nullptr);
    window.reset();
    EXPECT_TRUE(alert.isVisible());
  });
  services_->showModalAlert("Title", "Message");
  EXPECT_EQ(window, nullptr);
}

TEST_F(OVApplicationServicesTest, AnotherThreadWaitsUntilItsAlertIsDismissed) {
  std::atomic<bool> returned = false;
  Person person([&](const QMessageBox& alert) {
    EXPECT_FALSE(returned);
    EXPECT_EQ(alert.thread(), qApp->thread());
  });
  auto work = std::async(std::launch::async, [&] {
    services_->showModalAlert("Title", "Message");
    returned = true;
  });
  expectEnded(work);
  EXPECT_TRUE(returned);
  EXPECT_THAT(person.seen(), ElementsAre("Title"));
}

TEST_F(OVApplicationServicesTest, AlertsOfSeveralThreadsStandOneAfterTheOther) {
  Person person([](const QMessageBox&) {
    EXPECT_TRUE(drainMainQueue());  // any other pending alert would be shown
  });
  std::vector<std::future<void>> threads;
  for (const char* const title : {"One", "Two", "Three"}) {
    threads.push_back(
        std::async(std::launch::async, [=, this] { services_->showModalAlert(title, "Message"); }));
  }
  for (auto& thread : threads) {
    expectEnded(thread);
  }
  EXPECT_THAT(person.seen(), UnorderedElementsAre("One", "Two", "Three"));
  EXPECT_EQ(person.mostAtOnce(), 1U);
}

// Posted alerts

TEST_F(OVApplicationServicesTest, APostedAlertIsShownLaterFromAnyThread) {
  services_->postModalAlert("Main", "Message");
  std::thread([this] { services_->postModalAlert("Other", "Message"); }).join();
  EXPECT_THAT(alertsOnScreen(), IsEmpty()) << "both have returned at once";
  Person person;
  EXPECT_TRUE(runMainLoopUntil([&] { return person.seen().size() == 2; }));
  EXPECT_THAT(person.seen(), ElementsAre("Main", "Other"));
}

TEST_F(OVApplicationServicesTest, PostedAlertsStandOneAfterTheOtherInTheirOrder) {
  Person person([this](const QMessageBox& alert) {
    if (alert.text() == "One") {
      services_->postModalAlert("Four", "Message");
    }
    EXPECT_TRUE(drainMainQueue());  // the others would be shown
  });
  for (const char* const title : {"One", "Two", "Three"}) {
    services_->postModalAlert(title, "Message");
  }
  EXPECT_TRUE(runMainLoopUntil([&] { return person.seen().size() == 4; }));
  EXPECT_THAT(person.seen(), ElementsAre("One", "Two", "Three", "Four"));
  EXPECT_EQ(person.mostAtOnce(), 1U);
}

TEST_F(OVApplicationServicesTest, WhatWasPostedOutlivesTheServices) {
  services_->postModalAlert("One", "Message");
  services_->postModalAlert("Two", "Message");
  services_->logToConsole("a line");
  services_.reset();
  Person person;
  EXPECT_TRUE(runMainLoopUntil([&] { return person.seen().size() == 2; }));
  EXPECT_TRUE(drainMainQueue());
  EXPECT_THAT(received_->lines, ElementsAre(std::pair(std::string("a line"), mainThread_)));
}

TEST_F(OVApplicationServicesTest, AlertsCountFromTheirPostingUntilTheyAreDismissed) {
  EXPECT_FALSE(services_->hasAlerts());
  services_->postModalAlert("One", "Message");
  EXPECT_TRUE(services_->hasAlerts());
  Person person([this](const QMessageBox&) { EXPECT_TRUE(services_->hasAlerts()); });
  EXPECT_TRUE(runMainLoopUntil([&] { return person.seen().size() == 1; }));
  EXPECT_TRUE(drainMainQueue());
  EXPECT_FALSE(services_->hasAlerts());
  services_->showModalAlert("Two", "Message");
  EXPECT_FALSE(services_->hasAlerts());
}

// Other services

TEST_F(OVApplicationServicesTest, LinesReachTheConsoleOnTheMainThreadInTheirOrder) {
  services_->logToConsole("one");
  std::thread([this] {
    services_->logToConsole("two");
    services_->logToConsole("three");
  }).join();
  EXPECT_THAT(received_->lines, IsEmpty()) << "whoever logs does not wait";
  EXPECT_TRUE(drainMainQueue());
  EXPECT_THAT(received_->lines, ElementsAre(std::pair(std::string("one"), mainThread_),
                                            std::pair(std::string("two"), mainThread_),
                                            std::pair(std::string("three"), mainThread_)));
}

TEST_F(OVApplicationServicesTest, ATemporaryFileIsRegisteredAtOnceOnTheThreadThatMadeIt) {
  std::thread::id other;
  std::thread([&] {
    services_->registerTempFile("/tmp/a");
    other = std::this_thread::get_id();
  }).join();
  EXPECT_THAT(received_->files, ElementsAre(std::pair(std::string("/tmp/a"), other)));
}

TEST_F(OVApplicationServicesTest, ACancelledQuitIsToldOnTheMainThreadBeforeTheCallReturns) {
  services_->cancelTermination();
  EXPECT_THAT(received_->cancels, ElementsAre(mainThread_));
  std::size_t toldByThen = 0;
  auto work = std::async(std::launch::async, [&] {
    services_->cancelTermination();
    const std::lock_guard lock(received_->mutex);
    toldByThen = received_->cancels.size();
  });
  expectEnded(work);
  EXPECT_EQ(toldByThen, 2U);
  EXPECT_THAT(received_->cancels, ElementsAre(mainThread_, mainThread_));
}

}  // namespace
