#pragma once

#include <string>

namespace reticle {

/// A mistake of whoever sent something, told to its author.
struct Mistake {
    /// One line that says what was met; may hold texts of the sender as they came.
    std::string what;
    /// What to do about it.
    std::string remedy;
};

}  // namespace reticle
