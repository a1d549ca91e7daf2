#pragma once

namespace reticlectl {

/// The text of gallery.mustache.
extern const char* const GALLERY_TEMPLATE;

/// The colours of the grounds, "#RRGGBB".
extern const char* const LIGHT_GROUND;
extern const char* const DARK_GROUND;
extern const char* const GREY_GROUND;

/// The text of gallery.css with these colours.
extern const char* const GALLERY_STYLE;

/// Its SHA-256 in base64, by which a Content-Security-Policy allows it.
extern const char* const GALLERY_STYLE_HASH;

}  // namespace reticlectl
