#include "simulator/session/ChangedFiles.h"

#include <utility>

namespace sim {

std::vector<SessionFile> ChangedFiles::of(std::vector<SessionFile> files) {
    std::erase_if(files, [this](const SessionFile& file) {
        const auto [known, isNew] = _texts.try_emplace(file.name, file.text);
        return !isNew && std::exchange(known->second, file.text) == file.text;
    });
    return files;
}

}  // namespace sim
