// One process opens a file, records after it, plays, edits, saves and closes it again and again,
// with its own window, panels, buses, list of recent files and keeper; only the sound device is
// scripted. Nothing that it holds may grow.
//
// 40 rounds usually; with ORVO_TEST_ROUNDS in the environment, so many (scripts/test --rounds).
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QPixmapCache>
#include <QPointer>
#include <QTest>

#include "app/OVKeeper.h"
#include "app/VelmarAppDelegate.h"
#include "audio/OVAQRecorder.h"
#include "audio/OVAudioFileReader.h"
#include "audio/OVAudioFileWriter.h"
#include "audio/OVFileKinds.h"
#include "controls/OVRecorderWindow.h"
#include "document/VLRecorderWindowController.h"
#include "platform/base/GlobalQueue.h"
#include "platform/desktop/DBusSleepInhibitor.h"
#include "platform/desktop/DesktopColours.h"
#include "platform/desktop/DialogStyle.h"
#include "platform/desktop/GLibRecentDocuments.h"
#include "platform/desktop/QtFileDialogs.h"
#include "platform/desktop/SavePanel.h"
#include "platform/sound/DeviceAudioQueues.h"
#include "rounds/ProcessFigures.h"
#include "rounds/RoundDesktop.h"
#include "support/MainLoop.h"
#include "support/NumberedFrames.h"
#include "support/fakes/ManualAudioClock.h"
#include "support/fakes/RecordingDesktop.h"
#include "support/fakes/RecordingServices.h"
#include "support/fakes/ScriptedAudioDevice.h"
#include "waveform/views/OVWaveFormView.h"

namespace {

constexpr std::uint64_t kFileFrames = 22050;
constexpr std::uint32_t kFedAtOnce = 1024;  // frames
constexpr int kTimesFed = 20;
constexpr int kTimesPlayed = 3;  // what the queue has at its beginning; the device does not wait
constexpr std::uint64_t kUsualRounds = 40;
constexpr std::uint64_t kMegabyte = std::uint64_t{1} << 20;

constexpr std::array kSuffixes{"wav", "aiff", "caf", "m4a"};  // in the order of the file kinds

RoundDesktop* desktop = nullptr;  // lives as long as main()

std::uint64_t roundCount() {
  const char* const rounds = std::getenv("ORVO_TEST_ROUNDS");  // NOLINT(concurrency-mt-unsafe)
  return rounds == nullptr ? kUsualRounds : std::strtoull(rounds, nullptr, 10);
}

class RoundsTest : public testing::Test {
 protected:
  RoundsTest() {
    EXPECT_TRUE(desktop->offerLoginManager());
    keeper_.start();
    for (std::size_t kind = 0; kind < kSuffixes.size(); ++kind) {
      sources_.push_back(writeSource(kind));
    }
    delegate_.spawnNewRecorderWindow(nullptr);
    lasting_ = windows().at(0);
    EXPECT_TRUE(QTest::qWaitForWindowExposed(lasting_));
  }

  ~RoundsTest() override {
    lasting_->performClose();
    EXPECT_TRUE(runMainLoopUntil([] { return windows().empty(); }));
    settle();
  }

  static std::string writeSource(std::size_t kind) {
    const std::string path = desktop->musicFile(std::string("source.") + kSuffixes.at(kind));
    std::vector<float> samples(2 * kFileFrames);
    support::makeNumbered(samples.data(), 0, kFileFrames);
    const auto writer = OVAudioFileWriter::initWithFile(path, static_cast<std::uint32_t>(kind));
    EXPECT_EQ(writer->sinkData(samples.data(), samples.size() * sizeof(float)), kFileFrames * 8);
    EXPECT_TRUE(writer->close());
    return path;
  }

  static void settle() {
    EXPECT_TRUE(awaitGlobalQueue());
    EXPECT_TRUE(drainMainQueue());
  }

  static std::vector<OVRecorderWindow*> windows() {
    std::vector<OVRecorderWindow*> found;
    for (QWidget* const widget : QApplication::topLevelWidgets()) {
      if (auto* const window = qobject_cast<OVRecorderWindow*>(widget)) {
        found.push_back(window);
      }
    }
    return found;
  }

  // By the menu's entry, which has to be enabled.
  void choose(const char* command) {
    auto* const action = window_->findChild<QAction*>(QString::fromUtf8(command));
    ASSERT_NE(action, nullptr) << command;
    ASSERT_TRUE(runMainLoopUntil([action] { return action->isEnabled(); })) << command;
    action->trigger();
  }

  // One round
  // --------------------------------------------------------------------------------------

  void open(const std::string& path) {
    delegate_.applicationOpenFile(path);
    for (OVRecorderWindow* const window : windows()) {
      if (window != lasting_) {
        window_ = window;
      }
    }
    ASSERT_FALSE(window_.isNull());
    document_ = std::dynamic_pointer_cast<VLRecorderWindowController>(window_->delegate());
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window_));
    ASSERT_TRUE(runMainLoopUntil([this] { return !document_->isFileIOActive(); }));
    length_ = kFileFrames;
    compareLength("opened");
  }

  void record() {
    choose("To End");
    choose("Record");
    ASSERT_TRUE(document_->recorder()->isRecording());
    ASSERT_TRUE(device_->awaitInputOpen());
    const std::uint64_t before = document_->recordingPosition();
    for (int i = 0; i < kTimesFed; ++i) {
      feed();
    }
    choose("Record");  // again: the end
    settle();
    length_ = document_->recordingPosition();
    EXPECT_GT(length_, before);
    compareLength("recorded");
  }

  void feed() {
    std::array<float, std::size_t{2} * kFedAtOnce> samples{};
    support::makeNumbered(samples.data(), fed_, kFedAtOnce);
    fed_ += kFedAtOnce;
    clock_->advance(std::chrono::nanoseconds(std::uint64_t{kFedAtOnce} * 1'000'000'000 / 44100));
    ASSERT_TRUE(device_->feed(samples.data(), kFedAtOnce));
    const auto recorder = document_->recorder();
    recorder->queue()->waitUntilDelivered(recorder->queue()->capturedFrames());
    QCoreApplication::processEvents();
  }

  void play() {
    choose("Stop");
    choose("Play");
    ASSERT_TRUE(device_->awaitOutputRunning());
    for (int i = 0; i < kTimesPlayed; ++i) {
      device_->pull(kFedAtOnce);
      device_->hear(kFedAtOnce);
      QCoreApplication::processEvents();
    }
    choose("Play");  // again: the end
    settle();
    EXPECT_TRUE(device_->awaitOutputStopped());
  }

  void clickWaveform(double place) {
    auto* const view = window_->findChild<OVWaveFormView*>();
    ASSERT_NE(view, nullptr);
    const QPoint at(static_cast<int>(place * view->width()), view->height() / 2);
    QTest::mouseClick(view, Qt::LeftButton, Qt::NoModifier, at);
  }

  void edit() {
    const std::uint64_t whole = length_;
    clickWaveform(0.75);
    choose("Remove After Marker");
    const std::uint64_t cut = document_->buffer()->bufferSizeInFrames();
    EXPECT_LT(cut, whole);
    choose("Undo");
    compareLength("undone");
    choose("Redo");
    clickWaveform(0.25);
    choose("Remove Before Marker");
    length_ = document_->buffer()->bufferSizeInFrames();
    EXPECT_LT(length_, cut);
    EXPECT_GT(length_, 0U);
  }

  platform::SavePanel* shownPanel() const {
    auto* const panel = window_->findChild<platform::SavePanel*>("savePanel");
    return panel != nullptr && panel->isVisible() ? panel : nullptr;
  }

  void saveAs(std::size_t kind) {
    const std::string path = desktop->musicFile(std::string("saved.") + kSuffixes.at(kind));
    std::filesystem::remove(path);
    choose("Save As…");
    ASSERT_TRUE(runMainLoopUntil([this] { return shownPanel() != nullptr; }));
    platform::SavePanel* const panel = shownPanel();
    panel->findChild<QComboBox*>("fileTypeButton")->setCurrentIndex(static_cast<int>(kind));
    panel->findChild<QLineEdit*>("fileNameEdit")->setText(QString::fromStdString(path));
    panel->accept();
    ASSERT_TRUE(runMainLoopUntil([&] {
      return shownPanel() == nullptr && !document_->isFileIOActive() &&
             std::filesystem::exists(path);
    }));
    EXPECT_FALSE(document_->isDocumentEdited());
    const auto reader = OVAudioFileReader::initWithFile(path);
    ASSERT_NE(reader, nullptr);
    EXPECT_EQ(reader->fileSizeInFrames(), length_);
  }

  void close() {
    document_.reset();
    choose("Close");
    ASSERT_TRUE(runMainLoopUntil([this] { return window_.isNull() && windows().size() == 1; }));
    settle();
  }

  void compareLength(const char* when) {
    EXPECT_EQ(document_->buffer()->bufferSizeInFrames(), length_) << when;
  }

  void goRound(std::uint64_t number) {
    const std::size_t kind = number % kSuffixes.size();
    ASSERT_NO_FATAL_FAILURE(open(sources_.at(kind)));
    if (number % 3 == 0) {
      choose("Spectrum");
    }
    ASSERT_NO_FATAL_FAILURE(record());
    ASSERT_NO_FATAL_FAILURE(play());
    ASSERT_NO_FATAL_FAILURE(edit());
    ASSERT_NO_FATAL_FAILURE(saveAs(number / kSuffixes.size() % kSuffixes.size()));
    ASSERT_NO_FATAL_FAILURE(close());
    EXPECT_TRUE(runMainLoopUntil([] { return desktop->loginManager().held() == 0; }));
    EXPECT_THAT(std::exchange(desktop->loginManager().calls, {}), testing::SizeIs(testing::Le(1)));
    EXPECT_THAT(services_->alerts(), testing::IsEmpty());
    EXPECT_THAT(services_->postedAlerts(), testing::IsEmpty());
    // FFmpeg says so of every CAF file with PCM.
    EXPECT_THAT(services_->consoleLines(),
                testing::Each(testing::StartsWith("Estimating duration from bitrate")));
    services_->clear();
  }

  // What is held ----------------------------------------------------------------------------------

  ProcessFigures figures() {
    const auto now = ProcessFigures::now(*lasting_->windowHandle());
    EXPECT_TRUE(now) << "the screen or the bus does not tell";
    return now.value_or(ProcessFigures());
  }

  static void tell(std::uint64_t round, const ProcessFigures& now) {
    std::printf(
        "%llu rounds: %zu threads, %zu descriptors, %.2f MB allocated, %.1f MB resident, "
        "%llu resources and %.1f MB of pictures on the screen, %llu rules of the bus\n",
        static_cast<unsigned long long>(round), now.threads, now.descriptors,
        megabytes(now.allocatedMemory), megabytes(now.residentMemory),
        static_cast<unsigned long long>(now.screenResources), megabytes(now.screenPictureBytes),
        static_cast<unsigned long long>(now.busMatches));
    static_cast<void>(std::fflush(stdout));
  }
  static double megabytes(std::uint64_t bytes) {
    return static_cast<double>(bytes) / static_cast<double>(kMegabyte);
  }

  std::shared_ptr<support::RecordingServices> services_ =
      std::make_shared<support::RecordingServices>();
  platform::Installed<platform::ApplicationServices>::Scope servicesInstallation_{services_};
  std::shared_ptr<platform::ManualAudioClock> clock_ =
      std::make_shared<platform::ManualAudioClock>();
  std::shared_ptr<platform::ScriptedAudioDevice> device_ =
      std::make_shared<platform::ScriptedAudioDevice>();
  platform::Installed<platform::AudioQueues>::Scope queuesInstallation_{
      std::make_shared<platform::DeviceAudioQueues>(device_, clock_)};
  platform::Installed<platform::FileDialogs>::Scope dialogsInstallation_{
      std::make_shared<platform::QtFileDialogs>(&QDBusConnection::sessionBus)};
  platform::Installed<platform::SleepInhibitor>::Scope sleepInstallation_{
      std::make_shared<platform::DBusSleepInhibitor>(platform::DBusSleepInhibitor::usualBuses())};
  platform::Installed<platform::RecentDocuments>::Scope documentsInstallation_{
      std::make_shared<platform::GLibRecentDocuments>(platform::GLibRecentDocuments::desktopFile(),
                                                      mimeTypeOfPath)};
  platform::DesktopColours colours_{QDBusConnection::sessionBus()};
  support::RecordingDesktop desktopServices_;
  VelmarAppDelegate delegate_{[] {}};
  OVKeeper keeper_{ORVO_KEEPER};

  std::vector<std::string> sources_;
  QPointer<OVRecorderWindow> lasting_;
  QPointer<OVRecorderWindow> window_;
  std::shared_ptr<VLRecorderWindowController> document_;
  std::uint64_t length_ = 0;  // frames
  std::uint64_t fed_ = 0;     // frames
};

TEST_F(RoundsTest, LeaveNothingBehind) {
  const std::uint64_t rounds = roundCount();
  const std::uint64_t early = std::max<std::uint64_t>(rounds / 10, 12);
  ProcessFigures before;
  for (std::uint64_t round = 0; round < rounds && !HasFailure(); ++round) {
    ASSERT_NO_FATAL_FAILURE(goRound(round)) << "round " << round;
    if (round + 1 == early) {
      before = figures();
    }
    if ((round + 1) % early == 0) {
      tell(round + 1, figures());
    }
  }
  ASSERT_FALSE(HasFailure());
  const ProcessFigures after = figures();
  EXPECT_LE(after.threads, before.threads + 4);  // of the pool, which end when idle
  EXPECT_EQ(after.descriptors, before.descriptors);
  EXPECT_EQ(after.screenResources, before.screenResources);
  EXPECT_LE(after.busMatches, before.busMatches + 1);  // of an answer that is under way
  EXPECT_LE(after.screenPictureBytes, before.screenPictureBytes + kMegabyte);
  EXPECT_LE(after.allocatedMemory, before.allocatedMemory + kMegabyte);
  // Each thread has a heap of its own, with holes.
  EXPECT_LE(after.residentMemory, before.residentMemory + 24 * kMegabyte);
}

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleMock(&argc, argv);
  if (testing::GTEST_FLAG(list_tests)) {
    return RUN_ALL_TESTS();
  }
  RoundDesktop ownDesktop;
  if (!ownDesktop.error().empty()) {
    std::fprintf(stderr, "%s\n", ownDesktop.error().c_str());
    return 1;
  }
  desktop = &ownDesktop;
  QApplication application(argc, argv);
  platform::DialogStyle::install();
  // Pictures of controls, which Qt keeps up to a bound of its own, would hide what is kept else.
  QPixmapCache::setCacheLimit(0);
  return RUN_ALL_TESTS();
}
