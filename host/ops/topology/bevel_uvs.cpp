#include "host/ops/topology/bevel_uvs.h"

#include <cmath>

#include "host/base/cancel_poll.h"
#include "host/base/parallel.h"
#include "host/math/frame.h"
#include "host/mesh/normals.h"

namespace host::ops {
namespace {

using math::Vec3;

constexpr std::size_t kGrain = 2048;

/// How large a mesh's faces are in a UV set, for lengths; 1 without any area.
double uvScale(const Mesh& mesh, const mesh::UvSet& set) {
  double area = 0, uvArea = 0;
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    pollCancel(f);
    const CornerId first = mesh.firstCorner(f), end = mesh.firstCorner(f + 1);
    if (set.cornerIds[first] < 0) continue;
    double twice = 0;
    for (CornerId c = first; c < end; ++c) {
      const auto a = set.points[at(set.cornerIds[c])],
                 b = set.points[at(set.cornerIds[c + 1 < end ? c + 1 : first])];
      twice += static_cast<double>(a.u) * b.v - static_cast<double>(b.u) * a.v;
    }
    uvArea += 0.5 * std::abs(twice);
    area += mesh::faceArea(mesh, f);
  }
  return area > 0 && uvArea > 0 ? std::sqrt(uvArea / area) : 1;
}

/// A frame of the face with x along its first edge that has a length.
math::Frame frameOf(const Mesh& mesh, FaceId f) {
  const auto loop = mesh.faceVertices(f);
  Vec3 along;
  for (std::size_t i = 0; i < loop.size() && math::lengthSquared(along) == 0; ++i)
    along = mesh.point(loop[(i + 1) % loop.size()]) - mesh.point(loop[i]);
  return math::frameFromNormal(mesh::faceCenter(mesh, f), mesh::faceAreaVector(mesh, f), along);
}

}  // namespace

BevelUvs::BevelUvs(const Mesh& before, BevelledMesh& built, bool projects) {
  for (int s = 0; s < before.uvSetCount(); ++s) {
    if (before.uvSet(s).cornerIds.empty()) continue;
    Set made;
    made.index = s;
    const auto& ids = built.mesh.uvSet(s).cornerIds;
    std::vector<std::uint8_t> isKnown(built.mesh.uvSet(s).points.size(), 0);
    for (std::size_t i = 0; i < built.corners.size(); ++i) {
      pollCancel(i);
      const UvId id = ids[at(built.corners[i].corner)];
      if (id == kNone || isKnown[at(id)] != 0) continue;
      isKnown[at(id)] = 1;
      made.blended.emplace_back(id, i);
    }
    if (projects) {
      made.scale = uvScale(before, before.uvSet(s));
      mesh::UvSet& set = built.mesh.editUvSet(s);
      for (const auto* faces : {&built.result.strips, &built.result.caps})
        for (const FaceId f : *faces) {
          if (set.cornerIds[built.mesh.firstCorner(f)] < 0) continue;
          made.projected.push_back(f);
          for (CornerId c = built.mesh.firstCorner(f); c < built.mesh.firstCorner(f + 1); ++c) {
            made.joined.push_back(set.cornerIds[c]);
            set.cornerIds[c] = static_cast<UvId>(set.points.size());
            set.points.emplace_back();
          }
        }
    }
    sets_.push_back(std::move(made));
  }
}

void BevelUvs::place(const Mesh& before, const BevelledMesh& built, const BevelCorners& corners,
                     std::span<const math::Vec3f> places, Mesh& mesh) const {
  for (const Set& made : sets_) {
    const mesh::UvSet& source = before.uvSet(made.index);
    mesh::UvSet& set = mesh.editUvSet(made.index);
    parallelFor(made.blended.size(), kGrain, [&](std::size_t begin, std::size_t end) {
      for (std::size_t i = begin; i < end; ++i) {
        const auto [id, entry] = made.blended[i];
        const BevelBlend blend = bevelBlend(before, corners, built.corners[entry].source, places);
        if (const auto uv = mesh::blendedUv(source, blend.span())) set.points[at(id)] = *uv;
      }
    });
    std::size_t corner = 0;
    for (const FaceId f : made.projected) {
      pollCancel(f);
      const CornerId first = mesh.firstCorner(f), end = mesh.firstCorner(f + 1);
      double u = 0, v = 0;
      for (CornerId c = first; c < end; ++c, ++corner) {
        const auto& uv = set.points[at(made.joined[corner])];
        u += static_cast<double>(uv.u) / (end - first);
        v += static_cast<double>(uv.v) / (end - first);
      }
      const math::Frame frame = frameOf(mesh, f);
      for (CornerId c = first; c < end; ++c) {
        const Vec3 p = frame.toLocal(mesh.point(mesh.cornerVertex(c)));
        set.points[at(set.cornerIds[c])] = {static_cast<float>(u + p.x * made.scale),
                                            static_cast<float>(v + p.y * made.scale)};
      }
    }
  }
}

std::vector<UvId> BevelUvs::placed(const BevelledMesh& built, int uvSet) const {
  std::vector<UvId> ids;
  for (const Set& made : sets_) {
    if (made.index != uvSet) continue;
    for (const auto& blended : made.blended) ids.push_back(blended.first);
    const auto& corners = built.mesh.uvSet(uvSet).cornerIds;
    for (const FaceId f : made.projected)
      ids.insert(ids.end(), corners.begin() + built.mesh.firstCorner(f),
                 corners.begin() + built.mesh.firstCorner(f + 1));
  }
  return ids;
}

}  // namespace host::ops
