#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <vector>

namespace reticlectl {

/// Which processes have some sockets open.
struct SocketHolders {
    struct Process {
        int number;
        /// At most 15 bytes of it, as the kernel keeps it.
        std::string name;
        /// Its program's file has been replaced or removed since it was started.
        bool isReplaced;
    };

    std::vector<Process> processes;
    /// Whether every process could be looked at: root sees all, others their own alone.
    bool isComplete = true;

    /// \param inodes of the sockets. \param proc the kernel's directory of processes.
    [[nodiscard]] static SocketHolders find(const std::set<unsigned long>& inodes,
                                            const std::filesystem::path& proc = "/proc");
};

}  // namespace reticlectl
