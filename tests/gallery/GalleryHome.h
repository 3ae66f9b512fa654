#pragma once

#include <string>

#include <QByteArray>

#include "support/TemporaryFolder.h"

/// A home folder with takes of several kinds in its Music folder, in place of the user's as long as
/// it lives. Without FFmpeg the takes are missing.
///
/// Threads: main, while no other thread reads the environment.
class GalleryHome {
 public:
  GalleryHome();
  ~GalleryHome();
  GalleryHome(const GalleryHome&) = delete;
  GalleryHome& operator=(const GalleryHome&) = delete;

  /// Rows of a panel that lists sound files: a folder and four files.
  static constexpr int kRows = 5;
  /// The same of one that lists pictures: a folder and a file.
  static constexpr int kPictureRows = 2;

  [[nodiscard]] const std::string& music() const { return music_; }
  /// 16 bits, eight seconds.
  [[nodiscard]] std::string take() const { return music_ + "/Recording 2026-11-21 14.02.wav"; }
  /// 24 bits, 96 kHz.
  [[nodiscard]] std::string finerTake() const { return music_ + "/Recording 2026-11-21 15.40.wav"; }
  /// AAC with tags and a cover, twelve seconds.
  [[nodiscard]] std::string tagged() const { return music_ + "/Interview.m4a"; }

 private:
  const QByteArray former_;
  support::TemporaryFolder home_;
  const std::string music_;
};
