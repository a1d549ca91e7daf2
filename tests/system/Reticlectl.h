#pragma once

#include <string>
#include <vector>

/// What one call of reticlectl gave.
struct Reticlectl {
    /// The exit statuses that it documents.
    static constexpr int DONE = 0;
    static constexpr int REFUSED = 1;
    static constexpr int USAGE = 2;
    static constexpr int CANNOT_CONNECT = 3;
    static constexpr int NO_REPLY = 4;

    int status;
    std::string output;
    std::string error;

    /// Runs `reticlectl arguments...` to its end.
    /// \throws std::bad_optional_access when it does not end.
    [[nodiscard]] static Reticlectl run(const std::vector<std::string>& arguments,
                                        const std::string& input = {});

    /// The printed table without its last column, the sizes: drawings may be improved.
    [[nodiscard]] std::string table() const;
};
