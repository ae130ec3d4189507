#pragma once

#include <span>
#include <vector>

#include "host/mesh/mesh.h"

namespace host::mesh {

/// Sums the loop's cross products (Newell's method): along the face normal, twice the area long.
/// Exact for planar faces, the best compromise for warped ones; computed from the first vertex, so
/// far-away faces keep their digits.
[[nodiscard]] Vec3 faceAreaVector(const Mesh& mesh, FaceId face);
/// The unit face normal; zero for a face without area.
[[nodiscard]] Vec3 faceNormal(const Mesh& mesh, FaceId face);
/// The area of the face's best-fit plane projection, cm^2, object space.
[[nodiscard]] double faceArea(const Mesh& mesh, FaceId face);
/// The mean of the face's vertices, as the host reports a face's centre.
[[nodiscard]] Vec3 faceCenter(const Mesh& mesh, FaceId face);

/// Unit normals of all faces; zero for faces without area. Parallel.
[[nodiscard]] std::vector<Vec3f> computeFaceNormals(const Mesh& mesh);

/// Unit normals of all corners without regard to locks: the mean of the face normals over the
/// corner's fan, weighted by corner angle (Thuermer and Wuethrich 1998). A fan ends at hard, border
/// and non-manifold edges and where neighbours wind against each other. Faces without area add
/// nothing and get their fan's normal; a fan of only such faces gets the mean over the whole
/// vertex, and (0,1,0) when that is nothing too. Linear, parallel.
[[nodiscard]] std::vector<Vec3f> computeCornerNormals(const Mesh& mesh);

/// One unit normal a vertex: the mean over all corners there, weighted by corner angle; zero
/// without faces. Parallel.
[[nodiscard]] std::vector<Vec3f> computeVertexNormals(const Mesh& mesh);
/// The same for one vertex. Linear in the faces there.
[[nodiscard]] Vec3 vertexNormal(const Mesh& mesh, VertexId vertex);

/// The inner angle at a corner, radians, 0 to pi. Neighbours that coincide with it are passed over,
/// so that a bevel of no width yet shades as what it is made of; 0 when all do.
[[nodiscard]] double cornerAngle(const Mesh& mesh, const Adjacency& adjacency, CornerId corner);

}  // namespace host::mesh
