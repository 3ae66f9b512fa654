#pragma once

#include <functional>

/// Handles the end of the desktop's session. The program can ask the user, and cancel the end, only
/// while the session manager permits interaction; otherwise nothing is done. `Session` is
/// QSessionManager or a test's substitute.
///
/// Threads: main. Real-time: not safe.
template <typename Session>
void askAtSessionEnd(Session& session, const std::function<bool()>& mayEnd) {
  if (!session.allowsInteraction()) {
    return;
  }
  if (mayEnd()) {
    session.release();
  } else {
    session.cancel();
  }
}
