#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include <QPointer>
#include <QString>

#include "platform/mainloop/Localization.h"

class OVRecorderWindow;

/// The file that a document was opened from or last saved to, and the window's title, which names
/// it.
///
/// Threads: main. Real-time: not safe.
class OVDocumentFile {
 public:
  /// The title of a document of this name, preceded by the product's name.
  [[nodiscard]] static QString titleWithName(const QString& name);

  /// Sets the title of a document without a file. The window may be null.
  void connect(OVRecorderWindow* window);

  /// Path, empty for a new recording.
  [[nodiscard]] const std::string& name() const { return currentFilename_; }
  /// Leaves the title as it is.
  void setName(std::string path) { currentFilename_ = std::move(path); }
  /// Kind of file, -1 for none or unknown.
  [[nodiscard]] std::int32_t type() const { return currentFiletype_; }
  void setType(std::int32_t type) { currentFiletype_ = type; }

  /// Makes this the document's file.
  void take(const std::string& path, std::int32_t type);
  /// Detaches the document from its file.
  void forget();
  /// Names a document that has no file, in the title and in a save panel, until it gets a file or
  /// forgets the name.
  void nameWithoutFile(const QString& shown, std::string suggested);

  /// The file's display name; without a file, the document's own or "Unnamed".
  [[nodiscard]] QString shownName() const;
  /// The name that a panel suggests, without the suffix: the file's, or for a new take one with the
  /// present date and time, "Recording 2026-11-21 14.02".
  [[nodiscard]] std::string suggestedName() const;
  /// The kind that a panel suggests: the file's own if it can be written, otherwise WAV.
  [[nodiscard]] std::int32_t suggestedType() const;
  /// Whether the document can be saved without asking for a path and a kind.
  [[nodiscard]] bool canBeSaved() const;
  /// Path of its folder; empty without one.
  [[nodiscard]] std::string folder() const;

 private:
  QPointer<OVRecorderWindow> window_;
  std::string currentFilename_;
  std::int32_t currentFiletype_ = -1;
  QString nameWithoutFile_;
  std::string suggestedWithoutFile_;
};

/// A sentence with "%1" replaced by the file's display name.
[[nodiscard]] QString sentenceWithName(platform::TextKey sentence, const std::string& path);
