// An outline to fill or stroke: a list of drawing commands in float pixels. A plain value that
// any limner can draw, so building one needs no painter; any thread.
//
//   limner::Path path = supplier->CreatePath();
//   path.AddRect({x - 0.5f, y - 0.5f, width + 1.0f, height + 1.0f});
//   limner.StrokePath(path, pen);
#pragma once

#include <vector>

#include <kelcore/geom/PointT.h>
#include <kelcore/geom/RectT.h>

namespace limner {

class Path {
public:
    enum class CommandType { MoveTo, LineTo, CubicTo, Close, Rect, RoundedRect };

    /// One command; `points` holds 1 point for MoveTo/LineTo, 3 for CubicTo, none for Close;
    /// Rect and RoundedRect keep their rectangle and radius.
    struct Command {
        CommandType type = CommandType::MoveTo;
        kelcore::geom::PointT<float> points[3]{};
        kelcore::geom::RectT<float> rect{};
        float radius = 0.0f;
    };

    void MoveTo(kelcore::geom::PointT<float> point);
    void LineTo(kelcore::geom::PointT<float> point);
    void CubicTo(kelcore::geom::PointT<float> control1, kelcore::geom::PointT<float> control2,
                 kelcore::geom::PointT<float> end);
    void Close();
    /// Adds `rect` as a closed sub-path of its own.
    void AddRect(const kelcore::geom::RectT<float>& rect);
    /// Adds `rect` with corners of `radius` as a closed sub-path of its own.
    void AddRoundedRect(const kelcore::geom::RectT<float>& rect, float radius);

    bool IsEmpty() const { return commands.empty(); }
    const std::vector<Command>& GetCommands() const { return commands; }

private:
    std::vector<Command> commands;
};

}  // namespace limner
