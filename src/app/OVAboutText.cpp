#include "app/OVAboutText.h"

#include <QCoreApplication>
#include <QStringList>

#include "platform/mainloop/Localization.h"
#include "platform/media/FfmpegModule.h"

QString aboutText() {
  QStringList libraries{QStringLiteral("Qt ") + QString::fromLatin1(qVersion())};
  if (const platform::FfmpegModule* const module = platform::ffmpegModule()) {
    libraries << QStringLiteral("FFmpeg ") + QString::fromUtf8(module->version());
  }
  libraries << QStringLiteral("cubeb " ORVO_CUBEB_VERSION);
  return platform::localized("Orvo %1\n\nAn audio recorder and simple editor.")
             .arg(QCoreApplication::applicationVersion()) +
         QLatin1String("\n\n") + libraries.join(u'\n');
}
