// An axis-aligned rectangle kept as its top-left corner and its size, exactly as given: a
// float rectangle handed to a widget comes back with the very same x, y, width and height.
// Right and bottom are computed from them. A plain constexpr value; any thread.
//
//   constexpr auto row = RectT<float>{15.0f, 40.0f, 310.0f, 24.0f};   // x, y, width, height
//   constexpr auto same = RectT<float>::FromEdges(15.0f, 40.0f, 325.0f, 64.0f);
#pragma once

#include <kelcore/geom/PointT.h>

namespace kelcore::geom {

template <class T>
struct RectT {
    T x{};
    T y{};
    T width{};
    T height{};

    /// The rectangle from its four edges; width and height are right - left and bottom - top.
    static constexpr RectT FromEdges(T left, T top, T right, T bottom) {
        return RectT{left, top, right - left, bottom - top};
    }
    /// The rectangle at `origin` of `size` (x is the width, y the height).
    static constexpr RectT FromOriginAndSize(PointT<T> origin, PointT<T> size) {
        return RectT{origin.x, origin.y, size.x, size.y};
    }

    constexpr T Left() const { return x; }
    constexpr T Top() const { return y; }
    constexpr T Right() const { return x + width; }
    constexpr T Bottom() const { return y + height; }
    constexpr T Width() const { return width; }
    constexpr T Height() const { return height; }
    constexpr PointT<T> Origin() const { return {x, y}; }
    constexpr PointT<T> Size() const { return {width, height}; }

    /// True unless both width and height are greater than zero.
    constexpr bool IsEmpty() const { return !(width > T{} && height > T{}); }
    /// True when `point` lies inside; the left and top edges belong to the rectangle, the right
    /// and bottom edges do not, so rectangles that share an edge never both contain a point.
    constexpr bool Contains(PointT<T> point) const {
        return point.x >= x && point.y >= y && point.x < Right() && point.y < Bottom();
    }

    /// Equal when all four stored values compare equal.
    friend constexpr bool operator==(const RectT&, const RectT&) = default;
};

}  // namespace kelcore::geom
