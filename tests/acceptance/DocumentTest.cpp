#include "acceptance/DocumentTest.h"

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "support/programs/AudioFileTools.h"

using namespace support;

std::string DocumentTest::document(const std::string& name) const {
  return documents_ + "/" + name;
}

DocumentTest::Window DocumentTest::panel(const std::string& title,
                                         std::chrono::milliseconds patience) {
  Window found;
  const auto shown = [&] {
    for (const Window& window : screen_->windowsOf(orvo_->pid(), title)) {
      found = screen_->titleOf(window) == title ? window : found;
    }
    return !found.empty();
  };
  return eventually(shown, patience) && screen_->activate(found) ? found : Window();
}

DocumentTest::Window DocumentTest::openPanel(const std::string& keys, const std::string& title) {
  constexpr std::chrono::seconds kAgain{1};  // while a file is loaded or saved, keys do nothing
  Window found;
  static_cast<void>(eventually([&] {
    found = screen_->pressKey(keys) ? panel(title, kAgain) : Window();
    return !found.empty();
  }));
  return found;
}

void DocumentTest::startWith(const std::vector<std::string>& files, std::size_t frames) {
  RunningOrvo::Options options;
  options.files = files;
  ASSERT_NO_FATAL_FAILURE(startOrvo(options));
  ASSERT_TRUE(orvo_->waitUntilRecorded(frames)) << orvo_->process().errorOutput();
  // The summary follows, and last its picture.
  ASSERT_TRUE(screen_->screenshotAtRest(orvo_->window(), folder_.file("loaded.png")));
}

DocumentTest::Window DocumentTest::questionToReplace() {
  // It has the panel's title.
  const auto panels = [&] { return screen_->windowsOf(orvo_->pid(), "Save As"); };
  const bool asked = eventually([&] { return panels().size() == 2; });
  return asked && screen_->activate(panels().back()) ? panels().back() : Window();
}

void DocumentTest::replaceExisting() {
  const Window question = questionToReplace();
  ASSERT_FALSE(question.empty());
  ASSERT_TRUE(screen_->pressKey("alt+r"));
  ASSERT_TRUE(screen_->waitUntilGone(question));
}

void DocumentTest::chooseFile(const std::string& path) {
  ASSERT_TRUE(screen_->pressKey("alt+n"));
  ASSERT_TRUE(screen_->pressKey("ctrl+a"));
  ASSERT_TRUE(screen_->type(path));
  ASSERT_TRUE(screen_->pressKey("Return"));
}

void DocumentTest::chooseKind(Kind kind) {
  ASSERT_TRUE(screen_->pressKey("alt+t"));
  ASSERT_TRUE(screen_->pressKey("Home"));
  for (int i = 0; i < static_cast<int>(kind); ++i) {
    ASSERT_TRUE(screen_->pressKey("Down"));
  }
}

void DocumentTest::saveAs(const std::string& path, Kind kind) {
  const Window shown = openPanel("ctrl+shift+s", "Save As");
  ASSERT_FALSE(shown.empty());
  ASSERT_NO_FATAL_FAILURE(chooseKind(kind));
  ASSERT_NO_FATAL_FAILURE(chooseFile(path));
  ASSERT_TRUE(screen_->waitUntilGone(shown));
  ASSERT_NO_FATAL_FAILURE(expectTitle(std::filesystem::path(path).filename().string()));
}

void DocumentTest::save() {
  const std::string title = screen_->titleOf(orvo_->window());
  ASSERT_TRUE(title.ends_with('*')) << title;
  ASSERT_TRUE(screen_->pressKey("ctrl+s"));
  ASSERT_TRUE(eventually(
      [&] { return screen_->titleOf(orvo_->window()) == title.substr(0, title.size() - 1); }));
}

void DocumentTest::expectTitle(const std::string& title) {
  std::string shown;
  ASSERT_TRUE(eventually([&] {
    shown = screen_->titleOf(orvo_->window());
    return shown == "Orvo - " + title;
  })) << shown
      << " instead of " << title;
}

void DocumentTest::chooseEdit(int enabledCommand) {
  ASSERT_TRUE(screen_->pressKey("alt+e"));
  for (int i = 0; i < enabledCommand; ++i) {
    ASSERT_TRUE(screen_->pressKey("Down"));
  }
  ASSERT_TRUE(screen_->pressKey("Return"));
}

std::vector<std::string> DocumentTest::names(const std::string& folder) {
  std::vector<std::string> found;
  std::error_code gone;
  for (const auto& entry : std::filesystem::directory_iterator(folder, gone)) {
    found.push_back(entry.path().filename().string());
  }
  std::sort(found.begin(), found.end());
  return found;
}

std::vector<std::int16_t> DocumentTest::rounded(const Samples& samples) {
  constexpr float kFullScale = 32768;
  std::vector<std::int16_t> result(samples.size());
  std::transform(samples.begin(), samples.end(), result.begin(), [](float sample) {
    return static_cast<std::int16_t>(
        std::lrint(std::clamp(sample * kFullScale, -kFullScale, kFullScale - 1)));
  });
  return result;
}

void DocumentTest::expectHolds(const std::string& path, const Samples& samples) {
  const auto held = decoded16ByFfmpeg(path);
  const auto expected = rounded(samples);
  EXPECT_EQ(held.size(), expected.size()) << path;
  const auto [difference, ignored] =
      std::mismatch(held.begin(), held.end(), expected.begin(), expected.end());
  EXPECT_EQ(difference - held.begin(), static_cast<std::ptrdiff_t>(expected.size()))
      << path << ": the first sample that differs";
}

int DocumentTest::indexOf(const std::string& path, const std::vector<Samples>& expectations) {
  const auto held = decoded16ByFfmpeg(path);
  const auto found = std::find_if(expectations.begin(), expectations.end(),
                                  [&](const Samples& one) { return rounded(one) == held; });
  return found == expectations.end() ? -1 : static_cast<int>(found - expectations.begin());
}

double DocumentTest::signalToNoise(const Samples& original, const Samples& coded) {
  double signal = 0;
  double noise = 0;
  for (std::size_t i = 0; i < std::min(original.size(), coded.size()); ++i) {
    const double difference = static_cast<double>(original[i]) - coded[i];
    signal += static_cast<double>(original[i]) * original[i];
    noise += difference * difference;
  }
  return 10 * std::log10(signal / noise);
}
