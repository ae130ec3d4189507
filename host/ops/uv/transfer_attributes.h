#pragma once

#include <string>

#include "host/math/matrix4.h"
#include "host/mesh/mesh.h"

namespace host::ops {

/// How places of one mesh are found on another.
enum class TransferSpace {
  Surface,    ///< where the surfaces are near each other
  Uv,         ///< where two UV sets agree
  Component,  ///< components of one number belong together
};
enum class TransferSearch { AlongNormal, Closest };
enum class TransferSets { None, Current, All };

struct TransferAttributesOptions {
  bool positions = false;
  bool normals = false;
  TransferSets uvs = TransferSets::None, colors = TransferSets::None;
  TransferSpace space = TransferSpace::Surface;
  TransferSearch search = TransferSearch::AlongNormal;
  bool keepsColorBorders = true;  ///< corners keep the colour of their side; else vertices get one
  math::Matrix4 toSource, fromSource;  ///< between the target's and the source's object space
  std::string sourceUvSet, targetUvSet, sourceColorSet, targetColorSet;  ///< empty: the current one
  std::string sourceUvSpace, targetUvSpace;  ///< the sets that TransferSpace::Uv compares
  bool flipsU = false, flipsV = false;       ///< transferred UVs are mirrored in the unit square
};

/// Samples attributes of a mesh at the places of another one.
///
/// UVs and colours are sampled face by face from one side of the source's seams and welded again
/// where corners at one vertex get the same; a source face without UVs gives none. Sets that the
/// target lacks are added. Along normals, the nearer hit of both ways counts; what meets nothing
/// takes the closest place. Topology and the target's numbering stay. n log n.
/// @return an error when the source has no faces or lacks a set, or the counts differ that
///         components of one number need
[[nodiscard]] Result<void> transferAttributes(mesh::Mesh& target, const mesh::Mesh& source,
                                              const TransferAttributesOptions& options);

struct CopyByTopologyOptions {
  bool points = false, uvSets = true, colors = false;
};
/// Replaces a mesh's points, UV sets or colour sets by those of a mesh whose faces have as many
/// corners, face by face. @return an error that names the first face that differs
[[nodiscard]] Result<void> copyByTopology(mesh::Mesh& target, const mesh::Mesh& source,
                                          const CopyByTopologyOptions& options = {});

}  // namespace host::ops
