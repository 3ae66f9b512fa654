#pragma once

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
  std::vector<Input> inputs;
  const char* currentInput = nullptr;

  int contexts = 0;  ///< made so far
  int contextsAlive = 0;
  int streamsAlive = 0;
  int collectionsAlive = 0;
  int devicesAlive = 0;
  int registrations = 0;
  int unregistrations = 0;

  cubeb* context = nullptr;  ///< the last one
  cubeb_stream* stream = nullptr;
  cubeb_device_collection_changed_callback changed = nullptr;
  void* changedUser = nullptr;
  cubeb_state_callback state = nullptr;
  void* streamUser = nullptr;

  /// The library notifies that an input came or went.
  void notify() const { changed(context, changedUser); }
  /// The stream dies.
  void die() const { state(stream, streamUser, CUBEB_STATE_ERROR); }
};

Script& script();

}  // namespace fakecubeb
