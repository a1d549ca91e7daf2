#include "tools/reticlectl/doctor/StorageState.h"

#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/statvfs.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace reticlectl {

namespace {

namespace fs = std::filesystem;

constexpr mode_t PERMISSIONS = 07777;

void countDataFiles(const std::string& directory, StorageState& state) {
    std::error_code error;
    for (fs::directory_iterator entry(directory, error);
         !error && entry != fs::directory_iterator(); entry.increment(error)) {
        if (entry->path().filename().string().starts_with("new_reticle_data")) {
            std::error_code unknown;
            const std::uintmax_t bytes = entry->file_size(unknown);
            ++state.dataFiles;
            state.dataBytes += unknown ? 0 : bytes;
        }
    }
}

}  // namespace

ServiceUser ServiceUser::of(uid_t uid) {
    const passwd* const entry = ::getpwuid(uid);
    if (entry == nullptr) {
        return {std::to_string(uid), uid, {}};
    }
    int count = 0;
    ::getgrouplist(entry->pw_name, entry->pw_gid, nullptr, &count);
    std::vector<gid_t> groups(static_cast<std::size_t>(std::max(count, 1)));
    count = static_cast<int>(groups.size());
    ::getgrouplist(entry->pw_name, entry->pw_gid, groups.data(), &count);
    return {entry->pw_name, uid, groups};
}

StorageState StorageState::of(const std::string& directory) {
    StorageState state;
    struct stat status {};
    struct statvfs room {};
    if (::stat(directory.c_str(), &status) != 0 || ::statvfs(directory.c_str(), &room) != 0) {
        return state;
    }
    state.exists = true;
    state.isDirectory = S_ISDIR(status.st_mode);
    state.mode = status.st_mode & PERMISSIONS;
    state.owner = status.st_uid;
    state.group = status.st_gid;
    state.isReadOnly = (room.f_flag & ST_RDONLY) != 0;
    state.freeBytes = static_cast<std::uintmax_t>(room.f_bavail) * room.f_frsize;
    countDataFiles(directory, state);
    return state;
}

bool StorageState::isOpenFor(const ServiceUser& user) const {
    constexpr mode_t ALL = 07;
    constexpr unsigned OWNER_SHIFT = 6;
    constexpr unsigned GROUP_SHIFT = 3;
    if (user.uid == 0) {
        return true;
    }
    if (user.uid == owner) {
        return ((mode >> OWNER_SHIFT) & ALL) == ALL;
    }
    const bool isOfGroup =
        std::find(user.groups.begin(), user.groups.end(), group) != user.groups.end();
    return ((isOfGroup ? mode >> GROUP_SHIFT : mode) & ALL) == ALL;
}

}  // namespace reticlectl
