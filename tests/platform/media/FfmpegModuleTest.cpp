#include "platform/media/FfmpegModule.h"

#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include <dlfcn.h>
#include <sys/resource.h>
#include <unistd.h>

#include <gmock/gmock.h>

#include "platform/media/AudioFileStatus.h"
#include "support/Sanitizers.h"
#include "support/fakes/RecordingServices.h"

namespace platform {
namespace {

using testing::HasSubstr;

TEST(FfmpegModuleTest, IsLoadedOnceForManyThreads) {
  std::vector<const FfmpegModule*> modules(8);
  {
    std::vector<std::jthread> threads;
    threads.reserve(modules.size());
    for (const FfmpegModule*& module : modules) {
      threads.emplace_back([&module] { module = ffmpegModule(); });
    }
  }
  ASSERT_NE(modules.front(), nullptr);
  EXPECT_THAT(modules, testing::Each(modules.front()));
}

TEST(FfmpegModuleTest, NamesFfmpegsLibrariesInItsFileForPackagingTools) {
  const FfmpegModule* const module = ffmpegModule();
  ASSERT_NE(module, nullptr);
  Dl_info found{};
  ASSERT_NE(dladdr(module, &found), 0);
  ASSERT_THAT(found.dli_fname, HasSubstr("orvo-ffmpeg.so"));
  std::ifstream file(found.dli_fname, std::ios::binary);
  const std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  for (const char* library :
       {"libavformat.so.", "libavcodec.so.", "libswresample.so.", "libavutil.so."}) {
    EXPECT_NE(bytes.find(library), std::string::npos) << library;
  }
}

// If the process cannot open files, every library is missing.
void useWithoutLibraries() {
  const support::InstalledRecordingServices services;
  const rlimit none{0, 0};
  const bool isMissing =
      setrlimit(RLIMIT_NOFILE, &none) == 0 &&
      ExtAudioFileInput::openURL("a.wav", nullptr).status == kFfmpegMissingStatus &&
      ExtAudioFileOutput::createWithURL("a.wav", AudioFileKind::wave).status ==
          kFfmpegMissingStatus &&
      FourierTransform::create(12) == nullptr;
  const bool isToldOnce =
      services->consoleLines().size() == 1 && services->consoleLinesWith("orvo-ffmpeg") == 1;
  _exit(isMissing && isToldOnce ? 0 : 1);
}

TEST(FfmpegModuleTest, ThatIsMissingIsLoggedOnceAndFailsEveryTime) {
  if (support::kAddressSanitizer) {
    GTEST_SKIP() << "the sanitizer itself needs files";
  }
  GTEST_FLAG_SET(death_test_style, "threadsafe");  // a process that has not loaded it yet
  EXPECT_EXIT(useWithoutLibraries(), testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace platform
