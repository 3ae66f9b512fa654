#include "platform/cubeb/FakeCubeb.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

using fakecubeb::script;

struct cubeb {
  cubeb_device_collection_changed_callback changed = nullptr;
  void* changedUser = nullptr;
};
struct cubeb_stream {
  cubeb* context;
};

namespace fakecubeb {

Script& script() {
  static Script theOne;
  return theOne;
}

void Script::notify() const {
  for (cubeb* const context : contextsAtWork) {
    if (context->changed != nullptr) {
      context->changed(context, context->changedUser);
    }
  }
}

std::size_t Script::contextsWithHandler() const {
  return static_cast<std::size_t>(
      std::count_if(contextsAtWork.begin(), contextsAtWork.end(),
                    [](const cubeb* context) { return context->changed != nullptr; }));
}

}  // namespace fakecubeb

extern "C" {

int cubeb_init(cubeb** context, char const*, char const*) {
  if (script().initResult != CUBEB_OK) {
    return script().initResult;
  }
  *context = new cubeb;
  ++script().contexts;
  script().contextsAtWork.push_back(*context);
  return CUBEB_OK;
}

void cubeb_destroy(cubeb* context) {
  if (context->changed != nullptr) {
    std::abort();  // as the real one does
  }
  std::erase(script().contextsAtWork, context);
  delete context;
}

char const* cubeb_get_backend_id(cubeb*) {
  return script().backend.c_str();
}

int cubeb_stream_init(cubeb* context, cubeb_stream** stream, char const*, cubeb_devid,
                      cubeb_stream_params*, cubeb_devid, cubeb_stream_params*, unsigned int,
                      cubeb_data_callback, cubeb_state_callback state, void* user) {
  if (script().openResult != CUBEB_OK) {
    return script().openResult;
  }
  *stream = new cubeb_stream{context};
  script().stream = *stream;
  script().state = state;
  script().streamUser = user;
  ++script().streamsAlive;
  return CUBEB_OK;
}

void cubeb_stream_destroy(cubeb_stream* stream) {
  --script().streamsAlive;
  delete stream;
}

int cubeb_stream_start(cubeb_stream*) {
  return script().startResult;
}

int cubeb_stream_stop(cubeb_stream*) {
  return script().stopResult;
}

int cubeb_stream_get_position(cubeb_stream*, std::uint64_t* position) {
  *position = 0;
  return CUBEB_OK;
}

int cubeb_stream_get_current_device(cubeb_stream*, cubeb_device** const device) {
  if (script().currentInput == nullptr) {
    return CUBEB_ERROR_NOT_SUPPORTED;
  }
  *device = static_cast<cubeb_device*>(std::calloc(1, sizeof(cubeb_device)));
  (*device)->input_name = strdup(script().currentInput);
  ++script().devicesAlive;
  return CUBEB_OK;
}

int cubeb_stream_device_destroy(cubeb_stream*, cubeb_device* device) {
  --script().devicesAlive;
  std::free(device->input_name);
  std::free(device);
  return CUBEB_OK;
}

int cubeb_enumerate_devices(cubeb*, cubeb_device_type, cubeb_device_collection* collection) {
  if (script().enumerateResult != CUBEB_OK) {
    return script().enumerateResult;
  }
  const auto& inputs = script().inputs;
  collection->count = inputs.size();
  collection->device =
      static_cast<cubeb_device_info*>(std::calloc(inputs.size() + 1, sizeof(cubeb_device_info)));
  for (std::size_t i = 0; i < inputs.size(); ++i) {
    collection->device[i].device_id = inputs[i].id;
    collection->device[i].friendly_name = inputs[i].name;
    collection->device[i].preferred =
        inputs[i].isDefault ? CUBEB_DEVICE_PREF_ALL : CUBEB_DEVICE_PREF_NONE;
  }
  ++script().collectionsAlive;
  return CUBEB_OK;
}

int cubeb_device_collection_destroy(cubeb*, cubeb_device_collection* collection) {
  --script().collectionsAlive;
  std::free(collection->device);
  return CUBEB_OK;
}

int cubeb_register_device_collection_changed(cubeb* context, cubeb_device_type,
                                             cubeb_device_collection_changed_callback changed,
                                             void* user) {
  if (script().registerResult == CUBEB_ERROR_NOT_SUPPORTED) {
    return script().registerResult;
  }
  ++(changed != nullptr ? script().registrations : script().unregistrations);
  // As the real one does, before it asks the server.
  context->changed = changed;
  context->changedUser = user;
  if (std::exchange(script().noticeIsUnderWay, false)) {
    if (changed != nullptr) {
      changed(context, user);
    } else {
      ++script().callsOfNull;  // where the real one crashes
    }
  }
  return script().registerResult;
}

}  // extern "C"
