#pragma once

#include <QString>

/// A file that belongs to the program but is not in it: its keeper, a help page. Where it is counts
/// from the program's own folder, so the installation can be moved as a whole.
///
/// Threads: any. Real-time: not safe.
struct OVInstalledFile {
  enum class Use { run, read };

  QString installed;  ///< relative to the folder of the installed program
  QString built;      ///< relative to the program's folder in the build tree
  Use use;

  /// Its absolute path beside the program in `programFolder`: as in the build tree if it is only
  /// there, otherwise as installed, whether it is there or not.
  [[nodiscard]] QString pathFrom(const QString& programFolder) const;
};
