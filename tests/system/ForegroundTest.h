#pragma once

#include "tests/support/ScriptedRtos.h"
#include "tests/system/ForegroundService.h"
#include "tests/system/SystemTest.h"

/// Tests that read log lines, and so need the service in the foreground.
class ForegroundTest : public SystemTest {
protected:
    ForegroundTest() { service.waitUntilListening(); }

    ScriptedRtos rtos;
    ForegroundService service;
};
