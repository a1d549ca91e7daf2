#pragma once

#include <string>

#include "tests/sweep/Fault.h"
#include "tests/sweep/Story.h"

/// Why the fault may have this consequence, as the system means it; nothing where it may not.
[[nodiscard]] const char* explanationOf(const Fault& fault, const Deviation& deviation);
