#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include <kelcore/geom/PointT.h>
#include <kelcore/geom/RectT.h>

namespace {

using kelcore::geom::PointT;
using kelcore::geom::RectT;

TEST(PointT, DefaultIsTheOriginAndEqualityTakesBothCoordinates) {
    static_assert(PointT<int>{} == PointT<int>{0, 0});
    constexpr PointT<float> a{1.5f, 2.0f};
    EXPECT_EQ(a, (PointT<float>{1.5f, 2.0f}));
    EXPECT_NE(a, (PointT<float>{1.5f, 2.5f}));
    EXPECT_NE(a, (PointT<float>{1.0f, 2.0f}));
}

TEST(PointT, NanCoordinateIsNeverEqual) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const PointT<float> p{nan, 0.0f};
    EXPECT_FALSE(p == p);
}

TEST(RectT, KeepsFloatValuesExactly) {
    const float x = 1e7f;
    const float width = 0.2f;
    // Kept as edges, this width could not come back: the right edge rounds to whole units.
    ASSERT_NE((x + width) - x, width);
    const RectT<float> rect{x, 0.1f, width, 1.0f / 3.0f};
    EXPECT_EQ(rect.Left(), x);
    EXPECT_EQ(rect.Width(), width);
    EXPECT_EQ(rect.Top(), 0.1f);
    EXPECT_EQ(rect.Height(), 1.0f / 3.0f);
    EXPECT_EQ(rect.Size(), (PointT<float>{width, 1.0f / 3.0f}));
}

TEST(RectT, EdgesAndSizeDescribeTheSameRectangle) {
    constexpr auto fromEdges = RectT<int>::FromEdges(15, 40, 325, 64);
    static_assert(fromEdges == RectT<int>{15, 40, 310, 24});
    static_assert(fromEdges.Right() == 325 && fromEdges.Bottom() == 64);
    static_assert(RectT<int>::FromOriginAndSize({15, 40}, {310, 24}) == fromEdges);
    static_assert(fromEdges.Origin() == PointT<int>{15, 40});
    static_assert(fromEdges.Size() == PointT<int>{310, 24});
    EXPECT_EQ(fromEdges.Width(), 310);
}

TEST(RectT, EqualityTakesAllFourValues) {
    const RectT<float> rect{1, 2, 3, 4};
    EXPECT_EQ(rect, (RectT<float>{1, 2, 3, 4}));
    EXPECT_NE(rect, (RectT<float>{0, 2, 3, 4}));
    EXPECT_NE(rect, (RectT<float>{1, 0, 3, 4}));
    EXPECT_NE(rect, (RectT<float>{1, 2, 0, 4}));
    EXPECT_NE(rect, (RectT<float>{1, 2, 3, 0}));
}

TEST(RectT, EmptyUnlessBothSidesArePositive) {
    EXPECT_TRUE(RectT<float>{}.IsEmpty());
    EXPECT_TRUE((RectT<float>{0, 0, 10, 0}.IsEmpty()));
    EXPECT_TRUE((RectT<float>{0, 0, -1, 5}.IsEmpty()));
    EXPECT_TRUE((RectT<float>{0, 0, std::nanf(""), 5}.IsEmpty()));
    EXPECT_FALSE((RectT<float>{0, 0, 0.5f, 0.5f}.IsEmpty()));
}

TEST(RectT, ContainsTheTopLeftEdgesButNotTheBottomRight) {
    constexpr RectT<int> rect{10, 20, 5, 5};
    static_assert(rect.Contains({10, 20}));
    static_assert(rect.Contains({14, 24}));
    static_assert(!rect.Contains({15, 20}));
    static_assert(!rect.Contains({10, 25}));
    EXPECT_FALSE(rect.Contains({9, 21}));
}

}  // namespace
