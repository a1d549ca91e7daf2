#include "tests/browser/Screenshot.h"

#include <png.h>

#include <algorithm>
#include <iterator>
#include <ostream>
#include <stdexcept>

std::ostream& operator<<(std::ostream& stream, const Rgb& colour) {
    return stream << "rgb(" << unsigned{colour.red} << ' ' << unsigned{colour.green} << ' '
                  << unsigned{colour.blue} << ')';
}

Screenshot::Screenshot(const std::string& png) {
    static_assert(sizeof(Rgb) == 3, "rows of pixels as libpng writes them");
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_memory(&image, png.data(), png.size()) == 0) {
        throw std::runtime_error(std::string("screenshot: ") + image.message);
    }
    image.format = PNG_FORMAT_RGB;
    _width = image.width;
    _height = image.height;
    _pixels.resize(_width * _height);
    if (png_image_finish_read(&image, nullptr, _pixels.data(), 0, nullptr) == 0) {
        throw std::runtime_error(std::string("screenshot: ") + image.message);
    }
}

Rgb Screenshot::at(Point point) const {
    if (point.x >= _width) {
        throw std::out_of_range("a point beside the screenshot");
    }
    return _pixels.at(point.y * _width + point.x);
}

std::size_t Screenshot::count(Rgb colour) const {
    return static_cast<std::size_t>(std::count(_pixels.begin(), _pixels.end(), colour));
}

std::optional<Point> Screenshot::first(Rgb colour) const {
    const auto found = std::find(_pixels.begin(), _pixels.end(), colour);
    if (found == _pixels.end()) {
        return std::nullopt;
    }
    const auto offset = static_cast<std::size_t>(std::distance(_pixels.begin(), found));
    return Point{offset % _width, offset / _width};
}

std::size_t Screenshot::runToTheRight(Point from) const {
    std::size_t length = 1;
    while (from.x + length < _width && at({from.x + length, from.y}) == at(from)) {
        ++length;
    }
    return length;
}

std::size_t Screenshot::runDown(Point from) const {
    std::size_t length = 1;
    while (from.y + length < _height && at({from.x, from.y + length}) == at(from)) {
        ++length;
    }
    return length;
}
