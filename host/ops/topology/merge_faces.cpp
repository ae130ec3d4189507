#include "host/ops/topology/merge_faces.h"

#include "host/math/quaternion.h"
#include "host/mesh/normals.h"
#include "host/mesh/rebuild.h"

namespace host::ops {

namespace {

/// Turns and shifts a face's vertices: its normal to `normal`, its middle to `center` or just into
/// the plane there.
void moveFace(Mesh& mesh, FaceId face, const math::Vec3& normal, const math::Vec3& center,
              bool centers) {
  const math::Vec3 middle = mesh::faceCenter(mesh, face), own = mesh::faceNormal(mesh, face);
  const math::Matrix4 turn = math::toMatrix(math::rotationBetween(own, normal));
  const math::Vec3 way = center - middle;
  const math::Vec3 shift = centers ? way : normal * dot(way, normal);
  const auto points = mesh.editPoints();
  for (const VertexId v : mesh.faceVertices(face)) {
    math::Vec3f& p = points[at(v)];
    p = (math::transformVector(math::Vec3(p) - middle, turn) + middle + shift).toFloat();
  }
}

void bringTogether(Mesh& mesh, FaceId first, FaceId second, const MergeFacesOptions& options) {
  const math::Vec3 normal = mesh::faceNormal(mesh, first), other = mesh::faceNormal(mesh, second),
                   a = mesh::faceCenter(mesh, first), b = mesh::faceCenter(mesh, second);
  // The hole's loop runs the other way round.
  if (options.place == MergePlace::First) moveFace(mesh, second, -normal, a, options.centers);
  if (options.place == MergePlace::Last) moveFace(mesh, first, -other, b, options.centers);
  if (options.place != MergePlace::Middle) return;
  const math::Vec3 mean = normal - other, middle = (a + b) * 0.5;
  const math::Vec3 shared = dot(mean, mean) > 1e-12 ? normalized(mean) : normal;
  moveFace(mesh, first, shared, middle, options.centers);
  moveFace(mesh, second, -shared, middle, options.centers);
}

}  // namespace

Result<std::vector<FaceId>> mergeFaces(Mesh& mesh, FaceId first, FaceId second,
                                       const MergeFacesOptions& options) {
  const FaceId both[] = {first, second};
  HOST_TRY(checkIds("face", both, mesh.faceCount()));
  if (first == second)
    return fail(ErrorKind::BadArgument, "Face {} can't be a hole of itself", first);
  for (const VertexId v : mesh.faceVertices(first))
    for (const VertexId w : mesh.faceVertices(second))
      if (v == w)
        return fail(ErrorKind::BadArgument,
                    "Faces {} and {} share vertex {}: neither can be a hole", first, second, v);
  if (options.moves) bringTogether(mesh, first, second, options);
  const Index n = mesh.faceSize(first), m = mesh.faceSize(second);
  const CornerId outer = mesh.firstCorner(first), inner = mesh.firstCorner(second);
  const auto distance = [&](Index i, Index j) {
    return length(mesh.point(mesh.cornerVertex(outer + i)) -
                  mesh.point(mesh.cornerVertex(inner + j)));
  };
  const auto nearest = [&](Index i, Index without) {
    Index best = kNone;
    for (Index j = 0; j < m; ++j)
      if (j != without && (best == kNone || distance(i, j) < distance(i, best))) best = j;
    return best;
  };
  // Two ways across, from corners of the first face that lie opposite.
  const Index i = 0, j = nearest(i, kNone), k = n / 2, l = nearest(k, j);
  const auto nearestOuter = [&](Index hole) {
    Index best = 0;
    for (Index o = 1; o < n; ++o)
      if (distance(o, hole) < distance(best, hole)) best = o;
    return best;
  };
  mesh::MeshRebuilder rebuilder(mesh);
  rebuilder.keepAllVertices();
  const auto half = [&](Index from, Index to, Index holeFrom, Index holeTo) {
    rebuilder.beginFace(first);
    for (Index o = from;; o = (o + 1) % n) {
      rebuilder.addCorner(mesh.cornerVertex(outer + o), outer + o);
      if (o == to) break;
    }
    for (Index h = holeFrom;; h = (h + 1) % m) {
      rebuilder.addCorner(mesh.cornerVertex(inner + h), outer + nearestOuter(h));
      if (h == holeTo) break;
    }
    rebuilder.endFace();
  };
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    if (f == first)
      half(i, k, l, j);
    else if (f == second)
      half(k, i, j, l);
    else
      rebuilder.copyFace(f);
  }
  mesh = rebuilder.finish().mesh;
  return std::vector<FaceId>{std::min(first, second), std::max(first, second)};
}

}  // namespace host::ops
