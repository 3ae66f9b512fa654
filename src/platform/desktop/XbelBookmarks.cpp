#include "platform/desktop/XbelBookmarks.h"

#include <vector>

#include <QBuffer>
#include <QXmlStreamReader>

namespace platform {
namespace {

constexpr std::size_t kMax = 256;

enum class Kind { other, xbel, folder, bookmark, info, metadata, applications, application };

struct Open {
  Kind kind = Kind::other;
  XbelElement element;
};

class XbelReader {
 public:
  XbelReader(std::string_view text, const std::string& application,
             const std::function<void(const XbelBookmark&)>& visit)
      : text_(text),
        application_(QString::fromStdString(application)),
        visit_(visit),
        bytes_(QByteArray::fromRawData(text.data(), static_cast<qsizetype>(text.size()))),
        tags_(text) {
    // From a device the reader takes the text in small pieces instead of decoding it as a whole.
    device_.setBuffer(&bytes_);
    device_.open(QIODevice::ReadOnly);
    reader_.setDevice(&device_);
  }

  std::optional<XbelElement> read() {
    while (const auto tag = tags_.next()) {
      const bool taken = tag->kind == XmlTag::Kind::end ? takeEnd(*tag) : takeStart(*tag);
      if (!taken) {
        return std::nullopt;
      }
      if (tag->kind == XmlTag::Kind::empty && !takeEnd(*tag)) {
        return std::nullopt;
      }
    }
    const bool complete = !tags_.failed() && readToTag() == QXmlStreamReader::EndDocument;
    return complete && !reader_.hasError() ? root_ : std::nullopt;
  }

 private:
  QXmlStreamReader::TokenType readToTag() {
    while (!reader_.atEnd()) {
      const auto token = reader_.readNext();
      if (token == QXmlStreamReader::StartElement || token == QXmlStreamReader::EndElement) {
        return token;
      }
    }
    return reader_.tokenType();
  }

  // Whether the parser meets the same tag as the scanner.
  bool agrees(const XmlTag& tag, QXmlStreamReader::TokenType token) {
    return readToTag() == token &&
           reader_.qualifiedName().toUtf8() ==
               QByteArray::fromStdString(std::string(nameOfXmlTag(text_, tag)));
  }

  bool takeStart(const XmlTag& tag) {
    if (open_.size() >= kMax || !agrees(tag, QXmlStreamReader::StartElement)) {
      return false;
    }
    Open opened{.kind = kindHere(), .element = elementHere(tag)};
    if (open_.empty() && opened.kind != Kind::xbel) {
      return false;
    }
    if (opened.kind == Kind::bookmark) {
      bookmark_ = XbelBookmark{};
      bookmark_.address = attribute("href");
    } else if (opened.kind == Kind::application) {
      bookmark_.modified = attribute("modified");
      bookmark_.timestamp = attribute("timestamp");
      bookmark_.count = attribute("count");
    }
    open_.push_back(opened);
    return true;
  }

  bool takeEnd(const XmlTag& tag) {
    if (open_.empty() || !agrees(tag, QXmlStreamReader::EndElement)) {
      return false;
    }
    Open closed = open_.back();
    open_.pop_back();
    closed.element.contentEnd = tag.kind == XmlTag::Kind::empty ? tag.end : tag.begin;
    keep(closed);
    return true;
  }

  void keep(const Open& closed) {
    const auto keepFirst = [&closed](std::optional<XbelElement>& kept) {
      if (!kept) {
        kept = closed.element;
      }
    };
    switch (closed.kind) {
      case Kind::xbel:
        root_ = closed.element;
        break;
      case Kind::bookmark:
        bookmark_.bookmark = closed.element;
        visit_(bookmark_);
        break;
      case Kind::info:
        return keepFirst(bookmark_.info);
      case Kind::metadata:
        return keepFirst(bookmark_.metadata);
      case Kind::applications:
        return keepFirst(bookmark_.applications);
      case Kind::application:
        return keepFirst(bookmark_.application);
      case Kind::folder:
      case Kind::other:
        break;
    }
  }

  [[nodiscard]] Kind kindHere() const {
    if (open_.empty()) {
      return named("xbel") ? Kind::xbel : Kind::other;
    }
    switch (open_.back().kind) {
      case Kind::xbel:
      case Kind::folder:
        return named("bookmark") ? Kind::bookmark : named("folder") ? Kind::folder : Kind::other;
      case Kind::bookmark:
        return named("info") ? Kind::info : Kind::other;
      case Kind::info:
        return named("metadata") && attribute("owner") == kBookmarkOwner ? Kind::metadata
                                                                         : Kind::other;
      case Kind::metadata:
        return ofBookmarks("applications") ? Kind::applications : Kind::other;
      case Kind::applications:
        return isOurApplication() ? Kind::application : Kind::other;
      case Kind::application:
      case Kind::other:
        break;
    }
    return Kind::other;
  }

  [[nodiscard]] bool named(const char* name) const {
    return reader_.qualifiedName() == QLatin1String(name);
  }

  [[nodiscard]] bool ofBookmarks(const char* name) const {
    return reader_.name() == QLatin1String(name) &&
           reader_.namespaceUri() == QLatin1String(kBookmarkNamespace);
  }

  // A second registration under our name says nothing.
  [[nodiscard]] bool isOurApplication() const {
    return !bookmark_.application && ofBookmarks("application") &&
           reader_.attributes().value(QLatin1String("name")) == application_;
  }

  [[nodiscard]] std::string attribute(const char* name) const {
    return reader_.attributes().value(QLatin1String(name)).toUtf8().toStdString();
  }

  [[nodiscard]] XbelElement elementHere(const XmlTag& tag) const {
    XbelElement element;
    if (!open_.empty()) {
      element = open_.back().element;  // declarations hold for what is inside
    }
    element.tag = tag;
    for (const auto& declaration : reader_.namespaceDeclarations()) {
      if (declaration.prefix() == QLatin1String("bookmark")) {
        element.declaresBookmark = declaration.namespaceUri() == QLatin1String(kBookmarkNamespace);
      } else if (declaration.prefix() == QLatin1String("mime")) {
        element.declaresMime = declaration.namespaceUri() == QLatin1String(kMimeNamespace);
      }
    }
    return element;
  }

  const std::string_view text_;
  const QString application_;
  const std::function<void(const XbelBookmark&)>& visit_;
  QByteArray bytes_;
  QBuffer device_;
  QXmlStreamReader reader_;
  XmlTagScanner tags_;
  std::vector<Open> open_;  // the elements around the reader, the outermost first
  XbelBookmark bookmark_;   // as far as it has been read
  std::optional<XbelElement> root_;
};

}  // namespace

std::optional<XbelElement> readXbel(std::string_view text, const std::string& application,
                                    const std::function<void(const XbelBookmark&)>& visit) {
  return XbelReader(text, application, visit).read();
}

}  // namespace platform
