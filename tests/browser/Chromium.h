#pragma once

#include <string>

#include "tests/browser/Screenshot.h"

/// A page as a browser shows it.
struct OpenedPage {
    /// The elements that the browser has made of it, after any script, as HTML.
    std::string dom;
    Screenshot screenshot;
};

/// What the reader's system asks pages to look like.
enum class Scheme { LIGHT, DARK };

/// Opens a page in a new Chromium without a past or a window, 1000 by 1400 pixels large, and ends
/// it. Takes seconds.
/// \param path of the file. \throws std::runtime_error with what the browser said when it fails.
[[nodiscard]] OpenedPage openInChromium(const std::string& path, Scheme scheme = Scheme::LIGHT);
