#pragma once

namespace sim {

/// The texts of page.html, page.css, page.js and icon.svg.
extern const char* const WEB_PAGE;
extern const char* const WEB_STYLE;
extern const char* const WEB_SCRIPT;
extern const char* const WEB_ICON;

}  // namespace sim
