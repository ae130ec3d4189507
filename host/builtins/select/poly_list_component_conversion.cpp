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

std::vector<Index> converted(const MeshItem& item, const ParsedArgs& args, ComponentType target) {
  const mesh::Conversion how = args.has("border")     ? mesh::Conversion::Border
                               : args.has("internal") ? mesh::Conversion::Contained
                                                      : mesh::Conversion::Connected;
  if (item.isObject()) return convertedIds(item, target);
  MeshItem sources = item;
  std::erase_if(sources.components,
                [&](const Component& component) { return !isSource(args, component.type()); });
  return sources.isObject() ? std::vector<Index>{} : convertedIds(sources, target, how);
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
