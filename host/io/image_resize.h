#pragma once

#include "host/io/image.h"

namespace host::io {

/// Scales a picture to a size of at least 1 x 1. A pixel that shrinks away gives its share to those
/// that stay (a tent filter as wide as the scaling); one that grows blends into its neighbours.
/// Each channel goes by itself. Linear in the pixels of both.
[[nodiscard]] FloatImage resized(const FloatImage& image, int width, int height);

}  // namespace host::io
