#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "simulator/base/FileChange.h"
#include "simulator/device/ReticleList.h"

namespace sim {

/// The storage that the device ("a:/") and the service (the root directory) share.
///
/// The list file is the device's whole state: what it does not name does not exist. Every file is
/// written aside and renamed, and a reticle's data never changes under its name, so that a process
/// that is killed at any moment leaves either the state before a change or the one after it.
/// Loss of power is not provided for: nothing waits for the disk.
///
/// Operations throw std::runtime_error, std::filesystem::filesystem_error among them, when the
/// file system fails.
class Storage {
public:
    /// The list file's name, relative to the root, that a list answer carries.
    static constexpr const char* LIST_FILE = "reticle_list.json";
    /// The list file that faults show to the service instead of the real one.
    static constexpr const char* FAULTY_LIST_FILE = "faulty_list.json";

    /// Makes `root` and the directory for reticle files where they are missing, and removes the
    /// FAULTY_LIST_FILE of an earlier run.
    explicit Storage(std::filesystem::path root);

    /// The list as last saved; none where no list file exists.
    /// \throws std::runtime_error also for a list file that does not hold a list.
    [[nodiscard]] std::optional<ReticleList> load() const;

    /// Makes `list` the list. Reticle files that it does not name go: those named by this program,
    /// left by a change or by a kill amid one. Files that people put there stay.
    void save(const ReticleList& list);

    /// Writes the data of a factory reticle.
    void writeReticle(const std::string& fileName, std::string_view text);

    /// Copies the file that a message names into a new reticle file.
    /// \param deviceName "a:/" and a path relative to the root
    /// \param list the current list, whose file names are not taken again
    /// \return the new file's name; none where `deviceName` names no file inside the root
    [[nodiscard]] std::optional<std::string> takeNewData(const std::string& deviceName,
                                                         const ReticleList& list);

    /// How much room `list` takes with the reticle files that it names; one that is not there
    /// takes none.
    [[nodiscard]] std::size_t bytesOf(const ReticleList& list) const;

    /// Keeps `text` as a new reticle file; else as `takeNewData`.
    [[nodiscard]] std::string keepNewData(std::string_view text, const ReticleList& list);

    /// Removes new data that `list` does not name, as `save` does.
    void removeUnlisted(const ReticleList& list);

    /// Writes FAULTY_LIST_FILE.
    void writeFaultyList(std::string_view text);

    /// Tells `observer` of each change from now on.
    void observe(FileObserver observer) { _observer = std::move(observer); }

    /// As people see it, with a slash at its end.
    [[nodiscard]] std::string rootText() const;

private:
    void _replace(const std::string& name, std::string_view text);
    [[nodiscard]] std::optional<std::filesystem::path> _resolve(
        const std::string& deviceName) const;

    std::filesystem::path _root;
    std::filesystem::path _reticles;
    FileObserver _observer = [](const FileChange& /*change*/) {};
};

}  // namespace sim
