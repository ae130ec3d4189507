#pragma once

#include <span>
#include <vector>

#include "host/mesh/mesh.h"

namespace host::mesh {

/// Faces grouped into connected pieces, numbered by their lowest face.
struct Shells {
  Index count = 0;
  PerElement<FaceId, Index> ofFace;
  /// The faces of every shell, ascending.
  [[nodiscard]] std::vector<std::vector<FaceId>> faces() const;
};

enum class ShellLink {
  Vertices,  ///< faces that share a vertex are connected
  Edges,     ///< only faces that share an edge are
};

/// Groups the faces of a mesh into connected pieces. Isolated vertices belong to none. Linear.
[[nodiscard]] Shells findShells(const Mesh& mesh, ShellLink link = ShellLink::Vertices);

/// The faces of the pieces that the given faces lie in, sorted. Costs what those pieces hold.
[[nodiscard]] std::vector<FaceId> connectedFaces(const Mesh& mesh, std::span<const FaceId> seeds,
                                                 ShellLink link = ShellLink::Vertices);

/// The pieces of one UV set: faces are connected where they share a UV id.
struct UvShells {
  Index count = 0;
  PerElement<FaceId, Index> ofFace;  ///< -1 for faces without UVs
  PerElement<UvId, Index> ofUv;      ///< -1 for UVs without faces
};

/// Groups the UVs of a set into shells, numbered by their lowest face. Linear.
[[nodiscard]] UvShells findUvShells(const Mesh& mesh, int uvSet);

/// The shells that some of the UVs or faces lie in, ascending; ids that are not there have none.
[[nodiscard]] std::vector<Index> shellsOfUvs(const UvShells& shells, std::span<const UvId> uvs);
[[nodiscard]] std::vector<Index> shellsOfFaces(const UvShells& shells,
                                               std::span<const FaceId> faces);

/// All UVs of the shells that some UVs lie in, ascending, with those that no face uses. Costs those
/// shells and some reading of the others' ids, well below findUvShells.
[[nodiscard]] std::vector<UvId> connectedUvs(const Mesh& mesh, int uvSet,
                                             std::span<const UvId> seeds);

/// Whether the faces at an edge use different UVs along it (either end), or one of them has none. A
/// border edge is no seam.
[[nodiscard]] bool isUvSeam(const Mesh& mesh, int uvSet, EdgeId edge);
/// The border edges of the UV shells: edges of one face that has UVs, and seams. Sorted. Linear.
[[nodiscard]] std::vector<EdgeId> uvBorderEdges(const Mesh& mesh, int uvSet);

}  // namespace host::mesh
