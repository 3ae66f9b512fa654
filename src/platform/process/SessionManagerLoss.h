#pragma once

namespace platform {

/// From now on the program goes on without a session when the session manager that it talks to has
/// died. Otherwise libICE, through which Qt talks to it, would end the program, and with it every
/// recording. To be called when the QApplication is made; nothing if Qt talks to none.
///
/// Threads: main.
void outliveSessionManager();

}  // namespace platform
