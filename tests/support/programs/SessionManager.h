#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include "support/programs/ChildProcess.h"

namespace support {

/// A desktop's session manager of the tests' own, which speaks the X session management protocol
/// with one program. It permits an interaction, ends the program and takes an end back only when
/// the test says so. Programs of other users are refused. One at a time in a process.
///
/// The commands return at once and are carried out in their order.
///
/// Threads: any; the destructor and vanish() one at a time.
class SessionManager {
 public:
  /// What happened between the two, in the session manager's words.
  enum class Event {
    registered,
    askedToSave,           ///< by the test: the session is about to end
    interactionRequested,  ///< the program wants to ask the user
    interactionPermitted,  ///< by the test
    interactionDone,
    interactionDoneAndEndCancelled,
    saved,     ///< the program is ready, and has no objection to the end
    notSaved,  ///< it is ready, but saving failed or was cancelled
    endTakenBack,
    toldToDie,
    closed  ///< by the program; also when it has died
  };
  using Events = std::vector<Event>;

  /// Null with `error` set (a plain sentence) on failure.
  [[nodiscard]] static std::unique_ptr<SessionManager> start(std::string& error);
  ~SessionManager();
  SessionManager(const SessionManager&) = delete;
  SessionManager& operator=(const SessionManager&) = delete;

  /// The environment that makes a program join the session.
  [[nodiscard]] Environment environment() const;

  /// Everything so far.
  [[nodiscard]] Events events() const;
  /// Waits until exactly this has happened.
  [[nodiscard]] bool waitFor(const Events& events) const;
  /// Called on a thread of the session manager when the program says that it has saved.
  void whenSaved(std::function<void()> call);

  /// Asks the program to save since the session is about to end. It may ask the user anything.
  void endSession();
  void permitInteraction();
  /// The end is off: somebody cancelled it.
  void takeEndBack();
  void die();
  /// Dies itself: the connection is gone without a word.
  void vanish();

 private:
  struct Protocol;

  SessionManager();

  void perform(std::function<void()> command);
  void note(Event event);
  void run();
  [[nodiscard]] bool performCommands();

  mutable std::mutex mutex_;
  Events events_;                                // guarded by mutex_
  std::function<void()> whenSaved_;              // guarded by mutex_
  std::vector<std::function<void()>> commands_;  // guarded by mutex_
  bool stops_ = false;                           // guarded by mutex_
  int wake_ = -1;                                // readable when there is a command
  std::string address_;
  std::unique_ptr<Protocol> protocol_;  // used by the thread once it runs
  std::thread thread_;
};

/// For the messages of failed tests.
void PrintTo(SessionManager::Event event, std::ostream* stream);

}  // namespace support
