#include "tests/system/ProcessInfo.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <system_error>
#include <vector>

#include "tests/support/Text.h"

namespace fs = std::filesystem;

namespace {

// Positions in /proc/PID/stat, counted from the field after the program's name.
constexpr std::size_t STATE_FIELD = 0;
constexpr std::size_t TERMINAL_FIELD = 4;
constexpr std::size_t PAGE_FAULTS_FIELD = 7;
constexpr std::size_t USER_TIME_FIELD = 11;
constexpr std::size_t SYSTEM_TIME_FIELD = 12;

constexpr std::size_t KILOBYTE = 1024;

std::vector<std::string> statFields(const std::string& path) {
    const std::string text = contentOfFile(path);
    // The name stands in parentheses and may itself hold blanks.
    std::istringstream fields(text.substr(text.rfind(')') + 1));
    return {std::istream_iterator<std::string>(fields), {}};
}

}  // namespace

std::map<int, std::string> ProcessInfo::descriptors() const {
    std::map<int, std::string> found;
    std::error_code gone;
    for (const fs::directory_entry& entry : fs::directory_iterator(_path("fd"))) {
        // A descriptor may be closed while we look.
        const fs::path target = fs::read_symlink(entry.path(), gone);
        if (!gone) {
            found.emplace(std::stoi(entry.path().filename()), target);
        }
    }
    return found;
}

std::size_t ProcessInfo::threadCount() const {
    return std::stoul(status("Threads"));
}

std::size_t ProcessInfo::residentBytes() const {
    return std::stoul(status("VmRSS")) * KILOBYTE;
}

std::chrono::milliseconds ProcessInfo::processorTime() const {
    const std::vector<std::string> fields = statFields(_path("stat"));
    const long ticks =
        std::stol(fields.at(USER_TIME_FIELD)) + std::stol(fields.at(SYSTEM_TIME_FIELD));
    return std::chrono::milliseconds(ticks * std::milli::den / sysconf(_SC_CLK_TCK));
}

std::size_t ProcessInfo::pagesTaken() const {
    return std::stoul(statFields(_path("stat")).at(PAGE_FAULTS_FIELD));
}

std::string ProcessInfo::workingDirectory() const {
    return fs::read_symlink(_path("cwd"));
}

std::string ProcessInfo::status(const std::string& field) const {
    std::ifstream file(_path("status"));
    for (std::string name; std::getline(file, name, ':');) {
        std::string value;
        std::getline(file >> std::ws, value);
        if (name == field) {
            return value;
        }
    }
    throw std::runtime_error(_path("status") + " has no " + field);
}

int ProcessInfo::terminal() const {
    return std::stoi(statFields(_path("stat")).at(TERMINAL_FIELD));
}

rlim_t ProcessInfo::setSoftLimit(int resource, rlim_t limit) const {
    const auto kind = static_cast<__rlimit_resource>(resource);
    rlimit limits{};
    if (prlimit(_pid, kind, nullptr, &limits) < 0) {
        throw std::system_error(errno, std::generic_category(), "read limit");
    }
    const rlimit changed{limit, limits.rlim_max};
    if (prlimit(_pid, kind, &changed, nullptr) < 0) {
        throw std::system_error(errno, std::generic_category(), "set limit");
    }
    return limits.rlim_cur;
}

bool ProcessInfo::_allThreadsAre(char state) const {
    const fs::directory_iterator threads(_path("task"));
    return std::all_of(
        fs::begin(threads), fs::end(threads), [=](const fs::directory_entry& thread) {
            const std::vector<std::string> fields = statFields(thread.path() / "stat");
            // A thread may end while we look.
            return fields.empty() || fields.at(STATE_FIELD).front() == state;
        });
}

std::string ProcessInfo::_path(const std::string& name) const {
    return "/proc/" + std::to_string(_pid) + "/" + name;
}
