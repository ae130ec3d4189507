#pragma once

#include <string_view>
#include <vector>

#include "host/viewport/draw_list.h"

namespace host::viewport {

/// Width of a line of text when a capital letter is `height` high, in the same unit.
[[nodiscard]] double textWidth(std::string_view text, double height);

/// Appends the strokes of a line of text to `segments`, two points each, z = 0: the baseline starts
/// at (x, y), y grows upwards.
///
/// Printable ASCII; every other byte shows as a box.
void appendText(std::vector<Vec3f>& segments, std::string_view text, double x, double y,
                double height);

/// A text item's strokes, anchored at pixel (x, y), snapped so that upright strokes stay crisp.
[[nodiscard]] std::vector<Vec3f> textStrokes(const TextItem& item, double x, double y);

}  // namespace host::viewport
