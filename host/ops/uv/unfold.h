#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "host/mesh/mesh.h"

namespace host::ops {

struct UnfoldOptions {
  int iterations = 5000;             ///< rounds a shell at most
  double stoppingThreshold = 0.001;  ///< ends when a round lowers the stretch by less, percent
  double globalBlend = 0;  ///< 0 least stretch of every face, 1 the method below over the whole
  double globalMethodBlend = 0.5;  ///< of the global part: 1 keeps edge lengths, 0 areas
  double areaWeight = 1;           ///< 0 every triangle weighs the same, 1 by its area
  bool pinBorder = false;          ///< UVs on shell borders stay
  bool useScale = false;  ///< shells get the scale below; otherwise they keep their UV area
  double scale = 1;       ///< UV length for a length of 1 cm on the surface
  enum class Axes { Both, VerticalOnly, HorizontalOnly };
  Axes axes = Axes::Both;  ///< the directions in which UVs move
};

struct UnfoldResult {
  int iterations = 0;             ///< of the shell that took most
  Index shells = 0;               ///< unfolded
  std::vector<std::string> left;  ///< a sentence for each shell that stays as it was
};

/// Unfolds UV shells: moves UVs so that faces are stretched as little as can be.
///
/// A shell without pinned UVs is laid flat anew from the shape of its surface and then moved,
/// turned and scaled to where it was; one with pins goes on from where its UVs are, turned
/// triangles put right first. In the result every triangle of an unfolded shell faces up (or all
/// face down where the shell was mirrored and pinned), unless its three UVs are pinned, and no
/// shell covers itself unless pins make it so; a shell for which that fails stays as it was. Quads
/// weigh as faces: neither diagonal counts more. Holes stay open. The same input gives the same UVs
/// bit for bit with any number of threads. Vertices, other UV sets, normals and colours are not
/// touched.
/// @param isPinned per UV of the set; empty pins none
/// @param shells the shells to work on, as mesh::findUvShells numbers them
/// @return an error for a bad set or number, with `mesh` untouched.
/// n log n in the faces of the shells; the energies are those of Smith and Schaefer 2015.
[[nodiscard]] Result<UnfoldResult> unfoldUvs(mesh::Mesh& mesh, int uvSet,
                                             std::span<const Index> shells,
                                             std::span<const std::uint8_t> isPinned,
                                             const UnfoldOptions& options = {});

}  // namespace host::ops
