#pragma once

#include <functional>

/// Handles the end of the desktop's session. The program can ask the user, and cancel the end, only
/// while the session manager permits interaction; otherwise nothing is done. Nor is it if `mustAsk`
/// is false: one program interacts at a time, and the others wait for it. `Session` is
/// QSessionManager or a test's substitute.
///
/// Threads: main. Real-time: not safe.
template <typename Session>
void askAtSessionEnd(Session& session, bool mustAsk, const std::function<bool()>& mayEnd) {
  if (!mustAsk || !session.allowsInteraction()) {
    return;
  }
  if (mayEnd()) {
    session.release();
  } else {
    session.cancel();
  }
}
