#pragma once

#include <span>
#include <vector>

#include "host/ops/topology/edit_maps.h"

namespace host::ops {

/// A corner of a loop that is being edited: its new vertex and the source corner that lends its
/// data.
struct LoopCorner {
  VertexId vertex = kNone;
  CornerId source = kNone;
};

/// Removes what a loop walks forth and straight back: repeated neighbours, and spikes a b a. Fewer
/// than three corners left means that the face is gone. Linear.
void removeSpikes(std::vector<LoopCorner>& loop);

/// What became of the components of a welded mesh.
struct WeldMaps : EditMaps {
  std::vector<PerElement<UvId, UvId>> uvs;  ///< by UV set; an empty map: all of them stay
};

/// Moves vertices onto others and closes what collapses.
///
/// `targets` has one entry a vertex: the vertex it becomes, itself for most; a target is its own
/// target. Faces that are left with fewer than three corners go, spikes are removed, and then
/// vertices that lost their last face go; ids close up. Of edges that come to lie on each other the
/// lowest one stays, with its smoothness and crease. Corners keep their UVs, colours and locked
/// normals. Positions stay the targets' own. Linear.
WeldMaps weldVertices(Mesh& mesh, std::span<const VertexId> targets);

}  // namespace host::ops
