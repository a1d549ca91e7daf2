#include "tools/reticlectl/doctor/SocketHolders.h"

#include <algorithm>
#include <fstream>
#include <system_error>

namespace reticlectl {

namespace {

namespace fs = std::filesystem;

bool isNumber(const std::string& text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

/// Whether a process holds one of the sockets. \param isComplete false where it cannot be looked at.
bool holds(const fs::path& process, const std::set<std::string>& links, bool& isComplete) {
    std::error_code error;
    fs::directory_iterator descriptor(process / "fd", error);
    // One that has ended meanwhile holds nothing.
    isComplete = isComplete && error != std::errc::permission_denied;
    for (; !error && descriptor != fs::directory_iterator(); descriptor.increment(error)) {
        std::error_code gone;
        if (links.contains(fs::read_symlink(descriptor->path(), gone).string())) {
            return true;
        }
    }
    return false;
}

SocketHolders::Process describe(const fs::path& process) {
    SocketHolders::Process described{std::stoi(process.filename().string()), "", false};
    std::getline(std::ifstream(process / "comm"), described.name);
    std::error_code unknown;
    described.isReplaced =
        fs::read_symlink(process / "exe", unknown).string().ends_with(" (deleted)");
    return described;
}

}  // namespace

SocketHolders SocketHolders::find(const std::set<unsigned long>& inodes, const fs::path& proc) {
    std::set<std::string> links;
    for (const unsigned long inode : inodes) {
        links.insert("socket:[" + std::to_string(inode) + "]");
    }
    SocketHolders holders;
    std::error_code error;
    for (fs::directory_iterator entry(proc, error); !error && entry != fs::directory_iterator();
         entry.increment(error)) {
        if (isNumber(entry->path().filename().string()) &&
            holds(entry->path(), links, holders.isComplete)) {
            holders.processes.push_back(describe(entry->path()));
        }
    }
    std::sort(holders.processes.begin(), holders.processes.end(),
              [](const Process& one, const Process& other) { return one.number < other.number; });
    return holders;
}

}  // namespace reticlectl
