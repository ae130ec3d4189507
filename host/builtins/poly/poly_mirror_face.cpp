#include <algorithm>

#include "host/builtins/poly/modelling_command.h"
#include "host/math/box.h"

namespace host::builtins {

namespace {

/// Where the mirror plane stands without -pivot: at the side of the object's box that the copy goes
/// to, or at its middle when that is cut there.
Result<void> placePlane(Context& context, const ParsedArgs& args, dg::Node& node,
                        const MeshItem& item) {
  dg::Graph& graph = context.document.graph();
  for (const char* flag : {"pivot", "pivotX", "pivotY", "pivotZ"})
    if (args.has(flag)) return {};
  const auto number = [&](const char* attribute) {
    const auto value = graph.get(node.plug(attribute));
    const auto* integer = value ? std::get_if<std::int64_t>(&*value) : nullptr;
    return integer ? *integer : 0;
  };
  const math::Matrix4 space =
      number("worldSpace") != 0 ? item.path.inclusiveMatrix() : math::Matrix4();
  math::Box box;
  for (const math::Vec3f& point : item.mesh.points())
    box.add(math::transformPoint(math::Vec3(point), space));
  math::Vec3 pivot = box.center();
  const std::int64_t both = number("direction");
  const auto axis =
      static_cast<int>(std::clamp<std::int64_t>(both >= 0 ? both / 2 : number("axis"), 0, 2));
  const bool isNegative = (both >= 0 ? both % 2 : number("axisDirection")) != 0;
  if (number("cutMesh") == 0 && !box.isEmpty())
    pivot[axis] = isNegative ? box.min[axis] : box.max[axis];
  return graph.setVec3(node.plug("pivot"), pivot);
}

}  // namespace

void registerPolyMirrorFace(CommandRegistry& registry) {
  HistoryFlags flags = {{"a", "axis", {ArgType::Int}},
                        {"ad", "axisDirection", {ArgType::Int}},
                        {"cm", "cutMesh", {ArgType::Bool}},
                        {"mm", "mergeMode", {ArgType::Int}},
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
