#include "app/OVHelpPage.h"

#include "app/OVInstalledFile.h"
#include "platform/mainloop/Localization.h"

// The page is localized like any text: each language names its own.
QString OVHelpPage::pathFrom(const QString& programFolder) {
  const QString page = QLatin1Char('/') + platform::localized("en/index.html");
  return OVInstalledFile{.installed = QStringLiteral(ORVO_INSTALLED_HELP) + page,
                         .built = QStringLiteral("../../share/orvo/help") + page,
                         .use = OVInstalledFile::Use::read}
      .pathFrom(programFolder);
}
