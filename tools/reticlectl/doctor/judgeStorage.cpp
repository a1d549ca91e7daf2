#include "tools/reticlectl/doctor/judgeStorage.h"

#include <array>
#include <charconv>
#include <cstdint>

namespace reticlectl {

namespace {

constexpr const char* STORAGE_SUBJECT = "storage";
constexpr std::uintmax_t BYTES_PER_KB = 1024;
constexpr std::uintmax_t BYTES_PER_MB = BYTES_PER_KB * BYTES_PER_KB;
/// As large as the data of one request may be.
constexpr std::uintmax_t ROOM_FOR_A_REQUEST = 4 * BYTES_PER_MB;

std::string sizeText(std::uintmax_t bytes) {
    return bytes >= BYTES_PER_MB
               ? std::to_string(bytes / BYTES_PER_MB) + " MB"
               : std::to_string((bytes + BYTES_PER_KB - 1) / BYTES_PER_KB) + " KB";
}

/// "2775".
std::string modeText(mode_t mode) {
    constexpr int OCTAL = 8;
    constexpr std::size_t DIGITS = 8;
    std::array<char, DIGITS> digits{};
    auto* const end = std::to_chars(digits.begin(), digits.end(), mode, OCTAL).ptr;
    return {digits.begin(), end};
}

std::string describe(const StorageState& state) {
    return std::string(STORAGE_DIRECTORY) + ", mode " + modeText(state.mode) + ", owner " +
           ServiceUser::of(state.owner).name + ", " + sizeText(state.freeBytes) + " left";
}

}  // namespace

Finding judgeStorage(const StorageState& state, const std::optional<ServiceUser>& user) {
    const std::string directory = STORAGE_DIRECTORY;
    if (!state.exists || !state.isDirectory) {
        return {STORAGE_SUBJECT, Verdict::BAD,
                directory + (state.exists ? " is no directory" : " is not there"),
                "have the RTOS side make or mount it, with mode 2775 and the group of the service"};
    }
    const std::string text = describe(state);
    if (state.isReadOnly) {
        return {STORAGE_SUBJECT, Verdict::BAD, text + ": its file system is read-only",
                "remount it writable: nothing can be added or updated"};
    }
    if (user && !state.isOpenFor(*user)) {
        return {STORAGE_SUBJECT, Verdict::BAD,
                text + ": user " + user->name + " may not write there",
                "chgrp the group of the service, chmod 2775"};
    }
    if (state.freeBytes < ROOM_FOR_A_REQUEST) {
        return {STORAGE_SUBJECT, state.freeBytes == 0 ? Verdict::BAD : Verdict::LOOK, text,
                "make room: the data of one request may take 4 MB"};
    }
    return {STORAGE_SUBJECT, Verdict::OK,
            user ? text + "; user " + user->name + " may write there" : text};
}

Finding judgeDataFiles(const StorageState& state) {
    if (state.dataFiles == 0) {
        return {"data files", Verdict::OK, "none is left behind"};
    }
    return {
        "data files", Verdict::LOOK,
        std::to_string(state.dataFiles) + " new_reticle_data of " + sizeText(state.dataBytes),
        "look again: those that no request is at work with were left behind, and may be removed"};
}

}  // namespace reticlectl
