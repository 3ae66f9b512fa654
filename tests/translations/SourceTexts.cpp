#include "translations/SourceTexts.h"

#include <algorithm>
#include <cctype>
#include <regex>
#include <utility>

namespace translations {

namespace {

struct Token {
  enum class Kind { word, literal, sign } kind;
  std::string text;  ///< a literal's content with its escapes resolved
  int line;
};

bool isWordCharacter(char c) {
  return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
}

/// Splits a source into words, string literals and signs; comments, characters, and lines of the
/// preprocessor are left out.
class Lexer {
 public:
  explicit Lexer(const std::string& source) : source_(source) {}

  std::vector<Token> tokens() {
    while (at_ < source_.size()) {
      step();
    }
    return std::move(tokens_);
  }

 private:
  void step() {
    const char c = source_[at_];
    if (c == '\n') {
      ++line_;
      ++at_;
    } else if (std::isspace(static_cast<unsigned char>(c)) != 0) {
      ++at_;
    } else if (startsWith("//") || (c == '#' && beginsItsLine())) {
      skipTo("\n", 0);
    } else if (startsWith("/*")) {
      skipTo("*/", 2);
    } else if (c == '"' && follows("R")) {
      readRawLiteral();
    } else if (c == '"') {
      readLiteral();
    } else if (c == '\'') {
      skipCharacter();
    } else if (isWordCharacter(c)) {
      readWord();
    } else {
      tokens_.push_back({Token::Kind::sign, std::string(1, c), line_});
      ++at_;
    }
  }

  [[nodiscard]] bool startsWith(const char* text) const {
    return source_.compare(at_, std::char_traits<char>::length(text), text) == 0;
  }

  /// Whether that word stands directly before.
  [[nodiscard]] bool follows(const std::string& word) const {
    return !tokens_.empty() && tokens_.back().kind == Token::Kind::word &&
           tokens_.back().text == word && at_ > 0 && source_[at_ - 1] == word.back();
  }

  [[nodiscard]] bool beginsItsLine() const {
    const std::size_t before = source_.find_last_not_of(" \t", at_ == 0 ? 0 : at_ - 1);
    return at_ == 0 || before == std::string::npos || source_[before] == '\n';
  }

  void skipTo(const char* end, std::size_t length) {
    const std::size_t found = std::min(source_.find(end, at_), source_.size());
    line_ +=
        static_cast<int>(std::count(source_.begin() + static_cast<std::ptrdiff_t>(at_),
                                    source_.begin() + static_cast<std::ptrdiff_t>(found), '\n'));
    at_ = std::min(found + length, source_.size());
  }

  void skipCharacter() {
    for (++at_; at_ < source_.size() && source_[at_] != '\''; ++at_) {
      at_ += source_[at_] == '\\' ? 1 : 0;
    }
    ++at_;
  }

  // A digit's separator would look like a character; no number holds a string.
  void readWord() {
    const std::size_t begin = at_;
    const bool number = std::isdigit(static_cast<unsigned char>(source_[at_])) != 0;
    while (at_ < source_.size() &&
           (isWordCharacter(source_[at_]) || (number && source_[at_] == '\''))) {
      ++at_;
    }
    tokens_.push_back({Token::Kind::word, source_.substr(begin, at_ - begin), line_});
  }

  void readLiteral() {
    std::string text;
    for (++at_; at_ < source_.size() && source_[at_] != '"'; ++at_) {
      if (source_[at_] != '\\') {
        text += source_[at_];
        continue;
      }
      ++at_;
      text += source_[at_] == 'n' ? '\n' : source_[at_] == 't' ? '\t' : source_[at_];
    }
    ++at_;
    keep(text, line_);
  }

  /// R"name(…)name"
  void readRawLiteral() {
    const int line = line_;
    tokens_.pop_back();  // the R
    const std::size_t paren = std::min(source_.find('(', at_), source_.size());
    const std::string end = ")" + source_.substr(at_ + 1, paren - at_ - 1) + "\"";
    const std::size_t begin = std::min(paren + 1, source_.size());
    skipTo(end.c_str(), end.size());
    keep(source_.substr(begin, std::max(at_, begin + end.size()) - end.size() - begin), line);
  }

  void keep(const std::string& text, int line) {
    if (!tokens_.empty() && tokens_.back().kind == Token::Kind::literal) {
      tokens_.back().text += text;  // adjacent literals are one
    } else {
      tokens_.push_back({Token::Kind::literal, text, line});
    }
  }

  const std::string& source_;
  std::size_t at_ = 0;
  int line_ = 1;
  std::vector<Token> tokens_;
};

const std::set<std::string> kMarkers{"textKey", "localized", "localizedUtf8"};

// What a person sees or hears of it.
const std::set<std::string> kShown{
    "ShowModalAlert",  "showModalAlert",
    "postModalAlert",  "setText",
    "setTitle",        "setInformativeText",
    "setDetailedText", "setWindowTitle",
    "setToolTip",      "setStatusTip",
    "setWhatsThis",    "setAccessibleName",
    "setActionName",   "setAccessibleDescription",
    "setLabelText",    "setNameFilters",
    "setFormat",       "setPlaceholderText",
    "addAction",       "addMenu",
    "addButton",       "addItem",
    "addTab",          "addRow",
    "describeView",    "titleWithName",
    "registerUndo",    "openPage",
    "addCommand",      "addDocumentCommand",
    "QLabel",          "QAction",
    "QMenu",           "QPushButton",
    "QCheckBox",       "QRadioButton",
    "QGroupBox",       "QMessageBox",
    "QFileDialog",     "QProgressDialog",
    "about",           "warning",
    "critical",        "information",
    "question",
};
const std::set<std::string> kShownFields{"title", "message", "acceptLabel", "label"};

// Read by who develops Orvo, in English, or by no one: lines of the console, names of calls that
// failed, of queues and of objects.
const std::set<std::string> kNotShown{
    "ConsoleLog",    "fprintf",
    "fputs",         "reportFailure",
    "static_assert", "out_of_range",
    "logic_error",   "runtime_error",
    "setObjectName", "SerialQueue",
    "checkDevice",   "CheckAudioStatus",
    "check",         "CheckAudioStatusWithoutAlert",
};

bool hasLetter(const std::string& text) {
  static const std::regex placeholder("%[0-9a-z@]");
  const std::string rest = std::regex_replace(text, placeholder, "");
  return std::any_of(rest.begin(), rest.end(),
                     [](unsigned char c) { return std::isalpha(c) != 0; });
}

bool hasSeveralWords(const std::string& text) {
  if (text.starts_with('<')) {
    return false;  // a piece of a document in XML
  }
  static const std::regex words("[A-Za-z]{2,}[,.;:]? [A-Za-z]{2,}");
  return std::regex_search(text, words);
}

/// Goes through the tokens with the calls and lists around each.
class Reader {
 public:
  explicit Reader(std::vector<Token> tokens) : tokens_(std::move(tokens)) {}

  SourceTexts texts() {
    for (at_ = 0; at_ < tokens_.size(); ++at_) {
      const Token& token = tokens_[at_];
      if (token.kind == Token::Kind::literal) {
        readLiteral(token);
      } else if (token.text == "(" || token.text == "{") {
        open(token);
      } else if ((token.text == ")" || token.text == "}") && !around_.empty()) {
        around_.pop_back();
      }
    }
    return std::move(texts_);
  }

 private:
  struct Bracket {
    std::string name;  ///< what is called or made; empty for none
    bool isCode;       ///< statements: what is around them does not take their literals
  };

  [[nodiscard]] std::string before(std::size_t steps) const {
    return at_ >= steps ? tokens_[at_ - steps].text : std::string();
  }

  void open(const Token& bracket) {
    const bool word = at_ >= 1 && tokens_[at_ - 1].kind == Token::Kind::word;
    std::string name = word ? before(1) : std::string();
    if (kShown.count(before(2)) != 0 || kNotShown.count(before(2)) != 0) {
      name = before(2);  // a variable of that type
    }
    const bool isList = word || before(1) == "(" || before(1) == "," || before(1) == "=" ||
                        before(1) == "{" || before(1) == ">" || before(1) == "return";
    const bool isCode = bracket.text == "{" && (!isList || name == "const" || name == "override" ||
                                                name == "mutable" || name == "else");
    around_.push_back({name, isCode});
    const bool isDefinition = before(2) == "TextKey" || before(3) == "TextKey";
    if (name == "textKey" && !isDefinition && at_ + 1 < tokens_.size() &&
        tokens_[at_ + 1].kind != Token::Kind::literal) {
      complain(bracket.line, "textKey() of something that is not a literal");
    }
  }

  void readLiteral(const Token& literal) {
    const std::string innermost = around_.empty() ? std::string() : around_.back().name;
    if (kMarkers.count(innermost) != 0) {
      texts_.keys.insert(literal.text);
      return;
    }
    if (hasLetter(literal.text) && (isWithin(kShown) || isShownField())) {
      complain(literal.line, "shown, but not marked: " + literal.text);
    } else if (hasSeveralWords(literal.text) && !isWithin(kNotShown)) {
      complain(literal.line, "reads like a text, but is not marked: " + literal.text);
    }
  }

  [[nodiscard]] bool isWithin(const std::set<std::string>& names) const {
    for (auto bracket = around_.rbegin(); bracket != around_.rend() && !bracket->isCode;
         ++bracket) {
      if (names.count(bracket->name) != 0) {
        return true;
      }
    }
    return false;
  }

  /// .title = "…"
  [[nodiscard]] bool isShownField() const {
    return before(1) == "=" && before(3) == "." && kShownFields.count(before(2)) != 0;
  }

  void complain(int line, const std::string& what) {
    texts_.complaints.push_back(std::to_string(line) + ": " + what);
  }

  std::vector<Token> tokens_;
  std::size_t at_ = 0;
  std::vector<Bracket> around_;
  SourceTexts texts_;
};

}  // namespace

SourceTexts textsOfSource(const std::string& source) {
  return Reader(Lexer(source).tokens()).texts();
}

}  // namespace translations
