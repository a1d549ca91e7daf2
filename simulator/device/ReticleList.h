#pragma once

#include <string>
#include <vector>

namespace sim {

/// One reticle as the device lists it.
struct Reticle {
    int index = 0;          ///< 0 or more, unique in the list
    std::string name;       ///< any text
    std::string fileName;   ///< plain file name below reticle/
    std::string userColor;  ///< any text; the service puts it into the reticle's data
    bool isDeletable = false;
    bool isActive = false;

    bool operator==(const Reticle&) const = default;
};

/// In ascending order of index.
using ReticleList = std::vector<Reticle>;

/// The reticle with that index, or `list.end()`.
[[nodiscard]] ReticleList::iterator findReticle(ReticleList& list, int index);

/// The lowest index from 0 on that no reticle of `list` has.
[[nodiscard]] int lowestFreeIndex(const ReticleList& list);

/// `list` as the text of the list file: an array of one object with "reticles".
[[nodiscard]] std::string listText(const ReticleList& list);

/// Reads what `listText` wrote, or a person edited since.
/// \throws std::runtime_error that says what is wrong with the text: not JSON, another layout,
///         a member that is missing or of another type, an index that is negative or used twice,
///         a file name with a directory in it.
[[nodiscard]] ReticleList parseListText(const std::string& text);

}  // namespace sim
