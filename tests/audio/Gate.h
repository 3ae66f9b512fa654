#pragma once

#include "support/Gate.h"

namespace testaudio {
using support::Gate;
}  // namespace testaudio
