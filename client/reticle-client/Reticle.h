#pragma once

#include <optional>
#include <string>

namespace reticle {

/// One reticle as the device lists it.
struct Reticle {
    /// The number that every other command takes. Absent when the device gave none, or something
    /// other than a 32-bit integer: such a reticle can be shown, but not named in a command.
    std::optional<int> index;
    /// UTF-8.
    std::string name;
    /// The reticle's text, UTF-8, with the user's colour put in. Never parsed here.
    std::string data;
    bool isDeletable = false;
    bool isActive = false;
};

/// A reticle to be stored on the device. Both texts must be UTF-8 without a NUL byte.
struct NewReticle {
    /// May be empty, and need not be unique.
    std::string name;
    /// Not empty: the device would keep a reticle without data, but no list would show it.
    /// Each "user_color" in it, double quotes included, is shown as the user's colour in double
    /// quotes.
    std::string data;
};

}  // namespace reticle
