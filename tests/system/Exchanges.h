#pragma once

#include "tests/support/FrameClient.h"
#include "tests/support/LinkTexts.h"
#include "tests/support/ScriptedRtos.h"

namespace exchanges {

/// Expects that `client` is served: one whole exchange with `rtos`, and nothing beyond it.
void expectServed(FrameClient& client, ScriptedRtos& rtos);

}  // namespace exchanges
