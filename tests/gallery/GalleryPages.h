#pragma once

#include <memory>
#include <vector>

#include "gallery/GalleryPage.h"

/// The pages of the gallery: every view in every state.
using GalleryPages = std::vector<std::unique_ptr<GalleryPage>>;

/// Bezels, transport and hover buttons, platform buttons, panels, progress.
void addButtonPages(GalleryPages& pages);

/// Meters, spectrum, time.
void addDisplayPages(GalleryPages& pages);

/// Waveform and marker, notices, tick and lamp, the program's pictures.
void addWaveformPages(GalleryPages& pages);

[[nodiscard]] inline GalleryPages makeGalleryPages() {
  GalleryPages pages;
  addButtonPages(pages);
  addDisplayPages(pages);
  addWaveformPages(pages);
  return pages;
}
