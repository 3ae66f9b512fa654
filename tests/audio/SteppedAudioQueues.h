#pragma once

#include "support/fakes/SteppedAudioQueues.h"

namespace testaudio {
using support::InstalledSteppedQueues;
}  // namespace testaudio
