#pragma once

namespace reticlectl {

/// The text of gallery.mustache.
extern const char* const GALLERY_TEMPLATE;

/// The text of gallery.css.
extern const char* const GALLERY_STYLE;

/// Its SHA-256 in base64, by which a Content-Security-Policy allows it.
extern const char* const GALLERY_STYLE_HASH;

}  // namespace reticlectl
