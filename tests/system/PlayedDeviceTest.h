#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tests/system/Daemon.h"
#include "tests/system/Programs.h"
#include "tests/system/Simulator.h"
#include "tests/system/SystemTest.h"

/// Tests of what people do with the tools: the simulator and the real daemon run.
class PlayedDeviceTest : public SystemTest {
protected:
    PlayedDeviceTest() {
        flash.remove();
        startDevice();
        startService();
    }

    void startDevice(const std::vector<std::string>& options = {}) {
        simulator.reset();
        simulator.emplace(options);
    }

    void startService() {
        service.reset();
        service.emplace();
        service->waitUntilListening();
    }

    /// `reticlectl arguments...`
    static std::vector<std::string> reticlectl(const std::vector<std::string>& arguments) {
        std::vector<std::string> command{programs::RETICLECTL};
        command.insert(command.end(), arguments.begin(), arguments.end());
        return command;
    }

    std::optional<Simulator> simulator;
    std::optional<Daemon> service;
};
