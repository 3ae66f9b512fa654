#include "platform/base/LateLibrary.h"

#include <gmock/gmock.h>

#include <string>
#include <thread>
#include <vector>

#include "platform/base/LateFunction.h"
#include "platform/media/MediaLibrary.h"
#include "support/fakes/RecordingServices.h"

namespace platform {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

TEST(LateLibrary, ThatIsMissingSaysSoOnceAndFailsEveryTime) {
  const support::InstalledRecordingServices services;
  static LateLibrary missing("orvo-there-is-none", 7);  // it never gives back what it has loaded
  EXPECT_FALSE(missing.load());
  EXPECT_FALSE(missing.load());
  EXPECT_THAT(services->consoleLines(), ElementsAre(HasSubstr("orvo-there-is-none")));
}

TEST(LateLibrary, InAVersionThatIsNotThereCountsAsMissing) {
  const support::InstalledRecordingServices services;
  // Not a library that another test loads: the toolkit shares them.
  static LateLibrary later("m", 4711);
  EXPECT_FALSE(later.load());
}

TEST(LateLibrary, IsLoadedOnceForManyThreads) {
  LateLibrary& library = mediaLibrary::util;
  std::vector<void*> addresses(8);
  {
    std::vector<std::jthread> threads;
    threads.reserve(addresses.size());
    for (void*& address : addresses) {
      threads.emplace_back([&library, &address] { address = library.functionNamed("av_rescale"); });
    }
  }
  EXPECT_THAT(addresses, testing::Each(addresses.front()));
}

TEST(LateLibrary, WithoutTheFunctionEndsTheProgram) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(static_cast<void>(mediaLibrary::util.functionNamed("av_none")),
               "avutil has no av_none");
}

}  // namespace
}  // namespace platform
