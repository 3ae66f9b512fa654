#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "platform/desktop/XmlTags.h"

namespace platform {

inline constexpr char kBookmarkNamespace[] =
    "http://www.freedesktop.org/standards/desktop-bookmarks";
inline constexpr char kMimeNamespace[] = "http://www.freedesktop.org/standards/shared-mime-info";
/// Owner of the metadata that holds the elements of these two namespaces.
inline constexpr char kBookmarkOwner[] = "http://freedesktop.org";

/// Where an element stands in a list's text, and what its content may leave out.
struct XbelElement {
  XmlTag tag;                     ///< its start
  std::size_t contentEnd = 0;     ///< begin of the tag that ends it; behind `tag` for an empty one
  bool declaresBookmark = false;  ///< the prefix "bookmark" stands for its namespace inside
  bool declaresMime = false;      ///< the prefix "mime" likewise
};

/// An entry of the list. Each element is the first of its kind in the entry.
struct XbelBookmark {
  XbelElement bookmark;
  std::string address;  ///< its href
  std::optional<XbelElement> info;
  std::optional<XbelElement> metadata;      ///< the one of kBookmarkOwner
  std::optional<XbelElement> applications;  ///< that have registered the entry

  /// Our registration and its attributes, empty where they are not there.
  std::optional<XbelElement> application;
  std::string modified;   ///< a time in the form of ISO 8601
  std::string timestamp;  ///< what earlier versions wrote: seconds since 1970
  std::string count;
};

/// Reads a list of bookmarks in the XBEL form (XML Bookmark Exchange Language 1.0 with the metadata
/// of freedesktop.org's Desktop Bookmarks) and shows each entry to `visit`, in order, those in
/// folders too. `application` is the name under which ours is registered.
///
/// The root element, or nothing when the text is not such a list, well formed to its end; then the
/// entries shown until there count for nothing. Texts that are nested more than 256 deep or have
/// declarations of their own are refused. Needs little memory beside the text.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] std::optional<XbelElement> readXbel(
    std::string_view text, const std::string& application,
    const std::function<void(const XbelBookmark&)>& visit);

}  // namespace platform
