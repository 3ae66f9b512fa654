#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include <QPointer>
#include <QString>

#include "platform/mainloop/Localization.h"
#include "platform/media/AudioFileTags.h"

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

  /// Called with the path when the document has got a file by take().
  void setTakenHandler(std::function<void(const std::string& path)> handler) {
    taken_ = std::move(handler);
  }

  /// Makes this the document's file.
  void take(const std::string& path, std::int32_t type);
  /// Detaches the document from its file, and from the tags of that.
  void forget();
  /// Names a document that has no file, in the title and in a save panel, until it gets a file or
  /// forgets the name.
  void nameWithoutFile(const QString& shown, std::string suggested);

  /// The tags of the opened file, which every save keeps; never null.
  [[nodiscard]] const std::shared_ptr<const platform::AudioFileTags>& tags() const { return tags_; }
  void setTags(std::shared_ptr<const platform::AudioFileTags> tags) { tags_ = std::move(tags); }

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
  std::function<void(const std::string&)> taken_;
  std::string currentFilename_;
  std::int32_t currentFiletype_ = -1;
  std::shared_ptr<const platform::AudioFileTags> tags_ =
      std::make_shared<const platform::AudioFileTags>();
  QString nameWithoutFile_;
  std::string suggestedWithoutFile_;
};

/// A sentence with "%1" replaced by the file's display name.
[[nodiscard]] QString sentenceWithName(platform::TextKey sentence, const std::string& path);
