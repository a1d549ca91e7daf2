#include "tools/reticlectl/commands/suggestionFor.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace reticlectl {

namespace {

/// Letters to leave out, put in, change or swap with the next, to make the one of the other.
std::size_t editDistance(const std::string& from, const std::string& to) {
    // distances[i][j]: between the first i and the first j letters.
    std::vector<std::vector<std::size_t>> distances(from.size() + 1,
                                                    std::vector<std::size_t>(to.size() + 1));
    for (std::size_t i = 0; i <= from.size(); ++i) {
        for (std::size_t j = 0; j <= to.size(); ++j) {
            if (i == 0 || j == 0) {
                distances[i][j] = std::max(i, j);
                continue;
            }
            const std::size_t change = from[i - 1] == to[j - 1] ? 0 : 1;
            distances[i][j] = std::min({distances[i - 1][j] + 1, distances[i][j - 1] + 1,
                                        distances[i - 1][j - 1] + change});
            if (i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1]) {
                distances[i][j] = std::min(distances[i][j], distances[i - 2][j - 2] + 1);
            }
        }
    }
    return distances.back().back();
}

}  // namespace

std::string suggestionFor(const std::string& misspelt, const CLI::App& app) {
    constexpr std::size_t MOST_EDITS = 2;
    constexpr std::size_t LONGEST = 32;
    std::string nearest;
    std::size_t fewest = MOST_EDITS + 1;
    if (misspelt.empty() || misspelt.size() > LONGEST) {
        return nearest;
    }
    for (const CLI::App* command : app.get_subcommands({})) {
        const std::string name = command->get_name();
        const std::size_t edits = name.starts_with(misspelt) ? 0 : editDistance(misspelt, name);
        // Half of the letters right is no likeness.
        if (edits < fewest && 2 * edits < std::max(misspelt.size(), name.size())) {
            fewest = edits;
            nearest = name;
        }
    }
    return nearest.empty() ? nearest : " (did you mean " + nearest + "?)";
}

}  // namespace reticlectl
