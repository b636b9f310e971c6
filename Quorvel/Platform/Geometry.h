#pragma once

#include <algorithm>

namespace quorvel {

/// All lengths are points (doubles) unless a declaration says pixels. Each interface states its
/// origin and the direction of y.
struct Point {
    double x = 0;
    double y = 0;

    constexpr Point translated(double dx, double dy) const { return {x + dx, y + dy}; }
    friend bool operator==(const Point&, const Point&) = default;
};

struct Size {
    double width = 0;
    double height = 0;

    constexpr bool isEmpty() const { return width <= 0 || height <= 0; }
    friend bool operator==(const Size&, const Size&) = default;
};

struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    static constexpr Rect from(Point origin, Size size)
    {
        return {origin.x, origin.y, size.width, size.height};
    }

    constexpr double maxX() const { return x + width; }
    constexpr double maxY() const { return y + height; }
    constexpr double area() const { return width * height; }
    constexpr Point origin() const { return {x, y}; }
    constexpr Size size() const { return {width, height}; }
    constexpr Point centre() const { return {x + width / 2, y + height / 2}; }
    constexpr bool isEmpty() const { return width <= 0 || height <= 0; }

    /// The left and top edges belong to the rectangle, the right and bottom ones do not.
    constexpr bool contains(Point point) const
    {
        return point.x >= x && point.x < maxX() && point.y >= y && point.y < maxY();
    }
    constexpr bool contains(const Rect& other) const
    {
        return other.x >= x && other.y >= y && other.maxX() <= maxX() && other.maxY() <= maxY();
    }
    constexpr bool intersects(const Rect& other) const
    {
        return !isEmpty() && !other.isEmpty() && x < other.maxX() && other.x < maxX()
            && y < other.maxY() && other.y < maxY();
    }
    constexpr Rect intersected(const Rect& other) const
    {
        double left = std::max(x, other.x);
        double top = std::max(y, other.y);
        double right = std::min(maxX(), other.maxX());
        double bottom = std::min(maxY(), other.maxY());
        if (right <= left || bottom <= top)
            return {};
        return {left, top, right - left, bottom - top};
    }
    /// The smallest rectangle around both; an empty one is ignored.
    constexpr Rect united(const Rect& other) const
    {
        if (isEmpty())
            return other;
        if (other.isEmpty())
            return *this;
        double left = std::min(x, other.x);
        double top = std::min(y, other.y);
        return {
            left, top, std::max(maxX(), other.maxX()) - left, std::max(maxY(), other.maxY()) - top};
    }
    constexpr Rect translated(double dx, double dy) const
    {
        return {x + dx, y + dy, width, height};
    }
    /// The origin moves too: from points to pixels, say.
    constexpr Rect scaled(double factor) const
    {
        return {x * factor, y * factor, width * factor, height * factor};
    }
    constexpr Rect inset(double dx, double dy) const
    {
        return {x + dx, y + dy, std::max(0.0, width - 2 * dx), std::max(0.0, height - 2 * dy)};
    }
    /// A rectangle of the given size around the same centre.
    constexpr Rect centred(Size inner) const
    {
        return {x + (width - inner.width) / 2, y + (height - inner.height) / 2, inner.width,
            inner.height};
    }
    /// The same rectangle with y measured from the opposite edge of a space of the given height.
    constexpr Rect flipped(double height_) const { return {x, height_ - maxY(), width, height}; }

    friend bool operator==(const Rect&, const Rect&) = default;
};

/// sRGB, each component from 0 to 1, alpha not premultiplied.
struct Color {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;

    static constexpr Color grey(double value, double alpha = 1)
    {
        return {value, value, value, alpha};
    }
    constexpr Color withAlpha(double value) const { return {red, green, blue, value}; }
    friend bool operator==(const Color&, const Color&) = default;
};

}
