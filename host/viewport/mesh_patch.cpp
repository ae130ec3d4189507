#include "host/viewport/mesh_patch.h"

#include <algorithm>
#include <memory>

#include "host/mesh/adjacency.h"
#include "host/mesh/normals.h"
#include "host/mesh/triangulate.h"
#include "host/viewport/vertex_patches.h"

namespace host::viewport {

namespace {

using mesh::Mesh;

bool isAtRim(const math::Box& box, const Vec3& p) {
  return p.x <= box.min.x || p.y <= box.min.y || p.z <= box.min.z || p.x >= box.max.x ||
         p.y >= box.max.y || p.z >= box.max.z;
}

}  // namespace

math::Box boxAfter(const math::Box& box, const Mesh& before, const Mesh& mesh,
                   std::span<const VertexId> moved) {
  math::Box after = box;
  for (const VertexId v : moved) {
    // What has left the rim may have been all that held the box there.
    if (isAtRim(box, before.point(v))) {
      after = {};
      for (const Vec3f& point : mesh.points()) after.add(Vec3(point));
      return after;
    }
    after.add(mesh.point(v));
  }
  return after;
}

void MeshPatcher::findNeighbourhood(const Mesh& mesh, std::span<const VertexId> moved) {
  const mesh::Adjacency& adjacency = mesh.adjacency();
  moved_.clear();
  vertices_.clear();
  faces_.clear();
  vertexMarks_.begin(at(mesh.vertexCount()));
  faceMarks_.begin(at(mesh.faceCount()));
  for (const VertexId v : moved)
    if (vertexMarks_.add(at(v))) moved_.push_back(v);
  vertices_ = moved_;
  for (const VertexId v : moved_)
    for (const FaceId face : adjacency.vertexFaces(v)) {
      if (!faceMarks_.add(at(face))) continue;
      faces_.push_back(face);
      for (const VertexId corner : mesh.faceVertices(face))
        if (vertexMarks_.add(at(corner))) vertices_.push_back(corner);
    }
}

void MeshPatcher::patchPoints(const Mesh& mesh, OpenBuffers& buffers) const {
  VertexData& points = *buffers.points;
  const mesh::Adjacency& adjacency = mesh.adjacency();
  for (const VertexId v : moved_) points.positions[at(v)] = mesh.points()[at(v)];
  std::vector<std::uint32_t> changed;
  changed.reserve(vertices_.size());
  for (std::size_t i = 0; i < vertices_.size(); ++i) {
    const VertexId v = vertices_[i];
    const Vec3 normal(normals_.vertexNormals[i]);
    const bool isSharp = std::ranges::any_of(adjacency.vertexFaces(v), [&](FaceId face) {
      return isSharpAgainst(mesh::faceNormal(mesh, face).toFloat(), normal);
    });
    points.normals[at(v)] = isSharp ? Vec3f{} : normals_.vertexNormals[i];
    changed.push_back(static_cast<std::uint32_t>(v));
  }
  tellChanged(buffers.points, changed);
}

/// @return false when the place has got another normal already
bool MeshPatcher::setNormal(std::uint32_t place, const Vec3f& normal, VertexData& surface) {
  if (!placeMarks_.add(place)) return surface.normals[place] == normal;
  places_.push_back(place);
  surface.normals[place] = normal;
  return true;
}

bool MeshPatcher::patchSurface(const Mesh& mesh, SurfaceContent content, OpenBuffers& buffers) {
  const mesh::Adjacency& adjacency = mesh.adjacency();
  VertexData& surface = *buffers.surface;
  places_.clear();
  placeMarks_.begin(surface.positions.size());
  for (const VertexId v : moved_)
    for (const CornerId c : adjacency.vertexCorners(v))
      surface.positions[buffers.corners[at(c)]] = mesh.points()[at(v)];
  if (content.flat) {
    // Corners of faces that have not moved may share a place with those of faces that have.
    for (const VertexId v : vertices_)
      for (const CornerId c : adjacency.vertexCorners(v)) {
        const Vec3f normal = mesh::faceNormal(mesh, adjacency.cornerFace(c)).toFloat();
        if (!setNormal(buffers.corners[at(c)], normal, surface)) return false;
      }
  } else {
    for (std::size_t i = 0; i < normals_.corners.size(); ++i)
      if (!setNormal(buffers.corners[at(normals_.corners[i])], normals_.cornerNormals[i], surface))
        return false;
  }
  tellChanged(buffers.surface, places_);
  return true;
}

/// A face that has become concave, or is so no more, is cut in another way.
void MeshPatcher::patchTriangles(const Mesh& mesh, OpenBuffers& buffers) const {
  std::shared_ptr<IndexData> own;
  std::vector<Vec3> loop;
  std::vector<mesh::LoopTriangle> cut;
  for (const FaceId face : faces_) {
    if (mesh.faceSize(face) == 3) continue;
    if (std::ranges::binary_search(mesh.invisibleFaces(), face)) continue;
    loop.clear();
    cut.clear();
    for (const VertexId v : mesh.faceVertices(face)) loop.push_back(mesh.point(v));
    mesh::triangulateLoop(loop, mesh::faceAreaVector(mesh, face), cut);
    auto place = 3 * at(mesh::Triangulation::firstTriangle(mesh, face));
    for (const mesh::LoopTriangle& triangle : cut)
      for (const Index corner : triangle) {
        const std::uint32_t wanted = buffers.corners[at(mesh.firstCorner(face) + corner)];
        if ((*buffers.shown.triangles)[place] != wanted) {
          if (!own) {
            own = std::make_shared<IndexData>(*buffers.shown.triangles);
            buffers.shown.triangles = own;
          }
          (*own)[place] = wanted;
        }
        ++place;
      }
  }
}

bool MeshPatcher::patch(const Mesh& before, const Mesh& mesh, std::span<const VertexId> moved,
                        SurfaceContent content, OpenBuffers& buffers) {
  constexpr long kOurs = 2;  // as they are shown, and as they are written
  if (buffers.surface.use_count() != kOurs || buffers.points.use_count() != kOurs) return false;
  findNeighbourhood(mesh, moved);
  computeNormalsAt(mesh, vertices_, normals_);
  buffers.shown.box = boxAfter(buffers.shown.box, before, mesh, moved_);
  patchPoints(mesh, buffers);
  if (!patchSurface(mesh, content, buffers)) return false;
  patchTriangles(mesh, buffers);
  return true;
}

}  // namespace host::viewport
