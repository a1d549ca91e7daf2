// The part of JsonRtosBuilderAddOrUpdate that carries new reticles to the RTOS in numbered files.
#include <cstdio>
#include <fstream>

#include "commands/JsonRtosBuilderAddOrUpdate.h"
#include "reticles/FlashPaths.h"

namespace reticled {

std::string JsonRtosBuilderAddOrUpdate::_saveReticleData(const std::string& data) {
    const std::string name = NEW_RETICLE_DATA_NAME + std::to_string(_dataFiles.size());
    const std::string& path = _dataFiles.emplace_back(FLASH_ROOT + name);
    std::ofstream(path, std::ios::out | std::ios::trunc) << data;
    return RTOS_FLASH_ROOT + name;
}

void JsonRtosBuilderAddOrUpdate::removeDataFiles() {
    for (const std::string& path : _dataFiles) {
        // A file that is already gone is as good as removed.
        static_cast<void>(std::remove(path.c_str()));
    }
    _dataFiles.clear();
}

}  // namespace reticled
