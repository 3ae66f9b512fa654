// Any words as the program's arguments. What must hold: each argument is taken once, in its order,
// as a file, for Qt, or as the two dashes that end the options; after an option that decides
// nothing is; only what begins with a dash is refused, and what is said about it is plain text of
// two lines; a file's URI means one path, and its path one URI.
#include <algorithm>
#include <string>
#include <vector>

#include "app/OVCommandLine.h"
#include "app/OVCommandLineText.h"
#include "fuzz/FuzzTarget.h"
#include "platform/desktop/FileUri.h"

namespace {

using fuzz::require;
using Request = OVCommandLine::Request;

constexpr std::size_t kMaxWords = 1000;

std::vector<std::string> wordsOf(const std::uint8_t* data, std::size_t size) {
  std::vector<std::string> words;
  const auto* const end = data + size;
  while (data != end && words.size() < kMaxWords) {
    const auto* const zero = std::find(data, end, std::uint8_t{0});
    words.emplace_back(data, zero);
    data = zero == end ? end : zero + 1;
  }
  return words;
}

/// Words as main() gets them.
class Arguments {
 public:
  explicit Arguments(std::vector<std::string> words) : words_(std::move(words)) {
    for (std::string& word : words_) {
      pointers_.push_back(word.data());
    }
    pointers_.push_back(nullptr);
  }

  [[nodiscard]] int count() const { return static_cast<int>(words_.size()); }
  [[nodiscard]] char** pointers() { return pointers_.data(); }
  [[nodiscard]] const std::vector<std::string>& words() const { return words_; }

 private:
  std::vector<std::string> words_;
  std::vector<char*> pointers_;
};

bool looksLikeOption(const std::string& word) {
  return word.size() > 1 && word.front() == '-';
}

/// Goes through the words and what became of them side by side.
class Accounts {
 public:
  Accounts(Arguments& arguments, OVCommandLine& line) : arguments_(arguments), line_(line) {}

  void check() {
    const std::vector<std::string>& words = arguments_.words();
    std::size_t at = 0;
    while (at < words.size() && take(at)) {
      ++at;
    }
    require(file_ == line_.files().size() && line_.forQt()[qt_] == nullptr, "nothing is added");
    if (line_.request() == Request::openFiles) {
      require(at == words.size(), "every word is taken");
    } else {
      require(at < words.size(), "a word decides");
      checkDecision(words[at]);
    }
  }

 private:
  // False for the word that decides.
  bool take(std::size_t at) {
    const std::string& word = arguments_.words()[at];
    if (line_.forQt()[qt_] == arguments_.pointers()[at]) {
      require(!onlyFiles_, "after two dashes there are only files");
      require(at == 0 || looksLikeOption(word) || wasForQt_, "Qt gets options and their values");
      ++qt_;
      wasForQt_ = at > 0;
      return true;
    }
    wasForQt_ = false;
    if (onlyFiles_ || !looksLikeOption(word)) {
      require(file_ < line_.files().size() && line_.files()[file_] == word, "a file is kept");
      ++file_;
      return true;
    }
    onlyFiles_ = word == "--";
    return onlyFiles_;
  }

  void checkDecision(const std::string& word) const {
    switch (line_.request()) {
      case Request::printHelp:
        require(word == "--help", "help was asked for");
        break;
      case Request::printVersion:
        require(word == "--version", "the version was asked for");
        break;
      default:
        require(word == line_.unknownOption(), "the option that is not known is named");
    }
  }

  Arguments& arguments_;
  OVCommandLine& line_;
  std::size_t file_ = 0;   // the next one
  std::size_t qt_ = 0;     // the next one
  bool wasForQt_ = false;  // the word before, and not the program's name
  bool onlyFiles_ = false;
};

void checkRefusal(const std::string& option) {
  const QString text = OVCommandLineText::refusalOf(option);
  require(text.endsWith(u'\n') && text.count(u'\n') == 2, "a refusal has two lines");
  require(std::none_of(text.begin(), text.end(),
                       [](QChar letter) {
                         return letter != u'\n' && letter.category() == QChar::Other_Control;
                       }),
          "a refusal leaves the terminal alone");
}

void checkUri(const std::string& word) {
  const auto path = platform::pathOfFileUri(word);
  if (!path) {
    return;
  }
  require(path->starts_with('/') && path->find('\0') == std::string::npos, "a path is a path");
  require(platform::pathOfFileUri(platform::fileUriOf(*path)) == path, "a path has one URI");
}

}  // namespace

void fuzz::prepare() {}

void fuzz::execute(const std::uint8_t* data, std::size_t size) {
  const std::vector<std::string> words = wordsOf(data, size);
  Arguments arguments(words);
  OVCommandLine line(arguments.count(), arguments.pointers());
  require(!line.forQt().empty() && line.forQt().back() == nullptr, "Qt's part has an end");
  require(arguments.words() == words, "the arguments are left as they are");
  Accounts(arguments, line).check();
  if (line.request() == Request::refuseOption) {
    checkRefusal(line.unknownOption());
  }
  for (const std::string& file : line.files()) {
    checkUri(file);
  }
}
