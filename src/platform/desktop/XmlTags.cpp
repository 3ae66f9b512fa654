#include "platform/desktop/XmlTags.h"

#include <algorithm>

namespace platform {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::string_view kQuotes = "\"'";
constexpr auto kNowhere = std::string_view::npos;

// Position of the first of `marks` from `begin` on that stands outside quotes.
std::size_t findUnquoted(std::string_view text, std::string_view marks, std::size_t begin) {
  char quote = 0;
  for (std::size_t i = begin; i < text.size(); ++i) {
    const char c = text[i];
    if (quote != 0) {
      quote = c == quote ? '\0' : quote;
    } else if (marks.find(c) != kNowhere) {
      return i;
    } else if (kQuotes.find(c) != kNowhere) {
      quote = c;
    }
  }
  return kNowhere;
}

}  // namespace

bool XmlTagScanner::startsWith(std::string_view prefix) const {
  return text_.substr(position_).starts_with(prefix);
}

bool XmlTagScanner::skipBehind(std::string_view end, std::size_t from) {
  const std::size_t found = text_.find(end, from);
  position_ = found == kNowhere ? text_.size() : found + end.size();
  return found != kNowhere;
}

bool XmlTagScanner::skipDeclaration() {
  const std::size_t end = findUnquoted(text_, "[>", position_);
  if (end == kNowhere || text_[end] == '[') {
    return false;
  }
  position_ = end + 1;
  return true;
}

// kNowhere for a tag that is not taken.
std::size_t XmlTagScanner::endOfTag() const {
  std::size_t position = position_;
  for (std::size_t attributes = 0; attributes <= kMaxAttributes; ++attributes) {
    position = findUnquoted(text_, "=>", position + 1);
    if (position == kNowhere || text_[position] == '>') {
      return position == kNowhere ? kNowhere : position + 1;
    }
  }
  return kNowhere;
}

std::optional<XmlTag> XmlTagScanner::fail() {
  failed_ = true;
  position_ = text_.size();
  return std::nullopt;
}

std::optional<XmlTag> XmlTagScanner::next() {
  while ((position_ = std::min(text_.find('<', position_), text_.size())) < text_.size()) {
    bool skipped = false;
    if (startsWith("<!--")) {
      skipped = skipBehind("-->", position_ + 4);
    } else if (startsWith("<![CDATA[")) {
      skipped = skipBehind("]]>", position_ + 9);
    } else if (startsWith("<?")) {
      skipped = skipBehind("?>", position_ + 2);
    } else if (startsWith("<!")) {
      skipped = skipDeclaration();
    } else {
      const std::size_t end = endOfTag();
      if (end == kNowhere) {
        return fail();
      }
      XmlTag tag{.kind = XmlTag::Kind::start, .begin = position_, .end = end};
      if (text_[tag.begin + 1] == '/') {
        tag.kind = XmlTag::Kind::end;
      } else if (text_[tag.end - 2] == '/') {
        tag.kind = XmlTag::Kind::empty;
      }
      position_ = tag.end;
      return tag;
    }
    if (!skipped) {
      return fail();
    }
  }
  return std::nullopt;
}

std::string_view nameOfXmlTag(std::string_view text, const XmlTag& tag) {
  const std::size_t begin = tag.begin + (tag.kind == XmlTag::Kind::end ? 2 : 1);
  const std::size_t end = text.find_first_of(" \t\r\n/>", begin);
  return text.substr(begin, end - begin);
}

TextEdit attributeEdit(std::string_view text, const XmlTag& tag, std::string_view name,
                       std::string_view value) {
  const std::string_view inside = text.substr(0, tag.end - 1);
  std::size_t behind = tag.begin + 1 + nameOfXmlTag(text, tag).size();
  for (;;) {
    const std::size_t begin = inside.find_first_not_of(kBlanks, behind);
    const std::size_t open = inside.find_first_of(kQuotes, behind);
    if (begin == kNowhere || open == kNowhere) {
      break;
    }
    const std::size_t close = inside.find(inside[open], open + 1);
    if (close == kNowhere) {
      break;
    }
    if (inside.substr(begin, inside.find_first_of(" \t\r\n=", begin) - begin) == name) {
      return {.begin = open + 1, .length = close - open - 1, .replacement = std::string(value)};
    }
    behind = close + 1;
  }
  return {.begin = behind,
          .length = 0,
          .replacement = ' ' + std::string(name) + "=\"" + std::string(value) + '"'};
}

std::string edited(std::string_view text, std::vector<TextEdit> edits) {
  std::stable_sort(edits.begin(), edits.end(),
                   [](const TextEdit& a, const TextEdit& b) { return a.begin < b.begin; });
  std::string result;
  std::size_t done = 0;
  for (const TextEdit& edit : edits) {
    result += text.substr(done, edit.begin - done);
    result += edit.replacement;
    done = edit.begin + edit.length;
  }
  result += text.substr(done);
  return result;
}

}  // namespace platform
