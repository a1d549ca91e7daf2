#pragma once

#include "tests/support/ScriptedRtos.h"
#include "tests/system/Daemon.h"
#include "tests/system/SystemTest.h"

/// Tests of the real daemon between a scripted RTOS and real client sockets.
class DaemonTest : public SystemTest {
protected:
    DaemonTest() { service.waitUntilListening(); }

    ScriptedRtos rtos;
    Daemon service;
};
