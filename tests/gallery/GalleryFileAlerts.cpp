#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <set>

#include "audio/AudioFileFailure.h"
#include "audio/CheckAudioStatus.h"
#include "audio/OVAudioFileReader.h"
#include "audio/OVAudioFileWriter.h"
#include "document/files/OVDiskShortage.h"
#include "document/files/OVFileSaving.h"
#include "gallery/AlertScene.h"
#include "gallery/GalleryHome.h"
#include "platform/mainloop/FailureReason.h"
#include "platform/media/AudioFileStatus.h"
#include "support/ClosedFolder.h"
#include "support/TemporaryFolder.h"
#include "support/fakes/MemoryTestBuffer.h"
#include "support/fakes/TestUserAudioFiles.h"
#include "support/programs/AudioFileTools.h"

namespace {

constexpr const char* kFile = "/music/Evening.wav";
constexpr std::int32_t kWave = 0;
constexpr std::int32_t kAiff = 1;
constexpr std::int32_t kAac = 3;

/// Every status of an audio file that is told.
constexpr platform::AudioStatus kStatuses[] = {
    platform::kFileNotFoundStatus,    platform::kFilePermissionStatus,
    platform::kFolderStatus,          platform::kNotARegularFileStatus,
    platform::kEmptyFileStatus,       platform::kBadFileNameStatus,
    platform::kNoAudioStatus,         platform::kUnsupportedDataFormatStatus,
    platform::kInvalidFileStatus,     platform::kUnsupportedFileTypeStatus,
    platform::kDiskFullStatus,        platform::kFileTooLargeStatus,
    platform::kFileInputOutputStatus, platform::kTooManyOpenFilesStatus,
    platform::kOutOfMemoryStatus,     platform::kFfmpegMissingStatus};

/// One for each sentence, and the last for an error that has none of its own.
constexpr int kErrors[] = {EACCES, ENOSPC, EDQUOT, EFBIG,  EROFS,        ENOENT,       EISDIR,
                           EINVAL, EIO,    ENODEV, ESTALE, ENAMETOOLONG, ELOOP,        EMFILE,
                           ENOMEM, EAGAIN, EBUSY,  EEXIST, EOPNOTSUPP,   ECONNREFUSED, EPROTO};

/// An alert for each status whose reason no earlier one has, and for the one with its own title.
template <typename Reason>
GalleryAlerts alertsWith(const char* subject, const char* call, Reason reason) {
  AlertCollection all(subject);
  std::set<std::string> told;
  for (const platform::AudioStatus status : kStatuses) {
    const std::string words = reason(status, kFile);
    if (told.insert(words).second || status == platform::kUnsupportedFileTypeStatus) {
      all.add([&](AlertScene&) { ShowAudioStatusAlert(status, call, words); });
    }
  }
  return all.take();
}

/// A document with two seconds of sound.
void fill(AlertScene& scene) {
  const auto samples = support::tune(2.0);
  scene.document().buffer()->writeData(samples.data(), 0,
                                       static_cast<std::uint32_t>(samples.size() * sizeof(float)));
}

// A stretch in the middle cannot be read.
void saveWithGap(AlertScene& scene, const std::string& path) {
  const auto samples = support::tune(2.0);
  const auto buffer = std::make_shared<MemoryTestBuffer>(samples);
  buffer->addHole(80'000, 160'000);
  scene.document().setBuffer(buffer);
  scene.document().saveFileNamed(path, kWave);
  scene.finish();
}

// Beyond what the kind can hold. A buffer that is a hole needs a real file.
void saveTooLong(AlertScene& scene) {
  const platform::Installed<platform::TemporaryFiles>::Scope real(
      platform::TemporaryFiles::whenNoneIsInstalled());
  const float frame[] = {0.5F, 0.5F};
  scene.document().buffer()->writeData(
      frame, *OVAudioFileWriter::maximumFrames(kAiff) * sizeof frame, sizeof frame);
  scene.document().saveFileNamed("/music/Evening.aiff", kAiff);
}

void exportWithoutProgram(AlertScene& scene) {
  const support::TemporaryFolder folder;
  scene.desktop().knowsPrograms = false;
  fill(scene);
  scene.document().exportRingtone(nullptr);
  scene.panels().answerSave(folder.file("Evening.m4r"));
  scene.finish();
}

void shortOfRoom(AlertScene& scene) {
  fill(scene);
  scene.freeSpace().set(100'000);
  scene.document().saveFileNamed("/tmp/Evening.wav", kWave);
  scene.finish();
}

// Writing in place fails when the old file has been overwritten in part.
void leaveACopy(AlertScene& scene, const support::TemporaryFolder& folder) {
  constexpr int kOverwrite = 1;
  const std::string path = folder.file("Evening.wav");
  static_cast<void>(support::writeBytes(path, std::string(1000, 'x')));
  if (::geteuid() == 0) {
    constexpr uid_t kNobody = 65534;
    static_cast<void>(::chown(path.c_str(), kNobody, kNobody));
  }
  static_cast<void>(::chmod(folder.path().c_str(), 0555));
  const support::ClosedFolder closed(folder.path());
  scene.document().setBuffer(std::make_shared<MemoryTestBuffer>(support::tune(30.0)));
  scene.document().saveFileNamed(path, kWave);
  scene.finish();
  std::atomic<int> reads = 0;
  scene.files().beforeReads([&] {
    if (++reads == 2) {
      scene.files().failReads(EIO);
    }
  });
  if (scene.panels().sheets() > 0) {
    scene.panels().answerSheet(kOverwrite);
  }
  scene.finish();
}

}  // namespace

GalleryAlerts openingAlerts() {
  return alertsWith("opening", "ExtAudioFileOpen", openingFailureReason);
}

GalleryAlerts writingAlerts() {
  return alertsWith("writing", "file write", writingFailureReason);
}

GalleryAlerts readingAlerts(const GalleryHome& home) {
  GalleryAlerts all = alertsWith("reading", "ExtAudioFileRead", readingFailureReason);
  AlertCollection real("reading");
  const std::string whole = support::fileBytes(home.take());
  real.add([&whole](AlertScene&) {  // as the reader asks for it
    support::TestUserAudioFiles files;
    const platform::Installed<platform::UserAudioFiles>::Scope installation(files);
    files.setBytes(whole.substr(0, whole.size() / 2));
    const auto reader = OVAudioFileReader::initWithFile(kFile);
    while (reader && reader->readFrameChunkWithSize(10'000) > 0) {
    }
  });
  for (support::RecordedAlert& alert : real.take().alerts) {
    all.alerts.push_back(std::move(alert));
  }
  return all;
}

GalleryAlerts loadingAlerts(const GalleryHome& home) {
  AlertCollection loading("loading");
  loading.add([&home](AlertScene& scene) {
    scene.freeSpace().set(1'000'000);
    scene.document().openFileNamed(home.take());
    scene.finish();
  });
  for (const int error : {ENOSPC, ENOMEM}) {
    loading.add([&home, error](AlertScene& scene) {
      scene.document();
      scene.files().fillUpAfter(100'000, error);
      scene.document().openFileNamed(home.take());
      scene.finish();
    });
    loading.add([&home, error](AlertScene& scene) {
      fill(scene);
      scene.document().importFile(nullptr);
      scene.files().fillUpAfter(100'000, error);
      scene.panels().answerOpen({home.take()});
      scene.finish();
    });
  }
  return loading.take();
}

GalleryAlerts savingAlerts(const GalleryHome& home) {
  AlertCollection saving("saving");
  for (const int error : kErrors) {
    saving.add([error](AlertScene&) { tellSaveFailed(kFile, platform::failureReason(error)); });
  }
  saving.add([](AlertScene&) { tellSaveFailed(kFile, closedFolderReason("/music")); });
  saving.add(shortOfRoom);
  saving.add(saveTooLong);
  saving.add([](AlertScene& scene) { scene.document().saveFileNamed("/music/Evening.m4a", kAac); });
  const support::TemporaryFolder folder;
  saving.add([&](AlertScene& scene) { saveWithGap(scene, folder.file("Evening.wav")); });
  saving.add([&](AlertScene& scene) { saveWithGap(scene, home.take()); });
  saving.add(exportWithoutProgram);
  const support::TemporaryFolder closed;
  const support::TemporaryFolder copies;
  static_cast<void>(::chmod(copies.path().c_str(), 0777));
  AlertScene scene(copies.path() + "/");
  saving.add(scene, [&closed](AlertScene& at) { leaveACopy(at, closed); });
  return saving.take();
}
