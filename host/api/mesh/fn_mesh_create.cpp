#include <maya/MFloatPointArray.h>
#include <maya/MFnMesh.h>
#include <maya/MFnTransform.h>
#include <maya/MPointArray.h>

#include <cmath>

#include "host/api/mesh/fn_mesh.h"
#include "host/api/mesh/id_arrays.h"
#include "host/mesh/rebuild.h"
#include "host/nodes/mesh_shape.h"
#include "host/spatial/point_index.h"

namespace host::api {
namespace {

template <class Points>
std::vector<math::Vec3f> storedPoints(const Points& points) {
  std::vector<math::Vec3f> stored;
  stored.reserve(points.length());
  for (const auto& p : points)
    stored.push_back({static_cast<float>(p.x), static_cast<float>(p.y), static_cast<float>(p.z)});
  return stored;
}

/// The mesh that a call to create describes. The counts repeat what the arrays say and must agree
/// with them.
template <class Points>
Result<mesh::Mesh> describedMesh(int numVertices, int numPolygons, const Points& points,
                                 const MIntArray& counts, const MIntArray& connects) {
  if (numVertices < 0 || static_cast<unsigned int>(numVertices) > points.length() ||
      numPolygons < 0 || static_cast<unsigned int>(numPolygons) > counts.length())
    return fail(
        "A mesh of {} vertices and {} faces was announced, but {} points and {} face sizes were "
        "given",
        numVertices, numPolygons, points.length(), counts.length());
  auto stored = storedPoints(points);
  stored.resize(at(numVertices));
  return mesh::buildMesh(std::move(stored), {counts.begin(), at(numPolygons)},
                         idsOf<VertexId>(connects));
}

/// Puts a mesh where `parentOrOwner` says: into a data object, under a transform, or under a
/// transform of its own, which is what comes back then. New shapes belong to no shading group; who
/// creates them assigns one.
Result<MObject> place(mesh::Mesh mesh, const MObject& parentOrOwner, MObject& made) {
  if (auto* owner = objectAs<DataRep>(parentOrOwner)) {
    if (owner->data && owner->data->typeName() != "mesh")
      return fail(ErrorKind::BadArgument, "The owner of a mesh must be mesh data");
    owner->data = std::make_shared<const scene::MeshData>(std::move(mesh));
    made = parentOrOwner;
    return parentOrOwner;
  }
  dg::Node* parent = nodeOf(parentOrOwner);
  if (!parentOrOwner.isNull() && (!parent || !scene::isTransform(*parent)))
    return fail(ErrorKind::BadArgument, "The parent of a mesh must be a transform");
  auto shape = document().createNode(
      "mesh", parent ? parent->name() + "Shape" : "polySurfaceShape#", parent);
  if (!shape) return failWith(shape.error());
  HOST_TRY(nodes::setStoredMesh(**shape, std::move(mesh)));
  made = wrap(*shape);
  return parent ? made : wrap(scene::firstPath(**shape).transform().node());
}

/// Finishes a creating call: attaches the set to what was made.
template <class Attach>
MObject placed(Result<mesh::Mesh> mesh, const MObject& parentOrOwner, MStatus* status,
               Attach attach) {
  MObject made;
  Result<MObject> result =
      mesh ? place(*std::move(mesh), parentOrOwner, made) : failWith(mesh.error());
  setStatus(status, toStatus(result, MStatus::kInvalidParameter).statusCode());
  if (!result) return MObject();
  attach(made);
  return *result;
}

Result<mesh::Mesh> withUvs(Result<mesh::Mesh> mesh, const MFloatArray& us, const MFloatArray& vs) {
  if (!mesh) return mesh;
  if (us.length() != vs.length())
    return fail("{} u but {} v coordinates were given", us.length(), vs.length());
  auto& points = mesh->editUvSet(0).points;
  points.resize(us.length());
  for (unsigned int i = 0; i < us.length(); ++i) points[i] = {us[i], vs[i]};
  return mesh;
}

/// The mesh of a shape, a transform above one, or mesh data.
scene::MeshDataPtr meshOf(const MObject& source) {
  dg::Node* node = nodeOf(source);
  const MeshTarget target = node && scene::isTransform(*node)
                                ? MeshTarget(wrap(scene::firstPath(*node)))
                                : MeshTarget(source);
  return target.isNull() ? nullptr : target.read();
}

/// `mesh` with one more face around `corners`; corners within `tolerance` of a vertex use it when
/// asked to.
Result<mesh::Mesh> withFace(const mesh::Mesh& mesh, const MPointArray& corners, bool mergeVertices,
                            double tolerance) {
  mesh::MeshRebuilder rebuilder(mesh);
  rebuilder.keepAllVertices();
  for (FaceId f = 0; f < mesh.faceCount(); ++f) rebuilder.copyFace(f);
  const spatial::PointIndex index(mergeVertices ? mesh.points() : std::span<const math::Vec3f>());
  std::vector<VertexId> loop;
  for (const MPoint& corner : corners) {
    const math::Vec3 p = toVec3(corner);
    if (!math::isFinite(p))
      return fail(ErrorKind::BadArgument,
                  "A corner of the face has a position that is not a number");
    VertexId vertex = mergeVertices ? index.nearest(p, tolerance) : kNone;
    if (vertex == kNone) vertex = rebuilder.addVertex(p.toFloat());
    if (loop.empty() || loop.back() != vertex) loop.push_back(vertex);
  }
  if (loop.size() > 1 && loop.front() == loop.back()) loop.pop_back();
  if (loop.size() < 3) return fail("A face needs at least three corners");
  rebuilder.beginFace();
  for (const VertexId vertex : loop) rebuilder.addCorner(vertex);
  rebuilder.endFace();
  return rebuilder.finish().mesh;
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::describedMesh;
using api::placed;

MObject MFnMesh::create(int numVertices, int numPolygons, const MPointArray& vertexArray,
                        const MIntArray& polygonCounts, const MIntArray& polygonConnects,
                        MObject parentOrOwner, MStatus* status) {
  return placed(
      describedMesh(numVertices, numPolygons, vertexArray, polygonCounts, polygonConnects),
      parentOrOwner, status, [this](const MObject& made) { setObject(made); });
}
MObject MFnMesh::create(int numVertices, int numPolygons, const MFloatPointArray& vertexArray,
                        const MIntArray& polygonCounts, const MIntArray& polygonConnects,
                        MObject parentOrOwner, MStatus* status) {
  return placed(
      describedMesh(numVertices, numPolygons, vertexArray, polygonCounts, polygonConnects),
      parentOrOwner, status, [this](const MObject& made) { setObject(made); });
}
MObject MFnMesh::create(int numVertices, int numPolygons, const MPointArray& vertexArray,
                        const MIntArray& polygonCounts, const MIntArray& polygonConnects,
                        const MFloatArray& uArray, const MFloatArray& vArray, MObject parentOrOwner,
                        MStatus* status) {
  auto mesh = describedMesh(numVertices, numPolygons, vertexArray, polygonCounts, polygonConnects);
  return placed(api::withUvs(std::move(mesh), uArray, vArray), parentOrOwner, status,
                [this](const MObject& made) { setObject(made); });
}
MObject MFnMesh::create(int numVertices, int numPolygons, const MFloatPointArray& vertexArray,
                        const MIntArray& polygonCounts, const MIntArray& polygonConnects,
                        const MFloatArray& uArray, const MFloatArray& vArray, MObject parentOrOwner,
                        MStatus* status) {
  auto mesh = describedMesh(numVertices, numPolygons, vertexArray, polygonCounts, polygonConnects);
  return placed(api::withUvs(std::move(mesh), uArray, vArray), parentOrOwner, status,
                [this](const MObject& made) { setObject(made); });
}

MStatus MFnMesh::createInPlace(int numVertices, int numPolygons, const MPointArray& vertexArray,
                               const MIntArray& polygonCounts, const MIntArray& polygonConnects) {
  auto mesh = describedMesh(numVertices, numPolygons, vertexArray, polygonCounts, polygonConnects);
  if (!mesh) return api::toStatus(mesh, MStatus::kInvalidParameter);
  return api::targetOf(*this).writeMesh(*std::move(mesh));
}
MStatus MFnMesh::createInPlace(int numVertices, int numPolygons,
                               const MFloatPointArray& vertexArray, const MIntArray& polygonCounts,
                               const MIntArray& polygonConnects) {
  auto mesh = describedMesh(numVertices, numPolygons, vertexArray, polygonCounts, polygonConnects);
  if (!mesh) return api::toStatus(mesh, MStatus::kInvalidParameter);
  return api::targetOf(*this).writeMesh(*std::move(mesh));
}

MObject MFnMesh::copy(const MObject& source, MObject parentOrOwner, MStatus* status) {
  const auto data = api::meshOf(source);
  if (!data) {
    api::setStatus(status, MStatus::kInvalidParameter);
    return MObject();
  }
  return placed(data->mesh, parentOrOwner, status,
                [this](const MObject& made) { setObject(made); });
}
MStatus MFnMesh::copyInPlace(const MObject& source) {
  const auto data = api::meshOf(source);
  return data ? api::targetOf(*this).writeMesh(data->mesh) : MStatus(MStatus::kInvalidParameter);
}

MObject MFnMesh::addPolygon(const MPointArray& vertexArray, bool mergeVertices,
                            double pointTolerance, MObject parentOrOwner, MStatus* status) {
  int face = -1;
  return addPolygon(vertexArray, face, mergeVertices, pointTolerance, parentOrOwner, status);
}
MObject MFnMesh::addPolygon(const MPointArray& vertexArray, int& faceIndex, bool mergeVertices,
                            double pointTolerance, MObject parentOrOwner, MStatus* status) {
  // With a parent, or without a mesh to add to, the face makes a mesh of its own.
  const bool isNew = !parentOrOwner.isNull() || api::targetOf(*this).isNull();
  const auto data = isNew ? nullptr : api::readMesh(*this, status);
  if (!isNew && !data) return MObject();
  auto mesh =
      api::withFace(data ? data->mesh : mesh::Mesh(), vertexArray, mergeVertices, pointTolerance);
  const int face = mesh ? mesh->faceCount() - 1 : -1;
  MStatus done;
  MObject result;
  if (isNew) {
    result = placed(std::move(mesh), parentOrOwner, &done,
                    [this](const MObject& made) { setObject(made); });
  } else {
    done = mesh ? api::writeMesh(*this, *std::move(mesh))
                : api::toStatus(mesh, MStatus::kInvalidParameter);
    result = object_;
  }
  api::setStatus(status, done.statusCode());
  if (!done) return MObject();
  faceIndex = face;
  return result;
}
