#include "app/OVRecentFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <future>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/desktop/RecentDocuments.h"
#include "platform/mainloop/MainQueue.h"
#include "support/MainLoop.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A list that the test can stall, and change as another program would.
class HeldList : public platform::RecentDocuments {
 public:
  void noteNewRecentDocument(const std::string& path) override { add(path); }
  [[nodiscard]] std::vector<std::string> recentDocuments(std::size_t most) const override {
    released_.wait();
    const std::lock_guard lock(mutex_);
    return {paths_.begin(), paths_.begin() + static_cast<long>(std::min(most, paths_.size()))};
  }

  void add(const std::string& path) {
    released_.wait();
    const std::lock_guard lock(mutex_);
    paths_.insert(paths_.begin(), path);
  }
  void release() { release_.set_value(); }

 private:
  std::promise<void> release_;
  std::shared_future<void> released_{release_.get_future()};
  mutable std::mutex mutex_;
  std::vector<std::string> paths_;  // guarded by mutex_
};

class OVRecentFilesTest : public testing::Test {
 protected:
  void expectLatest(const std::vector<std::string>& paths) {
    EXPECT_TRUE(runMainLoopUntil([&] { return files_->latest() == paths; }))
        << testing::PrintToString(files_->latest());
  }

  HeldList list_;
  platform::Installed<platform::RecentDocuments>::Scope installation_{list_};
  std::unique_ptr<OVRecentFiles> files_ = std::make_unique<OVRecentFiles>();
};

TEST_F(OVRecentFilesTest, NobodyWaitsForTheListAndItIsEmptyUntilItWasRead) {
  files_->note("/a.wav");
  files_->refresh();
  EXPECT_THAT(files_->latest(), IsEmpty());
  list_.release();
  expectLatest({"/a.wav"});
}

TEST_F(OVRecentFilesTest, NotedFilesComeBackTheLatestFirst) {
  list_.release();
  files_->note("/a.wav");
  files_->note("/b.wav");
  expectLatest({"/b.wav", "/a.wav"});
}

TEST_F(OVRecentFilesTest, RefreshShowsWhatOthersChanged) {
  list_.release();
  files_->refresh();
  list_.add("/a.wav");
  files_->refresh();
  expectLatest({"/a.wav"});
}

TEST_F(OVRecentFilesTest, AtMostTenAreShown) {
  list_.release();
  std::vector<std::string> latest;
  for (std::size_t i = 0; i < OVRecentFiles::kShown + 3; ++i) {
    list_.add("/" + std::to_string(i) + ".wav");
    latest.insert(latest.begin(), "/" + std::to_string(i) + ".wav");
  }
  latest.resize(10);
  files_->refresh();
  expectLatest(latest);
}

TEST_F(OVRecentFilesTest, DestructionWhileTheListIsReadIsSafe) {
  files_->note("/a.wav");
  list_.release();
  files_.reset();
  EXPECT_TRUE(awaitGlobalQueue());
  bool ran = false;
  platform::mainQueue().async([&ran] { ran = true; });
  EXPECT_TRUE(runMainLoopUntil([&ran] { return ran; }));
}

}  // namespace
