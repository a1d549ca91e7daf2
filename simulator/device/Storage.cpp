#include "simulator/device/Storage.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "simulator/base/Files.h"
#include "simulator/base/NamedFiles.h"

namespace fs = std::filesystem;

namespace sim {

namespace {

constexpr std::string_view FACTORY_PREFIX = "factory-";
constexpr std::string_view USER_PREFIX = "user-";

bool isNamed(const ReticleList& list, const std::string& fileName) {
    return std::any_of(list.begin(), list.end(), [&fileName](const Reticle& reticle) {
        return reticle.fileName == fileName;
    });
}

bool isOurs(const std::string& fileName) {
    return fileName.starts_with(FACTORY_PREFIX) || fileName.starts_with(USER_PREFIX);
}

/// A name of our own that `list` does not use: data never changes under a name in use.
std::string freeFileName(const ReticleList& list) {
    for (std::size_t number = 0;; ++number) {
        std::string name = std::string(USER_PREFIX) + std::to_string(number);
        if (!isNamed(list, name)) {
            return name;
        }
    }
}

/// Whether `path`, links followed, lies below `root`; both are canonical.
bool isBelow(const fs::path& path, const fs::path& root) {
    return std::mismatch(root.begin(), root.end(), path.begin(), path.end()).first == root.end();
}

}  // namespace

Storage::Storage(fs::path root) : _root(std::move(root)), _reticles(_root / "reticle") {
    fs::create_directories(_reticles);
    fs::remove(_root / FAULTY_LIST_FILE);
}

std::optional<ReticleList> Storage::load() const {
    const fs::path path = _root / LIST_FILE;
    if (!fs::exists(path)) {
        return std::nullopt;
    }
    try {
        return parseListText(readFile(path).value_or(""));
    } catch (const std::exception& error) {
        throw std::runtime_error(path.string() + " holds no reticle list: " + error.what() +
                                 "; --reset goes back to the factory set");
    }
}

void Storage::save(const ReticleList& list) {
    _replace(LIST_FILE, listText(list));
    removeUnlisted(list);
}

void Storage::writeReticle(const std::string& fileName, std::string_view text) {
    _replace(RETICLES_DIRECTORY + fileName, text);
}

std::optional<std::string> Storage::takeNewData(const std::string& deviceName,
                                                const ReticleList& list) {
    const std::optional<fs::path> source = _resolve(deviceName);
    if (!source) {
        return std::nullopt;
    }
    std::string fileName = freeFileName(list);
    const fs::path target = _reticles / fileName;
    fs::copy_file(*source, aside(target), fs::copy_options::overwrite_existing);
    fs::rename(aside(target), target);
    _observer({RETICLES_DIRECTORY + fileName, fs::file_size(target)});
    return fileName;
}

std::string Storage::keepNewData(std::string_view text, const ReticleList& list) {
    std::string fileName = freeFileName(list);
    writeReticle(fileName, text);
    return fileName;
}

std::size_t Storage::bytesOf(const ReticleList& list) const {
    std::size_t bytes = listText(list).size();
    for (const Reticle& reticle : list) {
        std::error_code missing;
        const std::uintmax_t size = fs::file_size(_reticles / reticle.fileName, missing);
        bytes += missing ? 0 : static_cast<std::size_t>(size);
    }
    return bytes;
}

void Storage::removeUnlisted(const ReticleList& list) {
    std::vector<fs::path> unlisted;
    for (const fs::directory_entry& entry : fs::directory_iterator(_reticles)) {
        const std::string name = entry.path().filename().string();
        if (isOurs(name) && !isNamed(list, name)) {
            unlisted.push_back(entry.path());
        }
    }
    for (const fs::path& path : unlisted) {
        fs::remove(path);
        _observer({RETICLES_DIRECTORY + path.filename().string(), std::nullopt});
    }
}

void Storage::writeFaultyList(std::string_view text) {
    _replace(FAULTY_LIST_FILE, text);
}

std::string Storage::rootText() const {
    return (_root / "").string();
}

void Storage::_replace(const std::string& name, std::string_view text) {
    replaceFile(_root / name, text);
    _observer({name, text.size()});
}

std::optional<fs::path> Storage::_resolve(const std::string& deviceName) const {
    if (!deviceName.starts_with(DEVICE_ROOT) || deviceName.find('\0') != std::string::npos) {
        return std::nullopt;
    }
    std::error_code error;
    // Appended as text: as a path, a second slash would make it absolute and leave the root.
    const fs::path path =
        fs::canonical(_root.string() + '/' + deviceName.substr(DEVICE_ROOT.size()), error);
    // Only regular files: to open a pipe would hold the device up for ever.
    if (error || !isBelow(path, fs::canonical(_root)) || !fs::is_regular_file(path, error)) {
        return std::nullopt;
    }
    return path;
}

}  // namespace sim
