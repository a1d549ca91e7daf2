#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace reticlectl {

/// The user that the service runs as.
struct ServiceUser {
    std::string name;
    uid_t uid = 0;
    /// The user's own group and all others that it belongs to.
    std::vector<gid_t> groups;

    /// \return a user without groups, named by its number, where nobody knows it.
    [[nodiscard]] static ServiceUser of(uid_t uid);
};

/// The directory that the service and the RTOS share.
struct StorageState {
    bool exists = false;
    bool isDirectory = false;
    /// The permission bits.
    mode_t mode = 0;
    uid_t owner = 0;
    gid_t group = 0;
    bool isReadOnly = false;
    std::uintmax_t freeBytes = 0;
    /// Data of new reticles, which the service removes once the RTOS has answered.
    std::size_t dataFiles = 0;
    std::uintmax_t dataBytes = 0;

    [[nodiscard]] static StorageState of(const std::string& directory);

    /// Whether its mode lets the user list, enter and write it, wherever it lies.
    [[nodiscard]] bool isOpenFor(const ServiceUser& user) const;
};

}  // namespace reticlectl
