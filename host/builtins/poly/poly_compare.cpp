// polyCompare: in what two meshes differ.
#include <algorithm>

#include "host/builtins/common/command.h"
#include "host/nodes/mesh_access.h"
#include "host/nodes/mesh_components.h"
#include "host/nodes/mesh_shape.h"

namespace host::builtins {

namespace {

using mesh::Mesh;

enum Difference {
  kVertices = 1,
  kEdges = 2,
  kFaces = 4,
  kUvSets = 8,
  kUvs = 16,
  kColorSets = 32,
  kColors = 64,
  kUserNormals = 128,
};

struct Asked {
  const char *shortName, *longName;
  int difference;
};
constexpr Asked kAsked[] = {
    {"v", "vertices", kVertices},        {"e", "edges", kEdges},
    {"fd", "faceDesc", kFaces},          {"uss", "uvSets", kUvSets},
    {"uv", "uvSetIndices", kUvs},        {"cs", "colorSets", kColorSets},
    {"csi", "colorSetIndices", kColors}, {"un", "userNormals", kUserNormals},
};

bool differs(const Mesh& a, const Mesh& b, int what) {
  switch (what) {
    case kVertices:
      return !std::ranges::equal(a.points(), b.points());
    case kEdges:
      if (a.topology().edges != b.topology().edges) return true;
      for (EdgeId e = 0; e < a.edgeCount(); ++e)
        if (a.isEdgeSmooth(e) != b.isEdgeSmooth(e)) return true;
      return false;
    case kFaces:
      return a.topology().faceOffsets != b.topology().faceOffsets ||
             a.topology().cornerVertices != b.topology().cornerVertices ||
             a.topology().cornerEdges != b.topology().cornerEdges;
    case kUvSets:
    case kUvs:
      if (a.uvSetCount() != b.uvSetCount()) return true;
      for (int i = 0; i < a.uvSetCount(); ++i)
        if (what == kUvSets
                ? a.uvSet(i).name != b.uvSet(i).name || a.uvSet(i).points != b.uvSet(i).points
                : a.uvSet(i).cornerIds != b.uvSet(i).cornerIds)
          return true;
      return false;
    case kColorSets:
    case kColors:
      if (a.colorSetCount() != b.colorSetCount()) return true;
      for (int i = 0; i < a.colorSetCount(); ++i)
        if (what == kColorSets ? a.colorSet(i).name != b.colorSet(i).name ||
                                     a.colorSet(i).colors != b.colorSet(i).colors
                               : a.colorSet(i).cornerIds != b.colorSet(i).cornerIds)
          return true;
      return false;
    default:
      return a.lockedNormals() != b.lockedNormals();
  }
}

/// The sum of what differs; 0 for meshes that are alike. Without flags everything is compared.
CommandResult polyCompare(Context& context, const ParsedArgs& args) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  const auto items = nodes::meshItems(*list);
  if (!items) return failWith(items.error());
  if (items->size() != 2) return fail("polyCompare: name or select two polygon objects.");
  const auto first = nodes::evaluatedMesh(*(*items)[0].path.node()),
             second = nodes::evaluatedMesh(*(*items)[1].path.node());
  if (!first || !second) return failWith(first ? second.error() : first.error());
  bool asksAll = true;
  for (const Asked& each : kAsked) asksAll = asksAll && !args.has(each.longName);
  int sum = 0;
  for (const Asked& each : kAsked)
    if ((asksAll || args.has(each.longName)) && differs(*first, *second, each.difference))
      sum += each.difference;
  return mel::Value(sum);
}

}  // namespace

void registerPolyCompare(CommandRegistry& registry) {
  Syntax syntax;
  for (const Asked& each : kAsked) syntax.flag(each.shortName, each.longName);
  defineQuery(registry, "polyCompare", syntax.objects(0, 2, true), polyCompare);
}

}  // namespace host::builtins
