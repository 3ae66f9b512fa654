#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// Where a tag stands in a text, in bytes.
struct XmlTag {
  enum class Kind { start, end, empty } kind = Kind::start;
  std::size_t begin = 0;  ///< of the '<'
  std::size_t end = 0;    ///< behind the '>'
};

/// Finds the tags of an XML text, so that the text can be changed in places and stay as it is, to
/// the byte, everywhere else. It does not understand the text: a parser says whether it is well
/// formed and what it means, and walks beside this one, tag for tag.
///
/// Threads: any one at a time. Real-time: not safe.
class XmlTagScanner {
 public:
  /// Most attributes that a tag may have. A parser compares each with every other.
  static constexpr std::size_t kMaxAttributes = 256;

  explicit XmlTagScanner(std::string_view text) : text_(text) {}

  /// The next tag; nothing at the end, and after a failure.
  [[nodiscard]] std::optional<XmlTag> next();

  /// It met something unfinished, a tag with too many attributes, or a text with declarations of
  /// its own, whose tags need not stand in the text at all.
  [[nodiscard]] bool failed() const { return failed_; }

 private:
  [[nodiscard]] bool startsWith(std::string_view prefix) const;
  bool skipBehind(std::string_view end, std::size_t from);
  bool skipDeclaration();
  [[nodiscard]] std::size_t endOfTag() const;
  std::optional<XmlTag> fail();

  const std::string_view text_;
  std::size_t position_ = 0;
  bool failed_ = false;
};

/// The name in a tag, with its prefix.
[[nodiscard]] std::string_view nameOfXmlTag(std::string_view text, const XmlTag& tag);

/// A change of a text: `length` bytes from `begin` on become `replacement`.
struct TextEdit {
  std::size_t begin = 0;
  std::size_t length = 0;
  std::string replacement;
};

/// The change that gives an attribute of a tag a value: in place of the one it has, or behind its
/// other attributes. `value` has no need of escapes.
[[nodiscard]] TextEdit attributeEdit(std::string_view text, const XmlTag& tag,
                                     std::string_view name, std::string_view value);

/// The text with all changes, which must not overlap and refer to the text as it was.
[[nodiscard]] std::string edited(std::string_view text, std::vector<TextEdit> edits);

}  // namespace platform
