#pragma once

#include <cubeb/cubeb.h>

#include "platform/base/LateFunction.h"
#include "platform/base/LateLibrary.h"

/// The sound library's functions under their own names: inside namespace platform a plain call
/// finds them here. The library brings a sound server's client and twenty others along; it is
/// loaded on the control thread of the audio queues, while the first window is being made.
///
/// Include this instead of the library's header.
///
/// Threads: the control thread. Real-time: not safe.
namespace platform {

/// Interface version 0: the library has never declared another.
inline constinit LateLibrary cubebLibrary{"cubeb", 0};

ORVO_LATE_FUNCTION(cubebLibrary, cubeb_destroy)
ORVO_LATE_FUNCTION(cubebLibrary, cubeb_get_backend_id)
ORVO_LATE_FUNCTION(cubebLibrary, cubeb_init)
ORVO_LATE_FUNCTION(cubebLibrary, cubeb_stream_destroy)
ORVO_LATE_FUNCTION(cubebLibrary, cubeb_stream_get_position)
ORVO_LATE_FUNCTION(cubebLibrary, cubeb_stream_init)
ORVO_LATE_FUNCTION(cubebLibrary, cubeb_stream_start)
ORVO_LATE_FUNCTION(cubebLibrary, cubeb_stream_stop)

}  // namespace platform
