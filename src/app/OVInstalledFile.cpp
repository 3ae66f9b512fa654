#include "app/OVInstalledFile.h"

#include <QDir>
#include <QFileInfo>

QString OVInstalledFile::pathFrom(const QString& programFolder) const {
  const auto pathOf = [&programFolder](const QString& relative) {
    return QDir::cleanPath(QDir(programFolder).absoluteFilePath(relative));
  };
  const auto isThere = [this](const QString& path) {
    const QFileInfo file(path);
    return use == Use::run ? file.isExecutable() : file.isFile() && file.isReadable();
  };
  const QString asInstalled = pathOf(installed);
  const QString asBuilt = pathOf(built);
  return !isThere(asInstalled) && isThere(asBuilt) ? asBuilt : asInstalled;
}
