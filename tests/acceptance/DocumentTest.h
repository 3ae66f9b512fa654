#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "acceptance/AcceptanceTest.h"

/// Base of the acceptance tests that save, open and edit documents: the panels, operated by their
/// keys, a folder for the documents, and expectations about the saved files.
///
/// Threads: the test's own.
class DocumentTest : public AcceptanceTest {
 protected:
  /// The kinds in the order of the panel's pop-up.
  enum class Kind { wav, aiff, caf, aac };

  /// Path of a document.
  [[nodiscard]] std::string document(const std::string& name) const;

  /// Starts the program with files and waits until the first, of this many frames, is shown.
  void startWith(const std::vector<std::string>& files, std::size_t frames);

  /// Waits for the window with exactly this title and gives it the keyboard; empty if it does not
  /// appear.
  [[nodiscard]] Window panel(const std::string& title,
                             std::chrono::milliseconds patience = support::kPatience);
  /// Presses keys that open a panel until it appears.
  [[nodiscard]] Window openPanel(const std::string& keys, const std::string& title);
  /// Replaces the text in a panel with the path of a file, and accepts it.
  void chooseFile(const std::string& path);
  /// Chooses the kind in the save panel's pop-up.
  void chooseKind(Kind kind);
  /// Opens the save panel by its keys, completes it, and waits until the document is saved.
  void saveAs(const std::string& path, Kind kind);
  /// Waits for the question whether to replace a file; empty if it does not appear.
  [[nodiscard]] Window questionToReplace();
  /// Answers it with Replace.
  void replaceExisting();
  /// Presses the keys of Save and waits until there are no unsaved changes.
  void save();

  /// Waits until the first window has this title: the part after the program's name, with "*" for
  /// unsaved changes.
  void expectTitle(const std::string& title);

  /// Opens the Edit menu by its keys and chooses the command at this distance below the first one,
  /// not counting disabled ones.
  void chooseEdit(int enabledCommand);

  /// The names in a folder, including hidden files.
  [[nodiscard]] static std::vector<std::string> names(const std::string& folder);

  /// Samples as a file of 16 bits holds them.
  [[nodiscard]] static std::vector<std::int16_t> rounded(const support::Samples& samples);
  /// Expects a file of 16-bit samples to hold exactly these.
  static void expectHolds(const std::string& path, const support::Samples& samples);
  /// The index of the first of the expectations that a 16-bit file matches; -1 for none.
  [[nodiscard]] static int indexOf(const std::string& path,
                                   const std::vector<support::Samples>& expectations);
  /// Signal to noise of `coded` against `original`, which have the same length, in decibels.
  [[nodiscard]] static double signalToNoise(const support::Samples& original,
                                            const support::Samples& coded);

  const std::string documents_ = folder_.makeFolder("documents");
};
