#pragma once

#include <functional>

/// Handles the end of the desktop's session, as far as `Session` (QSessionManager, or a test's own)
/// allows: the session can be cancelled only while the session manager permits interaction with the
/// user. Otherwise no question can be asked.
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
