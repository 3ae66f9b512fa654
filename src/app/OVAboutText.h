#pragma once

#include <QString>

/// What About says: the program's version, what it is, and the versions of the libraries that it
/// runs with. Those of Qt and FFmpeg are asked of the libraries; cubeb has none to be asked for, so
/// its version is the one that Orvo was built with. Loads FFmpeg if that has not happened yet.
///
/// Threads: main. Real-time: not safe.
[[nodiscard]] QString aboutText();
