#pragma once

#include <functional>

/// The end of the desktop's session, asked about as `Session` (QSessionManager, or a test's own)
/// lets it: a cancel counts only while the session manager allows us to talk to the user. Where it
/// does not, nothing can be asked.
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
