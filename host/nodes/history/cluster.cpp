#include "host/nodes/history/cluster.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "host/dg/graph.h"
#include "host/math/quaternion.h"
#include "host/math/transform.h"
#include "host/nodes/history/deformers.h"
#include "host/scene/dag_paths.h"

namespace host::nodes {

namespace {

using math::Matrix4;
using math::Vec3;

enum class Turn : std::uint8_t { Closest, Positive, Negative };

/// A part of a movement: scaled, turned and moved about a pivot by a share.
class PartialMove {
 public:
  PartialMove(const Matrix4& whole, const Vec3& pivot, Turn turn)
      : whole_(whole), pivot_(pivot), way_(math::transformPoint(pivot, whole) - pivot) {
    const math::TransformComponents parts = math::decompose(whole);
    scale_ = parts.scale;
    shear_ = parts.shear;
    const math::Quaternion q = math::toQuaternion(math::eulerToMatrix(parts.rotate));
    axis_ = {q.x, q.y, q.z};
    angle_ = 2 * std::atan2(math::length(axis_), q.w);
    // The same turn has two axes: the one that points more along the positive ones counts.
    const double sum =
        std::abs(axis_.x) >= std::abs(axis_.y) && std::abs(axis_.x) >= std::abs(axis_.z) ? axis_.x
        : std::abs(axis_.y) >= std::abs(axis_.z)                                         ? axis_.y
                                                                                         : axis_.z;
    if (sum < 0) {
      axis_ = -axis_;
      angle_ = -angle_;
    }
    if (turn == Turn::Positive && angle_ < 0) angle_ += 2 * std::numbers::pi;
    if (turn == Turn::Negative && angle_ > 0) angle_ -= 2 * std::numbers::pi;
  }

  [[nodiscard]] Vec3 operator()(const Vec3& point, double share) const {
    if (share == 1) return math::transformPoint(point, whole_);
    const Vec3 scale = Vec3{1, 1, 1} + (scale_ - Vec3{1, 1, 1}) * share;
    const Vec3 from = point - pivot_;
    const Vec3 sized{from.x * scale.x, from.y * scale.y, from.z * scale.z};
    const Vec3 sheared = math::transformVector(sized, math::shearMatrix(shear_ * share));
    const Vec3 turned =
        angle_ == 0 ? sheared : math::rotate(sheared, math::axisAngle(axis_, angle_ * share));
    return pivot_ + turned + way_ * share;
  }

 private:
  Matrix4 whole_;
  Vec3 pivot_, way_, scale_, shear_, axis_;
  double angle_ = 0;
};

/// From the world to where weights work, what they scale, and the way back; and about what.
struct Follow {
  Matrix4 before, weighted, after;
  Vec3 pivot;
};

Plug childOf(const Plug& compound, std::string_view name) {
  return compound.child(compound.attribute()->find(name));
}

bool hasOwnWeightedNode(Node& handle) {
  const Plug source = handle.graph().source(handle.plug("weightedNode"));
  if (!source) return false;
  const auto& parents = scene::dagLinks(handle).parents;
  return parents.empty() || parents.front() != source.node();
}

Result<Follow> followOf(DeformInput& in) {
  Follow follow;
  const Matrix4 bound = in.matrix(in.plug("bindPreMatrix"));
  const auto unbound = math::inverse(bound);
  Node* handle = clusterHandleOf(in.node());
  if (!handle) {
    follow.weighted = bound * in.matrix(in.plug("matrix"));
    return follow;
  }
  const Plug moves = in.plug("clusterXforms");
  const Matrix4 below =
      in.matrix(in.plug("preCompensationMatrix")) * in.matrix(childOf(moves, "preMatrix"));
  const Matrix4 own = in.matrix(in.plug("weightedCompensationMatrix")) *
                      in.matrix(childOf(moves, "weightedMatrix"));
  const Matrix4 above =
      in.matrix(childOf(moves, "postMatrix")) * in.matrix(in.plug("postCompensationMatrix"));
  const auto origin = in.block.graph().getVec3(handle->plug("origin"));
  if (!origin) return failWith(origin.error());
  follow.pivot = *origin;
  if (in.integer("relative") != 0) {
    const auto back = math::inverse(above);
    if (!back) return fail("what is above the handle has a scale of zero");
    follow.before = *back;
    follow.weighted = bound * below * own;
    follow.after = above;
  } else if (hasOwnWeightedNode(*handle)) {
    follow.before = bound * below;
    follow.weighted = own;
    follow.after = above;
    return follow;
  } else {
    follow.weighted = bound * below * own * above;
  }
  if (unbound) follow.pivot = math::transformPoint(follow.pivot, *unbound);
  return follow;
}

Result<void> deform(DeformInput& in) {
  const auto follow = followOf(in);
  if (!follow) return failWith(follow.error());
  const Matrix4 world = in.geometryMatrix();
  const auto back = math::inverse(world);
  if (!back) return fail("the deformed object has a scale of zero");
  const Matrix4 to = world * follow->before, from = follow->after * *back;
  const Plug lists = in.plug("weightList");
  std::vector<float> strengths =
      vertexStrengths(in.node(), in.geometry, in.mesh,
                      lists.element(in.geometry).child(lists.attribute()->find("weights")));
  if (in.integer("usePartialResolution") != 0) {
    const double step = in.real("percentResolution") / 100;
    if (step > 0)
      for (float& each : strengths) each = static_cast<float>(std::round(each / step) * step);
  }
  const Matrix4 whole = to * follow->weighted * from;
  const bool isPlain = math::isIdentity(follow->before) && math::isIdentity(follow->after);
  if (isPlain && math::isIdentity(follow->weighted)) return {};
  // Weights are those of the points; a transform that all follow wholly is one matrix.
  const auto turn =
      static_cast<Turn>(std::clamp<std::int64_t>(in.integer("angleInterpolation"), 0, 2));
  const PartialMove part(follow->weighted, follow->pivot, turn);
  const std::vector<float> shares = std::move(strengths);
  std::vector<float> members;  // points that are not the cluster's own are left alone
  if (!shares.empty() && deformedComponents(in.node(), in.geometry)) {
    members = vertexStrengths(in.node(), in.geometry, in.mesh, {});
  }
  movePoints(in.mesh, members, in.envelope, [&](std::size_t v, const Vec3& rest) {
    const double share = shares.empty() ? 1 : shares[v];
    if (share == 1) return math::transformPoint(rest, whole);
    if (share == 0 && isPlain) return rest;
    return math::transformPoint(part(math::transformPoint(rest, to), share), from);
  });
  return {};
}

Matrix4 inverseOr(const Matrix4& matrix) {
  const auto back = math::inverse(matrix);
  return back ? *back : Matrix4();
}

dg::DataPtr dataOf(const Matrix4& matrix) {
  return std::make_shared<dg::MatrixData>(matrix);
}

void registerHandle(dg::TypeRegistry& types) {
  TypeBuilder handle(types, "clusterHandle", "shape", typeCode("CLHD"));
  handle.livesByItsOutputs();
  const Attribute* origin = handle.add(triple("origin", "or", AttributeType::Distance, {}, "o"));
  AttributePtr moves =
      array(output(compound("clusterTransforms", "x",
                            {output(matrix("preWeightedMatrixTransform", "pre")),
                             output(matrix("weightedMatrixTransform", "wt")),
                             output(matrix("postWeightedMatrixTransform", "post"))})));
  moves->worldSpace = true;
  const Attribute* all = handle.add(std::move(moves));
  const Attribute* weighted = handle.add(message("weightedNode", "wn"));
  const Attribute* places = handle["worldMatrix"];
  handle.affects({origin, weighted, places, handle["parentMatrix"]}, {all});
  handle.type().compute = [=](Node& node, const Plug& plug, DataBlock& block) -> Result<Computed> {
    if (plug.attribute() != all && plug.attribute()->parent != all) return Computed::Unhandled;
    const Index instance = plug.levels() > 0 && plug.index(0) != kNone ? plug.index(0) : 0;
    // Read so that this is told when anything above moves.
    const auto place = block.data<dg::MatrixData>(Plug(&node, places).element(instance));
    const Matrix4 total = place ? place->value : Matrix4();
    const scene::DagPath path = scene::firstPath(node);
    scene::DagPath own = path.parent();
    const Plug source = block.graph().source(Plug(&node, weighted));
    if (source)
      for (scene::DagPath up = own; !up.isWorld(); up = up.parent())
        if (up.node() == source.node()) own = up;
    const Matrix4 at = own.isWorld() ? Matrix4() : own.inclusiveMatrix();
    const Matrix4 above =
        own.isWorld() || own.parent().isWorld() ? Matrix4() : own.parent().inclusiveMatrix();
    const Plug element = Plug(&node, all).element(instance);
    block.output(element.child(0), dataOf(total * inverseOr(at)));
    block.output(element.child(1), dataOf(at * inverseOr(above)));
    block.output(element.child(2), dataOf(above));
    return Computed::Done;
  };
  handle.finish();
}

}  // namespace

void registerCluster(dg::TypeRegistry& types) {
  registerHandle(types);
  TypeBuilder cluster(types, "cluster", "weightGeometryFilter", typeCode("FCLS"));
  cluster.livesByItsOutputs();
  const Attribute* partial =
      cluster.add(choice("usePartialResolution", "upr", {"full", "partial"}));
  const Attribute* step = cluster.add(single("percentResolution", "ptr", 5));
  const Attribute* relative = cluster.add(boolean("relative", "rel"));
  cluster.add(array(matrix("geomMatrix", "gm")));
  const Attribute* alone = cluster.add(matrix("matrix", "ma"));
  const Attribute* bound = cluster.add(matrix("bindPreMatrix", "pm"));
  const Attribute* turn =
      cluster.add(choice("angleInterpolation", "ait", {"closest", "positive", "negative"}));
  const Attribute* moves = cluster.add(compound(
      "clusterXforms", "x",
      {matrix("preMatrix", "pre"), matrix("weightedMatrix", "wt"), matrix("postMatrix", "post")}));
  cluster.add(boolean("bindState", "bs"));
  const Attribute* own = cluster.add(matrix("weightedCompensationMatrix", "wcm"));
  const Attribute* after = cluster.add(matrix("postCompensationMatrix", "psc"));
  const Attribute* before = cluster.add(matrix("preCompensationMatrix", "prc"));
  cluster.affects({partial, step, relative, alone, bound, turn, moves, own, after, before},
                  {cluster["outputGeometry"]});
  setDeformation(cluster, deform);
  cluster.finish();
}

Result<Node*> addClusterHandle(scene::Document& document, Node& cluster, Node& transform,
                               const Vec3& origin) {
  dg::Graph& graph = document.graph();
  auto made = document.createNode("clusterHandle", transform.name() + "Shape", &transform);
  if (!made) return failWith(std::move(made.error()));
  HOST_TRY(graph.setVec3((*made)->plug("origin"), origin));
  HOST_TRY(graph.connect(transform.plug("worldMatrix").element(0), cluster.plug("matrix")));
  HOST_TRY(
      graph.connect((*made)->plug("clusterTransforms").element(0), cluster.plug("clusterXforms")));
  return made->get();
}

Node* clusterHandleOf(Node& cluster) {
  const Plug source = cluster.graph().source(cluster.plug("clusterXforms"));
  return source && source.node()->type().isA("clusterHandle") ? source.node() : nullptr;
}

Node* clusterWeightedNode(Node& cluster) {
  Node* handle = clusterHandleOf(cluster);
  if (!handle) return nullptr;
  if (const Plug source = handle->graph().source(handle->plug("weightedNode")))
    return source.node();
  const auto& parents = scene::dagLinks(*handle).parents;
  return parents.empty() ? nullptr : parents.front();
}

Result<void> bindCluster(Node& cluster) {
  dg::Graph& graph = cluster.graph();
  Node* handle = clusterHandleOf(cluster);
  if (!handle) return fail("'{}' has no handle", cluster.name());
  Matrix4 now = scene::firstPath(*handle).inclusiveMatrix();
  const auto relative = graph.get(cluster.plug("relative"));
  if (relative && dg::equal(*relative, std::int64_t{1}))
    if (Node* weighted = clusterWeightedNode(cluster)) {
      const scene::DagPath above = scene::firstPath(*weighted).parent();
      if (!above.isWorld()) now = now * inverseOr(above.inclusiveMatrix());
    }
  const auto back = math::inverse(now);
  if (!back) return fail("'{}' has a scale of zero: nothing can follow it", handle->name());
  HOST_TRY(graph.set(cluster.plug("bindState"), std::int64_t{1}));
  return graph.set(cluster.plug("bindPreMatrix"), dataOf(*back));
}

}  // namespace host::nodes
