#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "acceptance/AcceptanceTest.h"

/// What the acceptance tests share that save, open and edit documents: the panels, operated by
/// their keys, a folder for the documents, and what the saved files have to hold.
///
/// Threads: the test's own.
class DocumentTest : public AcceptanceTest {
 protected:
  /// The kinds in the order of the panel's pop-up.
  enum class Kind { wav, aiff, caf, aac };

  /// Path of a document.
  [[nodiscard]] std::string document(const std::string& name) const;

  /// Starts the program with files and waits until the first, which has so many frames, is shown.
  void startWith(const std::vector<std::string>& files, std::size_t frames);

  /// Waits for the window of this very title and gives it the keyboard; empty when it does not
  /// come.
  [[nodiscard]] Window panel(const std::string& title,
                             std::chrono::milliseconds patience = support::kPatience);
  /// Presses keys that open a panel until it comes.
  [[nodiscard]] Window openPanel(const std::string& keys, const std::string& title);
  /// Types the path of a file into a panel in place of what stands there, and accepts it.
  void chooseFile(const std::string& path);
  /// Chooses the kind in the save panel's pop-up.
  void chooseKind(Kind kind);
  /// The save panel from its keys to its end, and waits until the document is saved.
  void saveAs(const std::string& path, Kind kind);
  /// Waits for the question whether to replace a file; empty when it does not come.
  [[nodiscard]] Window questionToReplace();
  /// Answers it with yes.
  void replaceExisting();
  /// Presses the keys of Save and waits until nothing is left to be saved.
  void save();

  /// Waits until the first window has this title: what stands behind the program's name, with "*"
  /// for unsaved changes.
  void expectTitle(const std::string& title);

  /// Opens the Edit menu by its keys and chooses the command that stands so many below the first
  /// one, those that are disabled left out.
  void chooseEdit(int enabledCommand);

  /// What a folder holds, hidden files too.
  [[nodiscard]] static std::vector<std::string> names(const std::string& folder);

  /// Samples as a file of 16 bits holds them.
  [[nodiscard]] static std::vector<std::int16_t> rounded(const support::Samples& samples);
  /// A file of 16-bit samples holds these, and nothing else.
  static void expectHolds(const std::string& path, const support::Samples& samples);
  /// A file of 16 bits as one of the expectations, the first that fits; -1 for none.
  [[nodiscard]] static int indexOf(const std::string& path,
                                   const std::vector<support::Samples>& expectations);
  /// Signal to noise of `coded` against `original`, which have the same length, in decibels.
  [[nodiscard]] static double signalToNoise(const support::Samples& original,
                                            const support::Samples& coded);

  const std::string documents_ = folder_.makeFolder("documents");
};
