#pragma once

#include <span>
#include <vector>

#include "host/math/matrix4.h"
#include "host/mesh/mesh.h"

namespace host::ops {

struct LayoutOptions {
  enum class Arrange {
    None,          ///< shells stay where they are
    AlongU,        ///< in one row along u
    Square,        ///< packed into the square
    Grid,          ///< dealt out to the cells of a grid in the square, packed in each
    NearestRegion  ///< packed in the unit tile that their middle lies in
  };
  Arrange arrange = Arrange::Square;
  enum class Turns { None, Quarters, Free };
  Turns turns = Turns::Free;  ///< how shells may be turned to fit better
  enum class Scale { None, Uniform, Stretch };
  Scale scale =
      Scale::Uniform;  ///< to fill the square: not at all, alike in u and v, each by its own
  enum class Prescale { None, Object, World };
  Prescale prescale = Prescale::None;  ///< first gives all shells one scale on the surface
  bool flipReversed = true;            ///< mirrors shells whose faces are turned over
  bool byBoxes = false;                ///< packs bounding boxes instead of outlines
  bool keepStacked = false;            ///< shells of one outline in one place stay together
  double percentageSpace = 0.2;  ///< gap between shells and to the edge, percent of the square, at
                                 ///< most 5
  int gridU = 1, gridV = 1;      ///< cells of the grid
  double offsetU = 0, offsetV = 0, sizeU = 1, sizeV = 1;  ///< the square to fill
};

/// Shells of one mesh that are to be laid out.
struct LayoutPart {
  mesh::Mesh* mesh = nullptr;
  int uvSet = 0;
  std::vector<Index> shells;         ///< as mesh::findUvShells numbers them
  std::vector<Index> standing = {};  ///< shells that stay; the others are packed around them
  math::Matrix4 world;               ///< of the object, for Prescale::World
};

struct LayoutResult {
  Index shells = 0, flipped = 0;
  double coverage = 0;  ///< the part of the square that the shells fill, by their areas
};

/// Lays UV shells out by their true outlines, without overlap and with a gap that is never smaller
/// than asked for. UVs of other shells and everything else
/// of the meshes stay. The same input gives the same layout.
/// @return an error naming what is wrong (UVs that are no numbers, no area, gaps that fill the
/// square) with all meshes untouched.
[[nodiscard]] Result<LayoutResult> layoutUvs(std::span<const LayoutPart> parts,
                                             const LayoutOptions& options = {});

}  // namespace host::ops
