#include "platform/desktop/FileDialogs.h"

#include <gmock/gmock.h>
#include <QPointer>
#include <QWidget>

#include <optional>
#include <string>

#include "support/MainLoop.h"

namespace {

TEST(FileDialogsTest, WithNoneInstalledAreCancelledLaterAndSaySo) {
  const QPointer<QWidget> accessory(new QWidget);
  bool openIsCancelled = false;
  bool saveIsCancelled = false;
  std::optional<int> code;
  platform::OpenPanelRequest open;
  open.title = "Open";
  const QPointer<QWidget> openAccessory(new QWidget);
  open.accessoryView = openAccessory.data();
  platform::SavePanelRequest save;
  save.title = "Save";
  save.accessoryView = accessory.data();
  platform::SheetRequest question;
  question.title = "Question";
  testing::internal::CaptureStderr();
  const auto dialogs = platform::fileDialogs();
  dialogs->beginOpenPanel(open, [&](const auto& paths) { openIsCancelled = paths.empty(); });
  dialogs->beginSavePanel(save, [&](const auto& path) { saveIsCancelled = !path; });
  dialogs->beginSheet(question, [&](int returnCode) { code = returnCode; });
  EXPECT_FALSE(openIsCancelled || saveIsCancelled || code);
  EXPECT_TRUE(runMainLoopUntil([&] { return code.has_value(); }));
  const std::string written = testing::internal::GetCapturedStderr();
  for (const char* const title : {"Open", "Save", "Question"}) {
    EXPECT_THAT(written, testing::HasSubstr(title));
  }
  EXPECT_TRUE(openIsCancelled);
  EXPECT_TRUE(saveIsCancelled);
  EXPECT_EQ(code, platform::FileDialogs::kNoAnswer);
  EXPECT_EQ(accessory, nullptr) << "taken over and deleted";
  EXPECT_EQ(openAccessory, nullptr);
}

}  // namespace
