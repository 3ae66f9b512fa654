#include "platform/media/MediaLibrary.h"

extern "C" {
#include <libavcodec/version_major.h>
#include <libavformat/version_major.h>
#include <libavutil/version.h>
#include <libswresample/version_major.h>
}

namespace platform::mediaLibrary {

constinit LateLibrary util{"avutil", LIBAVUTIL_VERSION_MAJOR};
constinit LateLibrary resample{"swresample", LIBSWRESAMPLE_VERSION_MAJOR};
constinit LateLibrary codec{"avcodec", LIBAVCODEC_VERSION_MAJOR};
constinit LateLibrary format{"avformat", LIBAVFORMAT_VERSION_MAJOR};

bool load() {
  return util.load() && resample.load() && codec.load() && format.load();
}

}  // namespace platform::mediaLibrary
