#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

struct Rgb {
    std::uint8_t red;
    std::uint8_t green;
    std::uint8_t blue;

    friend bool operator==(const Rgb&, const Rgb&) = default;
    friend std::ostream& operator<<(std::ostream& stream, const Rgb& colour);
};

struct Point {
    std::size_t x;
    std::size_t y;
};

/// The pixels of a page as a browser has drawn it.
class Screenshot {
public:
    /// \param png the bytes of a PNG file. \throws std::runtime_error when they are none.
    explicit Screenshot(const std::string& png);

    /// \param point may lie anywhere. \throws std::out_of_range where there is no picture.
    [[nodiscard]] Rgb at(Point point) const;

    [[nodiscard]] std::size_t count(Rgb colour) const;

    /// The pixel of this very colour that stands highest, the leftmost of its line.
    [[nodiscard]] std::optional<Point> first(Rgb colour) const;

    /// How many pixels have the colour of the one at `from`, it included, on the way to the right
    /// or down.
    [[nodiscard]] std::size_t runToTheRight(Point from) const;
    [[nodiscard]] std::size_t runDown(Point from) const;

private:
    std::size_t _width = 0;
    std::size_t _height = 0;
    std::vector<Rgb> _pixels;
};
