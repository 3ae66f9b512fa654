#pragma once

#include <functional>

namespace interleavings {

/// What a thread of the global queue does here: runs what is given to the queue, until nothing
/// waits and `isDone`.
void workForTheGlobalQueue(const std::function<bool()>& isDone);

}  // namespace interleavings
