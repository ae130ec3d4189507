#include "host/builtins/poly/extrude_flags.h"

#include "host/math/box.h"

namespace host::builtins {

HistoryFlags placementFlags() {
  constexpr ArgType kLength = ArgType::Distance, kAngle = ArgType::Angle, kReal = ArgType::Double;
  HistoryFlags flags = {
      {"off", "offset", {kLength}}, {"rs", "randomSeed", {ArgType::Int}}, worldSpaceFlag()};
  addTriple(flags, "lt", "localTranslate", kLength);
  addTriple(flags, "lr", "localRotate", kAngle);
  addTriple(flags, "ls", "localScale", kReal);
  addTriple(flags, "t", "translate", kLength);
  addTriple(flags, "ro", "rotate", kAngle, "r");
  addTriple(flags, "s", "scale", kReal);
  addTriple(flags, "pvt", "pivot", kLength, "pv");
  return flags;
}

HistoryFlags extrudeFlags() {
  HistoryFlags flags = placementFlags();
  for (const HistoryFlag& flag : HistoryFlags{{"d", "divisions", {ArgType::Int}},
                                              {"tk", "thickness", {ArgType::Distance}},
                                              {"tp", "taper", {ArgType::Double}},
                                              {"twt", "twist", {ArgType::Angle}},
                                              {"sma", "smoothingAngle", {ArgType::Angle}}})
    flags.push_back(flag);
  return flags;
}

Result<void> setExtrudeFrame(Context& context, const ParsedArgs& args, dg::Node& node,
                             const MeshItem& item, const std::vector<VertexId>& vertices) {
  dg::Graph& graph = context.document.graph();
  const auto inWorld = graph.get(node.plug("worldSpace"));
  const bool isWorld = inWorld && !dg::equal(*inWorld, std::int64_t{0});
  const math::Matrix4 space = isWorld ? item.path.inclusiveMatrix() : math::Matrix4();
  math::Box box;
  for (const VertexId vertex : vertices)
    box.add(math::transformPoint(item.mesh.point(vertex), space));
  if (box.isEmpty()) return {};
  HOST_TRY(graph.setVec3(node.plug("compBoundingBoxMin"), box.min));
  HOST_TRY(graph.setVec3(node.plug("compBoundingBoxMax"), box.max));
  for (const char* flag : {"pivot", "pivotX", "pivotY", "pivotZ"})
    if (args.has(flag)) return {};
  return graph.setVec3(node.plug("pivot"), (box.min + box.max) * 0.5);
}

}  // namespace host::builtins
