#pragma once

#include <array>

#include "host/io/image.h"
#include "host/mesh/mesh.h"

namespace host::builtins {

struct UvPictureOptions {
  int width = 512, height = 512;  ///< pixels
  double uMin = 0, uMax = 1, vMin = 0, vMax = 1;
  enum class Fill { None, Shells, Stretch };
  Fill fill = Fill::None;  ///< shells each in a colour of its own, or faces by their stretch: blue
                           ///< squeezed, red stretched, by a factor of two and more in full colour
  std::array<std::uint8_t, 3> line{255, 255, 255};
  bool drawsLines = true, isAntialiased = true;
  bool hasBackground = false;  ///< a light one; otherwise the picture is transparent there
};

/// Draws the faces of a UV set, v up. Linear in faces and pixels that they cover.
[[nodiscard]] io::Image drawUvs(const mesh::Mesh& mesh, int uvSet, const UvPictureOptions& options);
/// Draws a further mesh over a picture of the same options.
void drawUvsOver(io::Image& image, const mesh::Mesh& mesh, int uvSet,
                 const UvPictureOptions& options);
/// The colour of a stretch as ops::faceStretch gives it.
[[nodiscard]] std::array<std::uint8_t, 3> stretchColor(double stretch);

}  // namespace host::builtins
