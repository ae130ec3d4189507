#include <algorithm>

#include "host/builtins/poly/modelling_command.h"
#include "host/math/box.h"

namespace host::builtins {

namespace {

/// The node's attributes as the flags left them.
class MirrorNode {
 public:
  MirrorNode(dg::Graph& graph, dg::Node& node) : graph_(graph), node_(node) {}
  [[nodiscard]] std::int64_t number(const char* attribute) const {
    const auto value = graph_.get(node_.plug(attribute));
    const auto* integer = value ? std::get_if<std::int64_t>(&*value) : nullptr;
    return integer ? *integer : 0;
  }
  [[nodiscard]] double length(const char* attribute) const {
    const auto value = graph_.get(node_.plug(attribute));
    const auto* real = value ? std::get_if<double>(&*value) : nullptr;
    return real ? *real : 0;
  }
  [[nodiscard]] int axis() const {
    const std::int64_t both = number("direction");
    const std::int64_t axis = both >= 0 ? both / 2 : number("axis");
    return static_cast<int>(std::clamp<std::int64_t>(axis, 0, 2));
  }
  [[nodiscard]] bool isNegative() const {
    const std::int64_t both = number("direction");
    return (both >= 0 ? both % 2 : number("axisDirection")) != 0;
  }

 private:
  dg::Graph& graph_;
  dg::Node& node_;
};

/// The side of the object's box that the copy goes to, or its middle when that is cut there.
math::Vec3 placeOnBox(const MirrorNode& node, const mesh::Mesh& mesh, const math::Matrix4& space) {
  math::Box box;
  for (const math::Vec3f& point : mesh.points())
    box.add(math::transformPoint(math::Vec3(point), space));
  math::Vec3 place = box.center();
  const int axis = node.axis();
  if (node.number("cutMesh") == 0 && !box.isEmpty())
    place[axis] = node.isNegative() ? box.min[axis] : box.max[axis];
  return place;
}

/// Where the mirror plane stands without -pivot: as mirrorAxis says, moved by mirrorPosition.
Result<void> placePlane(Context& context, const ParsedArgs& args, dg::Node& node,
                        const MeshItem& item) {
  enum MirrorAxis { kBoundingBox, kObject, kWorld };
  dg::Graph& graph = context.document.graph();
  const MirrorNode mirror(graph, node);
  if (mirror.number("mirrorAxis") == kWorld)
    HOST_TRY(graph.set(node.plug("worldSpace"), std::int64_t{1}));
  for (const char* flag : {"pivot", "pivotX", "pivotY", "pivotZ"})
    if (args.has(flag)) return {};
  const math::Matrix4 space =
      mirror.number("worldSpace") != 0 ? item.path.inclusiveMatrix() : math::Matrix4();
  math::Vec3 place;
  if (mirror.number("mirrorAxis") == kBoundingBox) place = placeOnBox(mirror, item.mesh, space);
  if (mirror.number("mirrorAxis") == kObject) place = math::transformPoint(math::Vec3(), space);
  place[mirror.axis()] += mirror.length("mirrorPosition");
  return graph.setVec3(node.plug("pivot"), place);
}

}  // namespace

void registerPolyMirrorFace(CommandRegistry& registry) {
  HistoryFlags flags = {{"a", "axis", {ArgType::Int}},
                        {"ad", "axisDirection", {ArgType::Int}},
                        {"cm", "cutMesh", {ArgType::Bool}},
                        {"mm", "mergeMode", {ArgType::Int}},
                        {"mtt", "mergeThresholdType", {ArgType::Int}},
                        {"ma", "mirrorAxis", {ArgType::Int}},
                        {"mps", "mirrorPosition", {ArgType::Distance}},
                        {"mt", "mergeThreshold", {ArgType::Distance}},
                        {"fuv", "flipUVs", {ArgType::Int}},
                        {"sa", "smoothingAngle", {ArgType::Angle}},
                        {"d", "direction", {ArgType::Int}},
                        worldSpaceFlag()};
  addTriple(flags, "p", "pivot", ArgType::Distance);
  defineModelling(registry,
                  {.command = "polyMirrorFace",
                   .nodeType = "polyMirror",
                   .works = scene::ComponentType::Face,
                   .leaves = Leaves::Made},
                  std::move(flags),
                  [](Context& context, const ParsedArgs& args, dg::Node& node, const MeshItem& item,
                     const std::vector<FaceId>&) { return placePlane(context, args, node, item); });
}

}  // namespace host::builtins
