#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <cubeb/cubeb.h>

/// Stands in for the library: the test program defines its functions, over this script. One test at
/// a time.
///
/// Threads: one.
namespace fakecubeb {

struct Input {
  const char* id = nullptr;
  const char* name = nullptr;
  bool isDefault = false;
};

struct Script {
  std::string backend = "pulse";
  int initResult = CUBEB_OK;
  int openResult = CUBEB_OK;
  int startResult = CUBEB_OK;
  int stopResult = CUBEB_OK;
  int enumerateResult = CUBEB_OK;
  int registerResult = CUBEB_OK;
  /// A notice is on its way: it arrives in the middle of the next (un)registration.
  bool noticeIsUnderWay = false;
  std::vector<Input> inputs;
  const char* currentInput = nullptr;

  int contexts = 0;  ///< made so far
  int streamsAlive = 0;
  int collectionsAlive = 0;
  int devicesAlive = 0;
  int registrations = 0;
  int unregistrations = 0;
  int callsOfNull = 0;  ///< notices for which the library had no handler

  std::vector<cubeb*> contextsAtWork;
  cubeb_stream* stream = nullptr;
  cubeb_state_callback state = nullptr;
  void* streamUser = nullptr;

  /// The server notifies every connection that asked for it that an input came or went.
  void notify() const;
  /// Connections that have not been destroyed, and those of them that have a handler.
  [[nodiscard]] std::size_t contextsAlive() const { return contextsAtWork.size(); }
  [[nodiscard]] std::size_t contextsWithHandler() const;
  /// The stream dies.
  void die() const { state(stream, streamUser, CUBEB_STATE_ERROR); }
};

Script& script();

}  // namespace fakecubeb
