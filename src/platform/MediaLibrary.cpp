#include "platform/MediaLibrary.h"

#include <array>
#include <cstddef>
#include <cstdio>
#include <cstdlib>

#include <QLibrary>

extern "C" {
#include <libavcodec/version_major.h>
#include <libavformat/version_major.h>
#include <libavutil/version.h>
#include <libswresample/version_major.h>
}

#include "platform/ApplicationServices.h"

namespace platform::mediaLibrary {
namespace {

/// The libraries whose headers this was built with, in the order of Part. Never unloaded.
struct Libraries {
  std::array<QLibrary, 4> parts;
  bool complete = true;

  Libraries() {
    parts[0].setFileNameAndVersion("avutil", LIBAVUTIL_VERSION_MAJOR);
    parts[1].setFileNameAndVersion("swresample", LIBSWRESAMPLE_VERSION_MAJOR);
    parts[2].setFileNameAndVersion("avcodec", LIBAVCODEC_VERSION_MAJOR);
    parts[3].setFileNameAndVersion("avformat", LIBAVFORMAT_VERSION_MAJOR);
    for (QLibrary& part : parts) {
      if (!part.load()) {
        complete = false;
        ConsoleLog("%s", part.errorString().toUtf8().constData());
      }
    }
  }
};

Libraries& libraries() {
  static auto* const loaded = new Libraries;  // never destroyed: threads may outlive main
  return *loaded;
}

}  // namespace

bool load() {
  return libraries().complete;
}

void* functionNamed(Part part, const char* name) {
  const auto address = libraries().parts.at(static_cast<std::size_t>(part)).resolve(name);
  if (address == nullptr) {
    std::fprintf(stderr, "The media libraries have no %s\n", name);
    std::abort();
  }
  return reinterpret_cast<void*>(address);
}

}  // namespace platform::mediaLibrary
