#include "document/files/OVWaveformPicture.h"

#include <cerrno>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include <QBuffer>
#include <QImage>

#include "audio/AudioFileFailure.h"
#include "document/files/OVDocumentFile.h"
#include "document/files/OVDocumentPanels.h"
#include "document/files/OVFileSaving.h"
#include "platform/files/ReplacementFile.h"
#include "platform/mainloop/FailureReason.h"
#include "platform/mainloop/Localization.h"
#include "platform/mainloop/MainQueue.h"

namespace {

constexpr const char* kPictureSuffix = "png";

// Runs on a background queue, which must not see an exception. 0, or the errno of the failure.
int writePicture(const QImage& picture, const std::string& path) try {
  QByteArray encoded;
  QBuffer target(&encoded);
  if (!target.open(QIODevice::WriteOnly) || !picture.save(&target, "PNG")) {
    return ENOMEM;
  }
  const auto replacement = platform::ReplacementFile::beside(path);
  if (!replacement) {
    return replacement.error();
  }
  const int error =
      replacement->write(encoded.constData(), static_cast<std::uint64_t>(encoded.size()));
  return error != 0 ? error : replacement->commit();
} catch (const std::bad_alloc&) {
  return ENOMEM;
}

// The waveform alone, without the views that are laid over it.
QImage pictureOf(OVWaveFormView& waveform) {
  if (waveform.image().isNull()) {  // not painted yet
    static_cast<void>(waveform.grab());
  }
  return waveform.image();
}

void writePictureOf(OVWaveFormView& view, const std::string& path) {
  const QImage picture = pictureOf(view);
  platform::globalQueue().async([picture, path] {
    const int error = writePicture(picture, path);
    if (error != 0) {
      const std::string closed = platform::ReplacementFile::closedFolderBeside(path, error);
      platform::mainQueue().async([path, error, closed] {
        tellSaveFailed(
            path, closed.empty() ? platform::failureReason(error) : closedFolderReason(closed));
      });
    }
  });
}

}  // namespace

void exportWaveformPicture(const QPointer<OVWaveFormView>& view, OVDocumentPanels& panels,
                           const OVDocumentFile& file) {
  if (!view || panels.isShown()) {
    return;
  }
  panels.save({.title = platform::localized("Export Waveform Picture"),
               .directory = file.folder(),
               .suggestedName = file.suggestedName(),
               .acceptedSuffixes = [] { return std::vector<std::string>{kPictureSuffix}; }},
              [view](const std::optional<std::string>& path) {
                if (path && view) {
                  writePictureOf(*view, *path);
                }
              });
}
