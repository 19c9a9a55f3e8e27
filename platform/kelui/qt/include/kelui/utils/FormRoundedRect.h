// Builds the outline of a rounded rectangle (a card, a focus ring, a badge) into a path that any
// limner can fill or stroke. A free function over plain values; any thread.
//
//   limner::Path path = supplier->CreatePath();
//   kelui::utils::FormRoundedRect(path, {0.5f, 0.5f, width - 1.0f, height - 1.0f}, 4.0f);
//   limner.StrokePath(path, pen);
#pragma once

#include <kelcore/geom/RectT.h>
#include <kelui/limner/Path.h>

namespace kelui::utils {

/// Adds `rect` with corners of `radius` to `path` as a closed sub-path of its own. The radius is
/// limited to half the shorter side (a pill at most); 0 or less gives square corners. Adds
/// nothing for an empty rectangle.
void FormRoundedRect(limner::Path& path, const kelcore::geom::RectT<float>& rect, float radius);

}  // namespace kelui::utils
