#pragma once

#include <string>
#include <vector>

#include "tests/browser/Screenshot.h"

/// A page as a browser shows it.
struct OpenedPage {
    /// The elements that the browser has made of it, after any script, as HTML.
    std::string dom;
    Screenshot screenshot;
};

/// What the reader's system asks pages to look like.
enum class Scheme { LIGHT, DARK };

/// What starts a Chromium without a past or a window, 1000 by 1400 pixels large.
/// \param profile a directory that is made.
[[nodiscard]] std::vector<std::string> chromiumCommand(const std::string& profile, Scheme scheme);

/// Opens a page in a new Chromium of its own and ends it. Takes seconds.
/// \param path of the file. \throws std::runtime_error with what the browser said when it fails.
[[nodiscard]] OpenedPage openInChromium(const std::string& path, Scheme scheme = Scheme::LIGHT);
