#include <maya/MFloatPointArray.h>
#include <maya/MFnMesh.h>
#include <maya/MPointArray.h>

#include <algorithm>

#include "host/api/mesh/fn_mesh.h"
#include "host/api/mesh/mesh_moves.h"
#include "host/base/parallel.h"

namespace host::api {
namespace {

/// Points for which a thread of their own is worth starting.
constexpr std::size_t kGrain = 100'000;

/// transformPoint for matrices without projection, so that loops over all points stay free of
/// calls.
[[gnu::always_inline]] inline math::Vec3 affinePoint(const math::Vec3& p, const math::Matrix4& a) {
  const auto& m = a.m;
  return {p.x * m[0][0] + p.y * m[1][0] + p.z * m[2][0] + m[3][0],
          p.x * m[0][1] + p.y * m[1][1] + p.z * m[2][1] + m[3][1],
          p.x * m[0][2] + p.y * m[1][2] + p.z * m[2][2] + m[3][2]};
}

/// Fills an API array with the mesh's points in a space: one pass over contiguous memory.
template <class Array, class Make>
MStatus fillPoints(const MFnMesh& set, MSpace::Space space, Array& array, Make make) {
  MStatus status;
  const auto data = readMesh(set, &status);
  if (!data) return status;
  std::optional<math::Matrix4> toSpace;
  status = targetOf(set).spaceMatrix(space, toSpace);
  if (!status) return status;
  const auto points = data->mesh.points();
  auto* out = Access::overwrite(array, static_cast<unsigned int>(points.size()));
  const auto fill = [&](auto place) {
    parallelFor(points.size(), kGrain, [&](std::size_t begin, std::size_t end) {
      for (std::size_t i = begin; i < end; ++i) {
        const math::Vec3 p = place(points[i]);
        out[i] = make(p.x, p.y, p.z);
      }
    });
  };
  if (!toSpace)
    fill([](const math::Vec3f& p) { return math::Vec3(p); });
  else if (math::isAffine(*toSpace))
    fill([matrix = *toSpace](const math::Vec3f& p) { return affinePoint(math::Vec3(p), matrix); });
  else
    fill([matrix = *toSpace](const math::Vec3f& p) {
      return math::transformPoint(math::Vec3(p), matrix);
    });
  return MStatus::kSuccess;
}

/// Stores points given in a space. A point that reads back as what was given keeps its stored bits,
/// so that writing what was read changes nothing, whatever the transform rounds.
template <class Array>
MStatus storePoints(const MFnMesh& set, MSpace::Space space, const Array& given) {
  MStatus status;
  const auto data = readMesh(set, &status);
  if (!data) return status;
  const MeshTarget target = targetOf(set);
  std::optional<math::Matrix4> toSpace;
  status = target.spaceMatrix(space, toSpace);
  if (!status) return status;
  const auto before = data->mesh.points();
  if (given.length() != before.size()) return MStatus::kInvalidParameter;
  std::vector<math::Vec3f> after(before.size());
  const auto* in = given.begin();
  if (!toSpace) {
    parallelFor(after.size(), kGrain, [&](std::size_t begin, std::size_t end) {
      for (std::size_t i = begin; i < end; ++i)
        after[i] = {static_cast<float>(in[i].x), static_cast<float>(in[i].y),
                    static_cast<float>(in[i].z)};
    });
    return target.writePoints(std::move(after));
  }
  const auto wayBack = WayToObject::from(*toSpace);
  if (!wayBack) {
    rememberError(
        Error{"the transform has no inverse (a zero scale), so world positions can't be stored"});
    return MStatus::kFailure;
  }
  const bool isAffine = math::isAffine(*toSpace);
  parallelFor(after.size(), kGrain, [&](std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < end; ++i) {
      const math::Vec3 wanted(in[i].x, in[i].y, in[i].z), stored(before[i]);
      const math::Vec3 now =
          isAffine ? affinePoint(stored, *toSpace) : math::transformPoint(stored, *toSpace);
      after[i] = now == wanted ? before[i] : (*wayBack)(wanted);
    }
  });
  return target.writePoints(std::move(after));
}

}  // namespace

CornerId cornerAt(const mesh::Mesh& mesh, FaceId face, VertexId vertex) {
  const auto vertices = mesh.faceVertices(face);
  const auto found = std::find(vertices.begin(), vertices.end(), vertex);
  return found == vertices.end()
             ? kNone
             : mesh.firstCorner(face) + static_cast<Index>(found - vertices.begin());
}

}  // namespace host::api

using namespace host;
using api::readMesh;
using api::setStatus;
using api::targetOf;

MStatus MFnMesh::getPoints(MPointArray& vertexArray, MSpace::Space space) const {
  return api::fillPoints(*this, space, vertexArray,
                         [](double x, double y, double z) { return MPoint(x, y, z); });
}
MStatus MFnMesh::getPoints(MFloatPointArray& vertexArray, MSpace::Space space) const {
  return api::fillPoints(*this, space, vertexArray, [](auto x, auto y, auto z) {
    return MFloatPoint(static_cast<float>(x), static_cast<float>(y), static_cast<float>(z));
  });
}
MStatus MFnMesh::setPoints(const MPointArray& vertexArray, MSpace::Space space) {
  return api::storePoints(*this, space, vertexArray);
}
MStatus MFnMesh::setPoints(const MFloatPointArray& vertexArray, MSpace::Space space) {
  return api::storePoints(*this, space, vertexArray);
}

MStatus MFnMesh::getPoint(int vertexId, MPoint& pos, MSpace::Space space) const {
  MStatus status;
  const auto data = readMesh(*this, &status);
  if (!data) return status;
  if (!api::isVertex(data->mesh, vertexId)) return MStatus::kInvalidParameter;
  std::optional<math::Matrix4> toSpace;
  status = targetOf(*this).spaceMatrix(space, toSpace);
  if (!status) return status;
  pos = api::pointIn(data->mesh.points()[at(vertexId)], toSpace);
  return MStatus::kSuccess;
}

MStatus MFnMesh::setPoint(int vertexId, const MPoint& pos, MSpace::Space space) {
  MStatus status;
  const auto data = readMesh(*this, &status);
  if (!data) return status;
  if (!api::isVertex(data->mesh, vertexId)) return MStatus::kInvalidParameter;
  const api::MeshTarget target = targetOf(*this);
  std::optional<math::Matrix4> toSpace;
  status = target.spaceMatrix(space, toSpace);
  if (!status) return status;
  const auto stored = api::pointFrom(pos, toSpace);
  if (!stored) return MStatus::kFailure;
  const VertexId vertex = vertexId;
  return api::movePoints(target, {&vertex, 1}, {&*stored, 1});
}

const float* MFnMesh::getRawPoints(MStatus* status) const {
  const auto data = readMesh(*this, status);
  static_assert(sizeof(math::Vec3f) == 3 * sizeof(float));
  return data ? &data->mesh.points().data()->x : nullptr;
}

const float* MFnMesh::getRawDoublePoints(MStatus* status) const {
  // Points are stored in single precision here, as the documented call's return type says.
  return getRawPoints(status);
}
