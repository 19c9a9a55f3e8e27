#include <kelui/limner/Path.h>

namespace limner {

void Path::MoveTo(kelcore::geom::PointT<float> point) {
    commands.push_back(Command{CommandType::MoveTo, {point, {}, {}}, {}, 0.0f});
}

void Path::LineTo(kelcore::geom::PointT<float> point) {
    commands.push_back(Command{CommandType::LineTo, {point, {}, {}}, {}, 0.0f});
}

void Path::CubicTo(kelcore::geom::PointT<float> control1, kelcore::geom::PointT<float> control2,
                   kelcore::geom::PointT<float> end) {
    commands.push_back(Command{CommandType::CubicTo, {control1, control2, end}, {}, 0.0f});
}

void Path::Close() {
    commands.push_back(Command{CommandType::Close, {}, {}, 0.0f});
}

void Path::AddRect(const kelcore::geom::RectT<float>& rect) {
    commands.push_back(Command{CommandType::Rect, {}, rect, 0.0f});
}

void Path::AddRoundedRect(const kelcore::geom::RectT<float>& rect, float radius) {
    commands.push_back(Command{CommandType::RoundedRect, {}, rect, radius});
}

}  // namespace limner
