#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "host/mesh/mesh.h"

namespace host::ops {

/// What happens to UVs, in this order: scaled, turned counter-clockwise about the pivot, shifted.
struct UvTransform {
  double pivotU = 0, pivotV = 0;
  double scaleU = 1, scaleV = 1;
  double angle = 0;  ///< radians
  double ratio = 1;  ///< of the width of the picture to its height: turning keeps shapes on it
  double shiftU = 0, shiftV = 0;
  double random = 0;      ///< how much each UV's share of all that differs: 0 not at all, 1 by half
                          ///< more or less
  std::int64_t seed = 0;  ///< of that difference
};

/// Moves UVs. The same seed gives the same places. @param uvs each once
void transformUvs(mesh::UvSet& set, std::span<const UvId> uvs, const UvTransform& transform);

enum class UvDirection { Both, U, V };
struct NormalizeUvsOptions {
  bool isCollective = true;    ///< all faces as one; otherwise each face alone, with UVs of its own
  bool keepsRatio = true;      ///< one scale for both directions, centred in the square
  bool centersOnTile = false;  ///< into the tile that the middle lies in, not into the first one
  UvDirection direction = UvDirection::Both;
};
/// Scales and shifts the faces' UVs into a unit square; a direction without extent is centred.
void normalizeUvs(mesh::Mesh& mesh, int uvSet, std::span<const FaceId> faces,
                  const NormalizeUvsOptions& options = {});

struct FlipUvsOptions {
  bool isVertical = false;  ///< v is turned over instead of u
  bool isLocal = true;      ///< within the faces' own box instead of the unit square
};
/// Mirrors the faces' UVs.
void flipUvs(mesh::Mesh& mesh, int uvSet, std::span<const FaceId> faces,
             const FlipUvsOptions& options = {});

/// Gives each face UVs of its own that fill the unit square: triangles its lower left half, quads
/// all of it, larger faces a regular shape in its circle. Faces without UVs get them too.
void unitizeUvs(mesh::Mesh& mesh, int uvSet, std::span<const FaceId> faces);

/// Merges UVs of one vertex that lie within a distance of each other, in chains; they meet in
/// their middle and the lowest stays. @param uvs the ones that may be merged
/// @return how many UVs went
Index mergeUvs(mesh::Mesh& mesh, int uvSet, std::span<const UvId> uvs, double distance);

/// Replaces all UVs of a set by those of another one; its name stays.
void copyUvs(mesh::Mesh& mesh, int from, int to);
/// The same for some faces: UVs that they share there they share here, behind the ones that were
/// there; faces without UVs in `from` have none then.
void copyUvsOfFaces(mesh::Mesh& mesh, int from, int to, std::span<const FaceId> faces);

}  // namespace host::ops
