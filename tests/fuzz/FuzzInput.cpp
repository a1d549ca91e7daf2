#include "tests/fuzz/FuzzInput.h"

#include <cstdio>
#include <cstdlib>

std::string toText(const std::uint8_t* data, std::size_t size) {
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): bytes are characters
    return {reinterpret_cast<const char*>(data), size};
}

std::vector<std::string> toParts(std::string_view input, std::size_t count) {
    std::vector<std::string> parts(count);
    for (std::size_t i = 0; i < count && !input.empty(); ++i) {
        const std::size_t end = i + 1 < count ? input.find(PART_SEPARATOR) : input.npos;
        parts[i] = input.substr(0, end);
        input.remove_prefix(end == input.npos ? input.size() : end + PART_SEPARATOR.size());
    }
    return parts;
}

void require(bool holds, const char* rule) {
    if (!holds) {
        std::fprintf(stderr, "FINDING: it does not hold that %s\n", rule);
        std::abort();
    }
}
