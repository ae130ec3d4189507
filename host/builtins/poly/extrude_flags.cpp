#include "host/builtins/poly/extrude_flags.h"

#include "host/math/box.h"

namespace host::builtins {

HistoryFlags extrudeFlags() {
  constexpr ArgType kLength = ArgType::Distance, kAngle = ArgType::Angle, kReal = ArgType::Double;
  HistoryFlags flags = {
      {"d", "divisions", {ArgType::Int}}, {"off", "offset", {kLength}},
      {"tk", "thickness", {kLength}},     {"tp", "taper", {kReal}},
      {"twt", "twist", {kAngle}},         {"sma", "smoothingAngle", {kAngle}},
      {"rs", "randomSeed", {ArgType::Int}}, worldSpaceFlag(),
  };
  addTriple(flags, "lt", "localTranslate", kLength);
  addTriple(flags, "lr", "localRotate", kAngle);
  addTriple(flags, "ls", "localScale", kReal);
  addTriple(flags, "t", "translate", kLength);
  addTriple(flags, "ro", "rotate", kAngle, "r");
  addTriple(flags, "s", "scale", kReal);
  addTriple(flags, "pvt", "pivot", kLength, "pv");
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
