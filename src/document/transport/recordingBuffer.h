#pragma once

#include <memory>

class OVBlockBuffer;

/// A new, empty buffer for a document's recording. Null if its temporary file cannot be created:
/// an alert says so, and below that names the temporary directory and the system's cause.
///
/// Threads: main. Real-time: not safe.
[[nodiscard]] std::shared_ptr<OVBlockBuffer> makeRecordingBuffer();
