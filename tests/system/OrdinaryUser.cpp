#include "tests/system/OrdinaryUser.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/system/Process.h"
#include "tests/system/Programs.h"

namespace fs = std::filesystem;

std::vector<std::string> OrdinaryUser::command(const std::vector<std::string>& command) const {
    if (!_exists()) {
        return command;
    }
    const std::string user = std::to_string(_number);
    std::vector<std::string> whole{"setpriv", "--reuid=" + user, "--regid=" + user,
                                   "--clear-groups"};
    whole.insert(whole.end(), command.begin(), command.end());
    return whole;
}

// Set by the user's own program: nobody else need be able to.
void OrdinaryUser::limitThreads(pid_t pid, unsigned limit) const {
    Process prlimit(command(
        {"prlimit", "--pid", std::to_string(pid), "--nproc=" + std::to_string(limit) + ":"}));
    ASSERT_EQ(prlimit.waitForEnd(), 0) << prlimit.standardError();
}

std::string OrdinaryUser::foregroundProgram() {
    const std::string program = "/tmp/reticled-foreground";
    fs::copy_file(programs::RETICLED_FOREGROUND, program, fs::copy_options::overwrite_existing);
    return program;
}

bool OrdinaryUser::_exists() const {
    std::ifstream map("/proc/self/uid_map");
    unsigned inside = 0;
    unsigned outside = 0;
    unsigned count = 0;
    map >> inside >> outside >> count;
    return count > _number;
}
