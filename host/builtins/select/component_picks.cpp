#include "host/builtins/select/component_picks.h"

#include "host/workspace/edit_hooks.h"

namespace host::builtins {

namespace {

/// The kind of `selectType` that stands for a component type.
const char* kindName(scene::ComponentType type) {
  switch (type) {
    case scene::ComponentType::Vertex:
      return "vertex";
    case scene::ComponentType::Edge:
      return "edge";
    case scene::ComponentType::Face:
      return "facet";
    case scene::ComponentType::Uv:
      return "polymeshUV";
    case scene::ComponentType::VertexFace:
      return "polymeshVtxFace";
  }
  return "";
}

}  // namespace

Result<std::vector<nodes::MeshItem>> namedMeshItems(Context& context, const ParsedArgs& args) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  return nodes::meshItems(*list);
}

void selectPicks(Context& context, const std::vector<ComponentPick>& picks) {
  edits::selectPicks(context.document, picks);
  if (!picks.empty()) workspace::pickComponents(context.session, {kindName(picks.front().type)});
}

}  // namespace host::builtins
