#include <algorithm>
#include <array>

#include "host/builtins/select/component_picks.h"

namespace host::builtins {

namespace {

using scene::Component;
using scene::ComponentType;

struct TypeFlag {
  const char *fromShort, *fromLong, *toShort, *toLong;
  ComponentType type;
};
constexpr std::array<TypeFlag, 5> kTypes = {{
    {"fv", "fromVertex", "tv", "toVertex", ComponentType::Vertex},
    {"fe", "fromEdge", "te", "toEdge", ComponentType::Edge},
    {"ff", "fromFace", "tf", "toFace", ComponentType::Face},
    {"fuv", "fromUV", "tuv", "toUV", ComponentType::Uv},
    {"fvf", "fromVertexFace", "tvf", "toVertexFace", ComponentType::VertexFace},
}};

/// Whether components of this type take part: all do when no type is asked for.
bool isSource(const ParsedArgs& args, ComponentType type) {
  bool isAnyGiven = false;
  for (const TypeFlag& flag : kTypes) {
    isAnyGiven = isAnyGiven || args.has(flag.fromLong);
    if (flag.type == type && args.has(flag.fromLong)) return true;
  }
  return !isAnyGiven;
}

/// What lies on the rim of faces, where they meet others or the mesh ends.
std::vector<Index> onRim(const MeshItem& faces, ComponentType target) {
  const std::vector<EdgeId> rim =
      mesh::boundaryEdges(faces.mesh, viewIds<FaceId>(convertedIds(faces, ComponentType::Face)));
  if (target == ComponentType::Edge) return copyIds(rim);
  const int set = faces.mesh.currentUvSet();
  std::vector<Index> ids = mesh::convertComponents(faces.mesh, mesh::ComponentType::Edge, rim,
                                                   target, mesh::Conversion::Connected, set);
  const std::vector<Index> own = convertedIds(faces, target);
  std::erase_if(ids, [&](Index id) { return !std::binary_search(own.begin(), own.end(), id); });
  return ids;
}

std::vector<Index> converted(const MeshItem& item, const ParsedArgs& args, ComponentType target) {
  const mesh::Conversion how = args.has("border")     ? mesh::Conversion::Border
                               : args.has("internal") ? mesh::Conversion::Contained
                                                      : mesh::Conversion::Connected;
  MeshItem sources = item;
  if (item.isObject()) {
    // A whole object is all of its faces: their rim is where the mesh ends.
    if (how != mesh::Conversion::Border || target == ComponentType::Face)
      return convertedIds(item, target);
    sources.components = {Component::all(ComponentType::Face)};
    return onRim(sources, target);
  }
  std::erase_if(sources.components,
                [&](const Component& component) { return !isSource(args, component.type()); });
  if (sources.isObject()) return {};
  const bool isOfFaces =
      std::all_of(sources.components.begin(), sources.components.end(),
                  [](const Component& each) { return each.type() == ComponentType::Face; });
  if (how == mesh::Conversion::Border && isOfFaces && target != ComponentType::Face)
    return onRim(sources, target);
  return convertedIds(sources, target, how);
}

CommandResult convert(Context& context, const ParsedArgs& args) {
  auto items = namedMeshItems(context, args);
  if (!items) return failWith(std::move(items.error()));
  scene::SelectionList result;
  for (const MeshItem& item : *items) {
    for (const TypeFlag& flag : kTypes) {
      if (!args.has(flag.toLong)) continue;
      result.add(item.path,
                 componentFromIds(item.mesh, flag.type, converted(item, args, flag.type)));
    }
  }
  return toValue(result.names());
}

}  // namespace

void registerPolyListComponentConversion(CommandRegistry& registry) {
  Syntax syntax;
  for (const TypeFlag& flag : kTypes)
    syntax.flag(flag.fromShort, flag.fromLong).flag(flag.toShort, flag.toLong);
  defineQuery(registry, "polyListComponentConversion",
              syntax.flag("in", "internal").flag("bo", "border").objects(0, -1, true), convert);
}

}  // namespace host::builtins
