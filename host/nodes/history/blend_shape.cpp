#include "host/nodes/history/blend_shape.h"

#include <algorithm>
#include <cmath>
#include <set>

#include "host/dg/graph.h"
#include "host/nodes/history/deformers.h"
#include "host/nodes/mesh_shape.h"
#include "host/scene/dag_paths.h"
#include "host/scene/mesh_data.h"

namespace host::nodes {

namespace {

using math::Matrix4;
using math::Vec3;

enum class Origin : std::uint8_t { World, Local, User };

constexpr Index kRest = 5000;  ///< the item of the weight zero
constexpr double kItemsPerWeight = 1000;

double weightOfItem(Index item) {
  return (item - kRest) / kItemsPerWeight;
}
Index itemOfWeight(double weight) {
  return static_cast<Index>(std::lround(kRest + weight * kItemsPerWeight));
}

Plug groupPlug(Node& blend, Index geometry, Index target) {
  const Plug inputs = blend.plug("inputTarget");
  return inputs.element(geometry)
      .child(inputs.attribute()->find("inputTargetGroup"))
      .element(target);
}
Plug below(const Plug& compound, std::string_view name) {
  return compound.child(compound.attribute()->find(name));
}

/// The vertices that a list names, in its order.
std::vector<Index> listedVertices(const scene::ComponentListData& list, Index count) {
  std::vector<Index> vertices;
  for (const scene::Component& each : list.value) {
    if (each.type() != scene::ComponentType::Vertex) continue;
    const std::vector<Index> some = each.expanded(count);
    vertices.insert(vertices.end(), some.begin(), some.end());
  }
  return vertices;
}

/// From the space of a mesh that arrives at a plug to the world.
Matrix4 worldOf(dg::Graph& graph, const Plug& arrival) {
  const Plug source = graph.source(arrival);
  if (!source || source.attribute()->longName != "worldMesh" || !source.isElement()) return {};
  const auto value = graph.get(source.node()->plug("worldMatrix").element(source.logicalIndex()));
  const auto* data = value ? dg::dataAs<dg::MatrixData>(*value) : nullptr;
  return data ? data->value : Matrix4();
}

/// Adds up by vertex how far targets take the points of a geometry.
class Offsets {
 public:
  explicit Offsets(DeformInput& in)
      : in_(in),
        graph_(in.block.graph()),
        origin_(static_cast<Origin>(std::clamp<std::int64_t>(in.integer("origin"), 0, 2))),
        sum_(at(in.mesh.vertexCount())) {
    if (origin_ == Origin::User) shift_ = in.vec3("baseOrigin") - in.vec3("targetOrigin");
    if (origin_ != Origin::World) return;
    back_ = math::inverse(in.geometryMatrix());
  }

  Result<void> addTarget(Index target, double weight) {
    const Plug group = groupPlug(in_.node(), in_.geometry, target);
    if (!graph_.elementExists(group)) return {};
    const Plug items = below(group, "inputTargetItem");
    const auto shares = sharesAt(weight, graph_.elementIndices(items));
    if (shares.empty()) return {};
    const std::vector<float> weights =
        numbersByVertex(graph_, below(group, "targetWeights"), static_cast<Index>(sum_.size()), 1);
    for (const auto& [item, share] : shares) HOST_TRY(addItem(items.element(item), share, weights));
    return {};
  }
  [[nodiscard]] const std::vector<Vec3>& sum() const { return sum_; }
  [[nodiscard]] bool isAny() const { return isAny_; }

 private:
  /// How much of each item makes up a weight.
  static std::vector<std::pair<Index, double>> sharesAt(double weight, std::vector<Index> items) {
    if (items.empty() || weight == 0) return {};
    items.push_back(kRest);
    std::ranges::sort(items);
    items.erase(std::unique(items.begin(), items.end()), items.end());
    if (items.size() < 2) return {};
    std::size_t upper = 1;
    while (upper + 1 < items.size() && weightOfItem(items[upper]) < weight) ++upper;
    const double from = weightOfItem(items[upper - 1]), to = weightOfItem(items[upper]);
    const double way = (weight - from) / (to - from);
    std::vector<std::pair<Index, double>> shares;
    if (items[upper - 1] != kRest && way != 1) shares.emplace_back(items[upper - 1], 1 - way);
    if (items[upper] != kRest && way != 0) shares.emplace_back(items[upper], way);
    return shares;
  }

  Result<void> addItem(const Plug& item, double share, const std::vector<float>& weights) {
    const Plug arrival = below(item, "inputGeomTarget");
    const auto value = arrivingGeometry(graph_, arrival);
    if (!value) return failWith(value.error());
    if (const auto* live = dg::dataAs<scene::MeshData>(*value))
      return addMesh(live->mesh, arrival, share, weights);
    const auto list =
        in_.block.data<scene::ComponentListData>(below(item, "inputComponentsTarget"));
    const auto points = in_.block.data<dg::PointArrayData>(below(item, "inputPointsTarget"));
    if (!list || !points) return {};
    const auto count = static_cast<Index>(sum_.size());
    const std::vector<Index> vertices = listedVertices(*list, count);
    for (std::size_t i = 0; i < std::min(vertices.size(), points->value.size()); ++i) {
      if (vertices[i] >= count) continue;
      const std::size_t v = at(vertices[i]);
      const dg::Point4& offset = points->value[i];
      sum_[v] +=
          Vec3{offset.x, offset.y, offset.z} * (weights.empty() ? share : share * weights[v]);
    }
    isAny_ = isAny_ || !vertices.empty();
    return {};
  }

  Result<void> addMesh(const mesh::Mesh& target, const Plug& arrival, double share,
                       const std::vector<float>& weights) {
    const bool isMoved = origin_ == Origin::World;
    if (isMoved && !back_) return fail("the deformed object has a scale of zero");
    const Matrix4 toBase = isMoved ? worldOf(graph_, arrival) * *back_ : Matrix4();
    const std::span<const math::Vec3f> from = in_.mesh.points(), to = target.points();
    parallelFor(std::min(from.size(), to.size()), 4096, [&](std::size_t begin, std::size_t end) {
      for (std::size_t v = begin; v < end; ++v) {
        const Vec3 place = isMoved ? math::transformPoint(Vec3(to[v]), toBase) : Vec3(to[v]);
        const Vec3 offset = place - Vec3(from[v]) + shift_;
        sum_[v] += offset * (weights.empty() ? share : share * weights[v]);
      }
    });
    isAny_ = true;
    return {};
  }

  DeformInput& in_;
  dg::Graph& graph_;
  Origin origin_;
  Vec3 shift_;
  std::optional<Matrix4> back_;
  std::vector<Vec3> sum_;
  bool isAny_ = false;
};

Result<void> blend(DeformInput& in) {
  dg::Graph& graph = in.block.graph();
  std::vector<Index> targets;
  std::vector<double> weights;
  graph.getPacked(in.plug("weight"), targets, weights);
  const std::vector<float> shown = numbersByVertex(graph, in.plug("targetVisibility"),
                                                   targets.empty() ? 0 : targets.back() + 1, 1);
  Offsets offsets(in);
  for (std::size_t i = 0; i < targets.size(); ++i)
    if (weights[i] != 0 && (shown.empty() || shown[at(targets[i])] != 0))
      HOST_TRY(offsets.addTarget(targets[i], weights[i]));
  if (!offsets.isAny()) return {};
  const Plug inputs = in.plug("inputTarget");
  const Plug own = inputs.element(in.geometry).child(inputs.attribute()->find("baseWeights"));
  const std::vector<float> strengths = vertexStrengths(in.node(), in.geometry, in.mesh, own);
  const std::vector<Vec3>& sum = offsets.sum();
  movePoints(in.mesh, strengths, in.envelope,
             [&](std::size_t v, const Vec3& rest) { return rest + sum[v]; });
  return {};
}

AttributePtr point(std::string longName, std::string shortName, const std::string& letter) {
  return triple(std::move(longName), std::move(shortName), AttributeType::Distance, {}, letter);
}

/// A name that the weight of a target can have as its alias.
std::string targetName(Node& blend, const Node& shape) {
  const scene::DagPath path = scene::firstPath(shape);
  std::string name = path.length() > 1 ? path.parent().node()->name() : shape.name();
  if (const std::size_t colon = name.rfind(':'); colon != std::string::npos)
    name.erase(0, colon + 1);
  const auto isTaken = [&](const std::string& wanted) {
    return blend.findAttribute(wanted) || blend.graph().findAlias(blend, wanted);
  };
  std::string free = name;
  for (int number = 1; isTaken(free); ++number) free = name + std::to_string(number);
  return free;
}

/// The offsets that a mesh in a target's place stands for.
Result<void> keepAsOffsets(dg::Graph& graph, const Plug& arrival) {
  Node& blend = *arrival.node();
  const Plug inputs = blend.plug("input");
  const Plug base =
      inputs.element(arrival.index(0)).child(inputs.attribute()->find("inputGeometry"));
  const auto from = arrivingGeometry(graph, base), to = arrivingGeometry(graph, arrival);
  const auto* rest = from ? dg::dataAs<scene::MeshData>(*from) : nullptr;
  const auto* goal = to ? dg::dataAs<scene::MeshData>(*to) : nullptr;
  if (!rest || !goal) return {};
  Matrix4 toBase;
  Vec3 shift;
  const auto origin = graph.get(blend.plug("origin"));
  const std::int64_t number = origin ? std::get<std::int64_t>(*origin) : 1;
  if (number == static_cast<std::int64_t>(Origin::World)) {
    const Plug place =
        inputs.element(arrival.index(0)).child(inputs.attribute()->find("geometryMatrix"));
    const auto value = graph.get(place);
    const auto* matrix = value ? dg::dataAs<dg::MatrixData>(*value) : nullptr;
    toBase = worldOf(graph, arrival);
    if (const auto back = matrix ? math::inverse(matrix->value) : std::nullopt)
      toBase = toBase * *back;
  }
  if (number == static_cast<std::int64_t>(Origin::User)) {
    const auto own = graph.getVec3(blend.plug("baseOrigin"));
    const auto other = graph.getVec3(blend.plug("targetOrigin"));
    if (own && other) shift = *own - *other;
  }
  std::vector<Index> vertices;
  std::vector<dg::Point4> offsets;
  const VertexId count = std::min(rest->mesh.vertexCount(), goal->mesh.vertexCount());
  for (VertexId v = 0; v < count; ++v) {
    const Vec3 way =
        math::transformPoint(goal->mesh.point(v), toBase) - rest->mesh.point(v) + shift;
    if (way.x == 0 && way.y == 0 && way.z == 0) continue;
    vertices.push_back(v);
    offsets.push_back({way.x, way.y, way.z, 1});
  }
  const Plug item = arrival.parent();
  const std::vector<scene::Component> list{
      scene::Component(scene::ComponentType::Vertex, std::move(vertices))};
  HOST_TRY(graph.disconnect(graph.source(arrival), arrival));
  HOST_TRY(graph.set(arrival, {}));
  HOST_TRY(graph.set(below(item, "inputPointsTarget"),
                     dg::DataPtr(std::make_shared<dg::PointArrayData>(std::move(offsets)))));
  return graph.set(below(item, "inputComponentsTarget"),
                   dg::DataPtr(std::make_shared<scene::ComponentListData>(list)));
}

void collectBelow(Node& node, std::vector<Node*>& found) {
  found.push_back(&node);
  if (!scene::isDagNode(node)) return;
  for (Node* child : scene::dagLinks(node).children) collectBelow(*child, found);
}

}  // namespace

void registerBlendShape(dg::TypeRegistry& types) {
  TypeBuilder builder(types, "blendShape", "geometryFilter", typeCode("FBLS"));
  builder.livesByItsOutputs();
  const Attribute* check = builder.add(boolean("topologyCheck", "tc", true));
  const Attribute* weight = builder.add(array(keyable(single("weight", "w"))));
  builder.add(array(text("icon", "icn")));
  const Attribute* targets = builder.add(array(compound(
      "inputTarget", "it",
      {array(single("baseWeights", "bw", 1)),
       array(compound(
           "inputTargetGroup", "itg",
           {array(compound("inputTargetItem", "iti",
                           {notStored(dg::makeTyped("inputGeomTarget", "igt", "mesh")),
                            dg::makeTyped("inputPointsTarget", "ipt", "pointArray"),
                            dg::makeTyped("inputComponentsTarget", "ict", "componentList")})),
            array(single("targetWeights", "tw", 1)), integer("normalizationId", "nid")}))})));
  const Attribute* origin = builder.add(choice("origin", "or", {"world", "local", "user"}, 1));
  const Attribute* baseOrigin = builder.add(point("baseOrigin", "bo", "b"));
  const Attribute* targetOrigin = builder.add(point("targetOrigin", "to", "t"));
  builder.add(boolean("parallelBlender", "pb"));
  const Attribute* shown = builder.add(array(boolean("targetVisibility", "tgvs", true)));
  // How the editor of shapes arranges targets, kept for it.
  builder.add(hidden(integer("nextNode", "nxnd")));
  builder.add(hidden(integer("midLayerId", "mlid")));
  builder.add(hidden(integer("midLayerParent", "mlpr")));
  builder.add(array(hidden(integer("parentDirectory", "pndr"))));
  builder.add(array(hidden(integer("nextTarget", "nxtg"))));
  builder.add(array(hidden(
      compound("targetDirectory", "tgdt",
               {text("directoryName", "dtn"), dg::makeTyped("childIndices", "cid", "Int32Array"),
                boolean("directoryVisibility", "dvs", true),
                boolean("directoryParentVisibility", "dpvs", true),
                single("directoryWeight", "dwgh", 1)}))));
  builder.affects({check, weight, targets, origin, baseOrigin, targetOrigin, shown},
                  {builder["outputGeometry"]});
  setDeformation(builder, blend);
  builder.finish();
}

bool isParallelBlender(Node& blend) {
  const auto value = blend.graph().get(blend.plug("parallelBlender"));
  return value && dg::equal(*value, std::int64_t{1});
}

std::vector<Index> blendTargets(Node& blend) {
  dg::Graph& graph = blend.graph();
  std::set<Index> targets;
  for (const Index t : graph.elementIndices(blend.plug("weight"))) targets.insert(t);
  const Plug inputs = blend.plug("inputTarget");
  for (const Index g : graph.elementIndices(inputs))
    for (const Index t : graph.elementIndices(below(inputs.element(g), "inputTargetGroup")))
      targets.insert(t);
  return {targets.begin(), targets.end()};
}

Plug blendTargetPlug(Node& blend, Index geometry, Index target, double weight) {
  const Plug items = below(groupPlug(blend, geometry, target), "inputTargetItem");
  return below(items.element(itemOfWeight(weight)), "inputGeomTarget");
}

std::vector<double> blendTargetWeights(Node& blend, Index geometry, Index target) {
  std::vector<double> weights;
  const Plug group = groupPlug(blend, geometry, target);
  if (!blend.graph().elementExists(group)) return weights;
  for (const Index item : blend.graph().elementIndices(below(group, "inputTargetItem")))
    weights.push_back(weightOfItem(item));
  return weights;
}

Result<void> addBlendTarget(scene::Document& document, Node& blend, Index geometry, Index target,
                            Node& shape, double weight) {
  dg::Graph& graph = document.graph();
  if (itemOfWeight(weight) == kRest)
    return fail("a target can't be reached at the weight 0: there the object is as it was");
  if (target < 0) return fail("{} is no number of a target", target);
  const Plug arrival = blendTargetPlug(blend, geometry, target, weight);
  if (graph.elementExists(arrival.parent()))
    return fail("target {} of '{}' has a shape for the weight {} already", target, blend.name(),
                weight);
  const Plug own = blend.plug("weight").element(target);
  if (!graph.elementExists(own)) HOST_TRY(graph.addElement(own));
  if (graph.alias(own).empty()) HOST_TRY(graph.setAlias(own, targetName(blend, shape)));
  return graph.connect(shape.plug("worldMesh").element(0), arrival);
}

Result<void> removeBlendTarget(scene::Document& document, Node& blend, Index geometry, Index target,
                               double weight) {
  dg::Graph& graph = document.graph();
  const Plug item = blendTargetPlug(blend, geometry, target, weight).parent();
  if (!graph.elementExists(item))
    return fail("'{}' has no target {} with a shape for the weight {}", blend.name(), target,
                weight);
  HOST_TRY(graph.removeElement(item, true));
  const Plug inputs = blend.plug("inputTarget");
  for (const Index g : graph.elementIndices(inputs))
    if (!blendTargetWeights(blend, g, target).empty()) return {};
  for (const Index g : graph.elementIndices(inputs))
    if (const Plug group = groupPlug(blend, g, target); graph.elementExists(group))
      HOST_TRY(graph.removeElement(group, true));
  const Plug own = blend.plug("weight").element(target);
  return graph.elementExists(own) ? graph.removeElement(own, true) : Result<void>();
}

std::string blendMismatch(Node& base, Node& target) {
  const auto own = evaluatedMesh(base), other = evaluatedMesh(target);
  if (!own) return own.error().message;
  if (!other) return other.error().message;
  const auto counts = [](const mesh::Mesh& mesh) {
    return std::array{mesh.vertexCount(), mesh.edgeCount(), mesh.faceCount()};
  };
  if (counts(*own) == counts(*other)) return {};
  return fmt::format("'{}' has {} vertices, {} edges and {} faces, '{}' {}, {} and {}", base.name(),
                     own->vertexCount(), own->edgeCount(), own->faceCount(), target.name(),
                     other->vertexCount(), other->edgeCount(), other->faceCount());
}

Result<void> keepBlendTargets(scene::Document& document, const std::vector<Node*>& going) {
  dg::Graph& graph = document.graph();
  std::vector<Node*> all;
  for (Node* node : going) collectBelow(*node, all);
  for (Node* node : all) {
    if (!node->type().isA("mesh")) continue;
    for (const auto& [from, to] : graph.outgoing(*node)) {
      const bool isTarget = to.attribute()->longName == "inputGeomTarget" &&
                            to.node()->type().isA("blendShape") &&
                            std::ranges::find(all, to.node()) == all.end();
      if (isTarget) HOST_TRY(keepAsOffsets(graph, to));
    }
  }
  return {};
}

}  // namespace host::nodes
