#include "platform/desktop/XbelRegistration.h"

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

#include <QDateTime>
#include <QString>

#include "platform/desktop/FileAddress.h"

namespace platform {
namespace {

constexpr std::string_view kEmptyList =
    R"(<?xml version="1.0" encoding="UTF-8"?>
<xbel version="1.0"
      xmlns:bookmark="http://www.freedesktop.org/standards/desktop-bookmarks"
      xmlns:mime="http://www.freedesktop.org/standards/shared-mime-info"
>
</xbel>
)";
constexpr long long kLatestSecond = 253402300799;  // of the year 9999, since 1970
constexpr int kFractionDigits = 6;  // microseconds, as the desktop's libraries write them

std::string escaped(const std::string& text) {
  const QString html = QString::fromStdString(text).toHtmlEscaped();
  return QString(html).replace(QLatin1Char('\''), QLatin1String("&apos;")).toStdString();
}

std::string timeText(XbelTime time) {
  const auto seconds = std::chrono::floor<std::chrono::seconds>(time);
  const auto fraction = std::to_string((time - seconds).count());
  const QDateTime utc = QDateTime::fromSecsSinceEpoch(seconds.time_since_epoch().count(), Qt::UTC);
  return utc.toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss")).toStdString() + '.' +
         std::string(kFractionDigits - fraction.size(), '0') + fraction + 'Z';
}

// Qt's times end at milliseconds, so the fraction is read apart.
std::optional<XbelTime> timeOf(std::string text) {
  std::chrono::microseconds fraction{0};
  if (const auto point = text.find('.'); point != std::string::npos) {
    const auto end = text.find_first_not_of("0123456789", point + 1);
    std::string digits = text.substr(point + 1, end - point - 1);
    text.erase(point, digits.size() + 1);
    digits.resize(kFractionDigits, '0');
    fraction = std::chrono::microseconds(QString::fromStdString(digits).toLongLong());
  }
  const auto time = QDateTime::fromString(QString::fromStdString(text), Qt::ISODate);
  if (!time.isValid()) {
    return std::nullopt;
  }
  const auto seconds = std::clamp<long long>(time.toSecsSinceEpoch(), 0, kLatestSecond);
  return XbelTime(std::chrono::seconds(seconds)) + fraction;
}

// What an element of ours needs where the prefix is not declared around it.
std::string declaration(bool declared, const char* prefix, const char* address) {
  return declared ? "" : std::string(" xmlns:") + prefix + "=\"" + address + '"';
}

std::string countAfter(const std::string& count) {
  bool valid = false;
  const int known = QString::fromStdString(count).toInt(&valid);
  const bool counts = valid && known > 0 && known < std::numeric_limits<int>::max();
  return std::to_string(counts ? known + 1 : 1);
}

// Makes the elements of a registration, each with what has to stand around it as far as it is
// missing, indented as the desktop's libraries do. None ends in a line break.
class Writer {
 public:
  Writer(const XbelRegistration& registration, const XbelElement& around)
      : registration_(registration), around_(around) {}

  [[nodiscard]] std::string application() const {
    return "<bookmark:application" + bookmarkDeclaration() + " name=\"" +
           escaped(registration_.application) + "\" exec=\"" + escaped(registration_.command) +
           "\" modified=\"" + timeText(registration_.time) + "\" count=\"1\"/>";
  }

  [[nodiscard]] std::string applications() const {
    return "<bookmark:applications" + bookmarkDeclaration() + ">\n          " + application() +
           "\n        </bookmark:applications>";
  }

  [[nodiscard]] std::string metadata() const {
    const std::string mime = declaration(around_.declaresMime, "mime", kMimeNamespace);
    return std::string("<metadata owner=\"") + kBookmarkOwner + "\">\n        <mime:mime-type" +
           mime + " type=\"" + escaped(registration_.mimeType) + "\"/>\n        " + applications() +
           "\n      </metadata>";
  }

  [[nodiscard]] std::string info() const { return "<info>\n      " + metadata() + "\n    </info>"; }

  [[nodiscard]] std::string bookmark() const {
    const std::string now = timeText(registration_.time);
    return "<bookmark href=\"" + escaped(fileAddressOf(registration_.path)) + "\" added=\"" + now +
           "\" modified=\"" + now + "\" visited=\"" + now + "\">\n    " + info() +
           "\n  </bookmark>";
  }

 private:
  [[nodiscard]] std::string bookmarkDeclaration() const {
    return declaration(around_.declaresBookmark, "bookmark", kBookmarkNamespace);
  }

  const XbelRegistration& registration_;
  const XbelElement& around_;
};

// Puts `child` behind what `parent` holds already. `indent` is the number of blanks before the
// parent's tags where it stands on lines of its own.
TextEdit append(std::string_view text, const XbelElement& parent, std::size_t indent,
                const std::string& child) {
  const std::string line = "  " + child + '\n' + std::string(indent, ' ');
  if (parent.tag.kind == XmlTag::Kind::empty) {
    return {.begin = parent.tag.end - 2,
            .length = 2,
            .replacement = ">\n" + std::string(indent, ' ') + line + "</" +
                           std::string(nameOfXmlTag(text, parent.tag)) + '>'};
  }
  return {.begin = parent.contentEnd, .length = 0, .replacement = line};
}

// Brings our registration in an entry up to date.
void updateApplication(std::string_view text, const XbelBookmark& found,
                       const XbelRegistration& registration, std::vector<TextEdit>& edits) {
  const XmlTag& tag = found.application->tag;
  const auto set = [&](const char* name, const std::string& value) {
    edits.push_back(attributeEdit(text, tag, name, value));
  };
  set("exec", escaped(registration.command));
  set("modified", timeText(registration.time));
  set("count", countAfter(found.count));
  if (!found.timestamp.empty()) {
    const auto seconds = std::chrono::floor<std::chrono::seconds>(registration.time);
    set("timestamp", std::to_string(seconds.time_since_epoch().count()));
  }
}

// Brings an entry up to date, or adds what it lacks.
std::vector<TextEdit> update(std::string_view text, const XbelBookmark& found,
                             const XbelRegistration& registration) {
  const std::string now = timeText(registration.time);
  std::vector<TextEdit> edits{attributeEdit(text, found.bookmark.tag, "modified", now),
                              attributeEdit(text, found.bookmark.tag, "visited", now)};
  if (found.application) {
    updateApplication(text, found, registration, edits);
  } else if (found.applications) {
    const Writer writer(registration, *found.applications);
    edits.push_back(append(text, *found.applications, 8, writer.application()));
  } else if (found.metadata) {
    const Writer writer(registration, *found.metadata);
    edits.push_back(append(text, *found.metadata, 6, writer.applications()));
  } else if (found.info) {
    const Writer writer(registration, *found.info);
    edits.push_back(append(text, *found.info, 4, writer.metadata()));
  } else {
    const Writer writer(registration, found.bookmark);
    edits.push_back(append(text, found.bookmark, 2, writer.info()));
  }
  return edits;
}

}  // namespace

std::optional<std::string> withRegistration(std::string_view text,
                                            const XbelRegistration& registration) {
  const std::string_view list = text.empty() ? kEmptyList : text;
  std::optional<XbelBookmark> found;
  const auto root = readXbel(list, registration.application, [&](const XbelBookmark& bookmark) {
    if (!found && pathOfFileAddress(bookmark.address) == registration.path) {
      found = bookmark;
    }
  });
  if (!root) {
    return std::nullopt;
  }
  if (found) {
    return edited(list, update(list, *found, registration));
  }
  return edited(list, {append(list, *root, 0, Writer(registration, *root).bookmark())});
}

XbelTime registrationTimeOf(const XbelBookmark& bookmark) {
  if (const auto modified = timeOf(bookmark.modified)) {
    return *modified;
  }
  const auto seconds = QString::fromStdString(bookmark.timestamp).toLongLong();
  return XbelTime(std::chrono::seconds(std::clamp(seconds, 0LL, kLatestSecond)));
}

}  // namespace platform
