#pragma once

namespace platform {

/// From now on a write to a pipe or socket that nobody reads, or beyond the limit of a file's size,
/// only fails (EPIPE, EFBIG): the signals SIGPIPE and SIGXFSZ do not end the program. Programs that
/// it starts get the system's default back, unless a signal was ignored already. Call it first of
/// all: even a line on standard error may raise the signal.
///
/// Does nothing on systems without these signals.
///
/// Threads: main. Real-time: not safe.
void failWritesWithoutSignals();

}  // namespace platform
