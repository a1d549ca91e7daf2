// The part of JsonRtosBuilderAddOrUpdate that carries new reticles to the RTOS in numbered files.
#include <cerrno>
#include <cstdio>
#include <fstream>
#include <new>
#include <utility>

#include "commands/JsonRtosBuilderAddOrUpdate.h"
#include "reticles/FlashPaths.h"

namespace reticled {

std::string JsonRtosBuilderAddOrUpdate::_saveReticleData(const std::string& data) {
    const std::string name = NEW_RETICLE_DATA_NAME + std::to_string(_dataFiles.size());
    const std::string& path = _dataFiles.emplace_back(FLASH_ROOT + name);
    errno = 0;
    std::ofstream file(path, std::ios::out | std::ios::trunc);
    file << data;
    file.close();
    // Other failures are the RTOS's to report.
    if (!file && errno == ENOMEM) {
        throw std::bad_alloc();
    }
    return RTOS_FLASH_ROOT + name;
}

void JsonRtosBuilderAddOrUpdate::removeDataFiles() {
    for (const std::string& path : std::exchange(_dataFiles, {})) {
        // A file that is already gone is as good as removed.
        static_cast<void>(std::remove(path.c_str()));
    }
}

}  // namespace reticled
