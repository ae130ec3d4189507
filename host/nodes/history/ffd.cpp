#include "host/nodes/history/ffd.h"

#include <algorithm>
#include <cmath>

#include "host/dg/graph.h"
#include "host/math/lattice_basis.h"
#include "host/nodes/history/deformers.h"
#include "host/nodes/history/lattice.h"
#include "host/scene/mesh_data.h"

namespace host::nodes {

namespace {

using math::Matrix4;
using math::Vec3;

enum class Outside : std::uint8_t { Left, Taken, Fading };

Plug childOf(const Plug& compound, std::string_view name) {
  return compound.child(compound.attribute()->find(name));
}

/// Where a lattice takes the places of its box.
class Cage {
 public:
  Cage(const LatticePoints& lattice, const std::array<int, 3>& reach)
      : divisions_(lattice.divisions),
        axes_{math::LatticeBasis(divisions_[0], reach[0]),
              math::LatticeBasis(divisions_[1], reach[1]),
              math::LatticeBasis(divisions_[2], reach[2])},
        ways_(lattice.points) {
    const LatticePoints rest = LatticePoints::atRest(divisions_);
    for (std::size_t i = 0; i < ways_.size(); ++i) {
      ways_[i] = ways_[i] - rest.points[i];
      isAtRest_ = isAtRest_ && ways_[i] == Vec3();
    }
  }
  [[nodiscard]] bool isAtRest() const { return isAtRest_; }

  /// How far a place moves; `weights` is room to work in.
  struct Room {
    std::vector<double> s, t, u;
  };
  [[nodiscard]] Vec3 way(const Vec3& stu, Room& room) const {
    if (isAtRest_) return {};
    const auto rs = axes_[0].at(stu.x, room.s), rt = axes_[1].at(stu.y, room.t),
               ru = axes_[2].at(stu.z, room.u);
    Vec3 sum;
    for (int u = ru.first; u < ru.last; ++u)
      for (int t = rt.first; t < rt.last; ++t) {
        const double weight =
            room.u[static_cast<std::size_t>(u)] * room.t[static_cast<std::size_t>(t)];
        if (weight == 0) continue;
        const Vec3* row = &ways_[static_cast<std::size_t>((u * divisions_[1] + t) * divisions_[0])];
        for (int s = rs.first; s < rs.last; ++s)
          sum += row[s] * (weight * room.s[static_cast<std::size_t>(s)]);
      }
    return sum;
  }

 private:
  std::array<int, 3> divisions_;
  std::array<math::LatticeBasis, 3> axes_;
  std::vector<Vec3> ways_;  ///< from rest
  bool isAtRest_ = true;
};

/// How far outside of the box from 0 to 1 a place is.
double outsideBy(const Vec3& stu) {
  Vec3 past;
  for (int axis = 0; axis < 3; ++axis) past[axis] = std::max({0.0, -stu[axis], stu[axis] - 1});
  // Floats of a mesh that fills its lattice lie on the box, give or take their rounding.
  const double by = math::length(past);
  return by < 1e-5 ? 0 : by;
}

/// Places in the box that are held fast, three numbers a point; empty when there are none.
std::vector<double> heldPlaces(DeformInput& in) {
  if (in.integer("freezeGeometry") == 0) return {};
  const Plug lists = in.plug("stuCacheList");
  std::vector<Index> indices;
  std::vector<double> places;
  in.block.graph().getPacked(childOf(lists.element(in.geometry), "stuCache"), indices, places);
  const bool isWhole = places.size() == 3 * at(in.mesh.vertexCount()) && !indices.empty() &&
                       at(indices.back()) + 1 == indices.size();
  return isWhole ? places : std::vector<double>();
}

Result<void> deform(DeformInput& in) {
  const Plug deformed = in.plug("deformedLattice"), base = in.plug("baseLattice");
  const auto points = in.block.data<LatticeData>(childOf(deformed, "deformedLatticePoints"));
  if (!points) return {};
  const Matrix4 world = in.geometryMatrix();
  const Matrix4 goal = in.matrix(childOf(deformed, "deformedLatticeMatrix"));
  const Matrix4 rest = in.matrix(childOf(base, "baseLatticeMatrix"));
  const auto back = math::inverse(world), intoBox = math::inverse(rest);
  if (!back) return fail("the deformed object has a scale of zero");
  if (!intoBox) return fail("the base lattice has a scale of zero");
  std::array<int, 3> reach{};
  if (in.integer("local") != 0)
    reach = {static_cast<int>(std::max<std::int64_t>(1, in.integer("localInfluenceS"))),
             static_cast<int>(std::max<std::int64_t>(1, in.integer("localInfluenceT"))),
             static_cast<int>(std::max<std::int64_t>(1, in.integer("localInfluenceU")))};
  const Cage cage(points->lattice, reach);
  const std::vector<double> held = heldPlaces(in);
  if (cage.isAtRest() && goal == rest && held.empty()) return {};
  const Matrix4 to = world * *intoBox, from = goal * *back;
  const auto outside =
      static_cast<Outside>(std::clamp<std::int64_t>(in.integer("outsideLattice"), 0, 2));
  const double fades = std::max(0.0, in.real("outsideFalloffDist"));
  const auto place = [&](std::size_t v, const Vec3& point) {
    thread_local Cage::Room room;
    const Vec3 in_ = math::transformPoint(point, to);
    const Vec3 stu = held.empty() ? in_ + Vec3{0.5, 0.5, 0.5}
                                  : Vec3{held[3 * v], held[3 * v + 1], held[3 * v + 2]};
    const double by = outsideBy(stu);
    if (by > 0 && (outside == Outside::Left || (outside == Outside::Fading && by >= fades)))
      return point;
    const Vec3 moved = math::transformPoint(stu - Vec3{0.5, 0.5, 0.5} + cage.way(stu, room), from);
    return by > 0 && outside == Outside::Fading ? point + (moved - point) * (1 - by / fades)
                                                : moved;
  };
  movePoints(in.mesh, vertexStrengths(in.node(), in.geometry, in.mesh, {}), in.envelope, place);
  return {};
}

}  // namespace

void registerFfd(dg::TypeRegistry& types) {
  TypeBuilder ffd(types, "ffd", "geometryFilter", typeCode("FFFD"));
  ffd.livesByItsOutputs();
  const Attribute* deformed =
      ffd.add(compound("deformedLattice", "dl",
                       {notStored(dg::makeTyped("deformedLatticePoints", "dlp", "lattice")),
                        matrix("deformedLatticeMatrix", "dlm")}));
  const Attribute* base =
      ffd.add(compound("baseLattice", "bl",
                       {notStored(dg::makeTyped("baseLatticePoints", "blp", "lattice")),
                        matrix("baseLatticeMatrix", "blm")}));
  const Attribute* held =
      ffd.add(array(compound("stuCacheList", "scl", {array(real("stuCache", "stu"))})));
  ffd.add(real("partialResolution", "ptr", 0.01));
  ffd.add(choice("usePartialResolution", "upr", {"full", "partial"}));
  const Attribute* s = ffd.add(atLeast(shortInteger("localInfluenceS", "lis", 2), 1));
  const Attribute* t = ffd.add(atLeast(shortInteger("localInfluenceT", "lit", 2), 1));
  const Attribute* u = ffd.add(atLeast(shortInteger("localInfluenceU", "liu", 2), 1));
  const Attribute* frozen = ffd.add(boolean("freezeGeometry", "fg"));
  const Attribute* local = ffd.add(boolean("local", "lo"));
  const Attribute* outside = ffd.add(choice("outsideLattice", "ot", {"Inside", "All", "Falloff"}));
  const Attribute* fades = ffd.add(atLeast(real("outsideFalloffDist", "ofd", 1), 0));
  ffd.affects({deformed, base, held, s, t, u, frozen, local, outside, fades},
              {ffd["outputGeometry"]});
  setDeformation(ffd, deform);
  ffd.finish();
}

Result<void> freezeInLattice(Node& ffd, bool isFrozen) {
  dg::Graph& graph = ffd.graph();
  const Plug inputs = ffd.plug("input"), lists = ffd.plug("stuCacheList");
  const auto matrixOf = [&](const Plug& plug) {
    const auto value = graph.get(plug);
    const auto* data = value ? dg::dataAs<dg::MatrixData>(*value) : nullptr;
    return data ? data->value : Matrix4();
  };
  for (const auto& [geometry, shape] : deformedShapes(ffd)) {
    std::vector<double> places;
    const Plug input = inputs.element(geometry);
    const auto value = arrivingGeometry(graph, childOf(input, "inputGeometry"));
    const auto* data = value ? dg::dataAs<scene::MeshData>(*value) : nullptr;
    const auto back =
        math::inverse(matrixOf(childOf(ffd.plug("baseLattice"), "baseLatticeMatrix")));
    if (isFrozen && data && back) {
      const Matrix4 to = matrixOf(childOf(input, "geometryMatrix")) * *back;
      for (const math::Vec3f& point : data->mesh.points()) {
        const Vec3 place = math::transformPoint(Vec3(point), to) + Vec3{0.5, 0.5, 0.5};
        places.insert(places.end(), {place.x, place.y, place.z});
      }
    }
    std::vector<Index> indices(places.size());
    for (std::size_t i = 0; i < indices.size(); ++i) indices[i] = static_cast<Index>(i);
    HOST_TRY(graph.setPacked(childOf(lists.element(geometry), "stuCache"), std::move(indices),
                             std::move(places)));
  }
  return graph.set(ffd.plug("freezeGeometry"), std::int64_t{isFrozen});
}

}  // namespace host::nodes
