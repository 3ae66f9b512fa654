#include <gmock/gmock.h>
#include <QImage>
#include <QLabel>

#include "document/FileFixture.h"
#include "support/FileSizeLimit.h"
#include "waveform/views/OVWaveFormView.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using ExportingTest = DocumentFileFixture;

TEST_F(ExportingTest, ARingtoneBeginsAtTheMarkerAndLastsAtMostFortySeconds) {
  openWindow();
  fill(ramp(50 * 44100));
  document_->setPlaybackPosition(5 * 44100);
  document_->setDocumentEdited(true);
  document_->exportRingtone(nullptr);
  const auto* const rule = qobject_cast<QLabel*>(panels_->savePanel().accessoryView);
  ASSERT_NE(rule, nullptr);
  EXPECT_THAT(rule->text().toStdString(), HasSubstr("at most 40 seconds"));
  EXPECT_THAT(panels_->savePanel().acceptedSuffixes(), ElementsAre("m4r"));
  panels_->answerSave(at("tone.m4r"));
  awaitIdle();
  EXPECT_EQ(readFile(at("tone.m4r")).size(), 2U * 40 * 44100);
  EXPECT_THAT(desktop_.opened, ElementsAre("file://" + at("tone.m4r")));
  EXPECT_TRUE(document_->isDocumentEdited());
  EXPECT_EQ(document_->currentFilename(), "");
}

TEST_F(ExportingTest, ARingtoneWithTheMarkerAtTheEndBeginsAtTheStart) {
  openDocument();
  fill(ramp(44100));
  document_->setPlaybackPosition(44100);
  document_->exportRingtone(nullptr);
  panels_->answerSave(at("tone.m4r"));
  awaitIdle();
  EXPECT_EQ(readFile(at("tone.m4r")).size(), 2U * 44100);
}

TEST_F(ExportingTest, ARingtoneThatFailsIsNotOpened) {
  openDocument();
  fill(ramp(44100));
  document_->exportRingtone(nullptr);
  panels_->answerSave(at("gone/tone.m4r"));
  awaitIdle();
  saveTo(at("take.wav"));
  EXPECT_THAT(desktop_.opened, IsEmpty());
  EXPECT_EQ(services_->alerts().size(), 1U);
}

TEST_F(ExportingTest, ASavedFileThatNoProgramOpensIsTold) {
  openDocument();
  fill(ramp(44100));
  desktop_.knowsPrograms = false;
  document_->exportRingtone(nullptr);
  panels_->answerSave(at("tone.m4r"));
  awaitIdle();
  EXPECT_EQ(alertCount(), 1U);
}

TEST_F(ExportingTest, TheWaveformPictureHasTheViewsSizeInThePixelsOfTheScreen) {
  openWindow();
  fill(ramp(44100));
  auto* const view = document_->window()->findChild<OVWaveFormView*>("wfView");
  view->grab();
  document_->setDocumentEdited(true);
  document_->dumpWaveform(nullptr);
  EXPECT_THAT(panels_->savePanel().acceptedSuffixes(), ElementsAre("png"));
  panels_->answerSave(at("picture.png"));
  settle();
  const QImage picture(QString::fromStdString(at("picture.png")));
  EXPECT_EQ(picture.size(), view->size() * view->devicePixelRatioF());
  EXPECT_EQ(picture.convertToFormat(QImage::Format_ARGB32),
            view->image().convertToFormat(QImage::Format_ARGB32));
  EXPECT_TRUE(document_->isDocumentEdited());
  EXPECT_EQ(document_->currentFilename(), "");
}

TEST_F(ExportingTest, TheWaveformPictureShowsNoneOfTheViewsOverIt) {
  document_ = VLRecorderWindowController::initWithWindowNibName("VNRecorderWindow");
  fill(ramp(44100));
  document_->setPlaybackPosition(0);
  document_->setRecordingPosition(22050);
  document_->updatePlaybackMarkerView();
  auto* const view = document_->window()->findChild<OVWaveFormView*>("wfView");
  ASSERT_TRUE(view->findChild<QWidget*>("recordingTickView")->isVisibleTo(view));
  ASSERT_TRUE(view->image().isNull()) << "never painted";
  document_->dumpWaveform(nullptr);
  panels_->answerSave(at("picture.png"));
  settle();
  const QImage picture(QString::fromStdString(at("picture.png")));
  ASSERT_EQ(picture.size(), view->size() * view->devicePixelRatioF());
  for (int y = 0; y < 10; ++y) {
    for (int x = 0; x < picture.width(); ++x) {
      ASSERT_LT(picture.pixelColor(x, y).red(), 100) << x << ", " << y;
    }
  }
}

TEST_F(ExportingTest, APictureThatCannotBeWrittenIsTold) {
  openWindow();
  document_->dumpWaveform(nullptr);
  panels_->answerSave(at("gone/picture.png"));
  settle();
  ASSERT_EQ(services_->alerts().size(), 1U);
  EXPECT_EQ(services_->alerts()[0].title, "“picture.png” could not be saved");
}

TEST_F(ExportingTest, APictureOntoAFullDiskIsToldWithItsCause) {
  openWindow();
  const support::FileSizeLimit limit(10);
  document_->dumpWaveform(nullptr);
  panels_->answerSave(at("picture.png"));
  settle();
  ASSERT_EQ(services_->alerts().size(), 1U);
  EXPECT_THAT(services_->alerts()[0].message, HasSubstr("larger than the disk allows"));
  EXPECT_EQ(filesInFolder(), 0U);
}

TEST_F(ExportingTest, ACancelledExportChangesNothing) {
  openWindow();
  document_->exportRingtone(nullptr);
  panels_->answerSave(std::nullopt);
  document_->dumpWaveform(nullptr);
  panels_->answerSave(std::nullopt);
  EXPECT_EQ(filesInFolder(), 0U);
  EXPECT_EQ(services_->cancelledTerminations(), 0U);
}

}  // namespace
