// Any file that the user can drop on a window is opened in one: the result is at most one alert and
// a fully usable window, and the main loop keeps running.
#include "support/BadFiles.h"
#include "support/Sanitizers.h"

#include <chrono>
#include <filesystem>

#include <gmock/gmock.h>
#include <QProgressBar>
#include <QTimer>

#include "app/AppFixture.h"
#include "controls/buttons/OVTransportButton.h"
#include "platform/files/TemporaryFiles.h"
#include "platform/mainloop/ShownName.h"
#include "support/TemporaryFolder.h"
#include "support/fakes/FailingTemporaryFiles.h"

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

// Sanitizers slow everything down.
constexpr std::chrono::seconds kMaxStandstill{support::kAnySanitizer ? 20 : 2};

/// Measures the longest standstill of the main loop during its lifetime.
class Heartbeat {
 public:
  Heartbeat() {
    QObject::connect(&timer_, &QTimer::timeout, [this] { beat(); });
    timer_.start(10);
  }

  std::chrono::milliseconds longestStandstill() {
    beat();
    return std::chrono::duration_cast<std::chrono::milliseconds>(longest_);
  }

 private:
  using Clock = std::chrono::steady_clock;

  void beat() {
    const auto now = Clock::now();
    longest_ = std::max(longest_, now - last_);
    last_ = now;
  }

  QTimer timer_;
  Clock::time_point last_ = Clock::now();
  Clock::duration longest_{0};
};

class BadFilesTest : public AppFixture, public testing::WithParamInterface<BadFile> {
 protected:
  void SetUp() override { testing::internal::CaptureStderr(); }
  void TearDown() override { testing::internal::GetCapturedStderr(); }

  static std::size_t entries(const std::string& folder) {
    namespace fs = std::filesystem;
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
  }

  /// Records one buffer over the beginning and expects it there.
  void expectRecordable(OVRecorderWindow* window) {
    constexpr std::uint32_t kFrames = 4096;
    const std::vector<float> samples(2 * kFrames, 0.25F);
    item(window, "Record")->trigger();
    ASSERT_TRUE(queues_.input().deliver(samples, kFrames));
    queues_->capturedFrames = kFrames;
    item(window, "Record")->trigger();
    std::vector<float> stored(samples.size());
    EXPECT_EQ(documentOf(window)->buffer()->readDataInto(stored.data(), 8 * kFrames, 0).byteCount,
              8 * kFrames);
    EXPECT_EQ(stored, samples);
  }

  support::TemporaryFolder folder_;
  support::FailingTemporaryFiles files_;
  platform::Installed<platform::TemporaryFiles>::Scope filesInstallation_{files_};
};

TEST_P(BadFilesTest, LeavesAWindowAsGoodAsAny) {
  const BadFile& each = GetParam();
  const std::string path = folder_.file(each.file);
  ASSERT_NO_FATAL_FAILURE(each.make(path));
  const std::size_t entriesBefore = entries(folder_.path());

  Heartbeat heartbeat;
  delegate_.applicationOpenFile(path);
  ASSERT_EQ(windows().size(), 1U);
  OVRecorderWindow* const window = windows().at(0);
  const auto document = documentOf(window);
  awaitIdle(*document);
  EXPECT_LT(heartbeat.longestStandstill(), kMaxStandstill);

  const std::uint64_t length = document->buffer()->bufferSizeInFrames();
  if (each.frames == BadFile::kAnyNumber) {
    EXPECT_GT(length, 0U);
  } else {
    EXPECT_EQ(length, each.frames);
  }
  EXPECT_EQ(
      window->title().toStdString(),
      "Orvo - " + (each.frames == 0 ? "Unnamed" : platform::shownName(each.file).toStdString()));
  if (each.told.empty()) {
    EXPECT_THAT(services_->alerts(), IsEmpty());
  } else {
    ASSERT_THAT(services_->alerts(), SizeIs(1));
    EXPECT_THAT(services_->alerts()[0].message, HasSubstr(each.told));
  }
  EXPECT_THAT(services_->postedAlerts(), IsEmpty());

  EXPECT_FALSE(window->isDocumentEdited());
  EXPECT_FALSE(document->windowWillReturnUndoManager()->canUndo());
  EXPECT_FALSE(document->loadingIndicator()->isVisibleTo(window));
  for (const char* const name : {"Save", "Import…", "Open…", "Record", "Play"}) {
    EXPECT_TRUE(item(window, name)->isEnabled()) << name;
  }
  ASSERT_NO_FATAL_FAILURE(expectRecordable(window));
  EXPECT_EQ(entries(folder_.path()), entriesBefore);
  EXPECT_EQ(files_.openFiles(), 1U) << "the window's own";
}

INSTANTIATE_TEST_SUITE_P(Files, BadFilesTest, testing::ValuesIn(badFiles()),
                         [](const testing::TestParamInfo<BadFile>& each) {
                           return each.param.name;
                         });

}  // namespace
