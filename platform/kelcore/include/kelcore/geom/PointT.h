// A point (or a size) in layout units: a plain constexpr value, any thread. The UI layer lays
// out in float pixels with PointT<float>.
//
//   constexpr PointT<float> size{310.0f, 24.5f};
#pragma once

namespace kelcore::geom {

template <class T>
struct PointT {
    T x{};
    T y{};

    /// Equal when both coordinates compare equal (so a NaN coordinate never is).
    friend constexpr bool operator==(const PointT&, const PointT&) = default;
};

}  // namespace kelcore::geom
