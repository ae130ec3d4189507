// polyForceUV: UVs for faces whatever they had: a unit square each, unshared, or as seen.
#include "host/builtins/uv/uv_edits.h"
#include "host/nodes/mesh_shape.h"
#include "host/ops/uv/edit_uvs.h"
#include "host/ops/uv/uv_ids.h"

namespace host::builtins {

namespace {

Result<void> force(const ParsedArgs& args, mesh::Mesh& mesh, std::vector<FaceId> faces) {
  int set = mesh.currentUvSet();
  const std::string name = args.text("uvSetName");
  if (args.boolean("createNewMap")) {
    const std::string wanted = name.empty() ? "uvSet" : name;
    std::string free = wanted;
    for (int number = 1; mesh.findUvSet(free) >= 0; ++number)
      free = wanted + std::to_string(number);
    mesh::UvSet copy = mesh.uvSet(set);
    copy.name = free;
    set = mesh.addUvSet(std::move(copy));
    mesh.setCurrentUvSet(set);
  } else {
    const auto found = ops::findUvSet(mesh, name);
    if (!found) return failWith(found.error());
    set = *found;
  }
  if (args.has("numItems") && args.integer("numItems") < static_cast<int>(faces.size()))
    faces.resize(static_cast<std::size_t>(args.integer("numItems")));
  if (args.has("unitize")) ops::unitizeUvs(mesh, set, faces);
  if (args.has("unshare")) ops::unshareUvs(mesh, set, faces);
  const bool isLocal = !args.has("global");
  if (args.has("flipHorizontal")) ops::flipUvs(mesh, set, faces, {false, isLocal});
  if (args.has("flipVertical")) ops::flipUvs(mesh, set, faces, {true, isLocal});
  if (args.has("normalize")) {
    const std::string how = args.text("normalize");
    if (how != "collective" && how != "separate")
      return fail("-normalize is collective or separate, not '{}'.", how);
    ops::NormalizeUvsOptions options;
    options.isCollective = how == "collective";
    options.keepsRatio = args.has("preserveAspectRatio");
    ops::normalizeUvs(mesh, set, faces, options);
  }
  return {};
}

CommandResult polyForceUv(Context& context, const ParsedArgs& args) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  auto items = meshItems(*list);
  if (!items) return failWith(std::move(items.error()));
  if (items->empty()) return fail("polyForceUV: name or select polygon objects or faces.");
  if (args.has("cameraProjection")) {
    std::vector<mel::Value> words{mel::Value(std::string("-md")), mel::Value(std::string("c"))};
    if (args.has("uvSetName")) {
      words.emplace_back(std::string("-uvs"));
      words.emplace_back(args.text("uvSetName"));
    }
    if (args.boolean("createNewMap")) {
      words.emplace_back(std::string("-cm"));
      words.emplace_back(true);
    }
    for (const std::string& name : list->names()) words.emplace_back(name);
    auto done = context.session.callCommand("polyPlanarProjection", words);
    return done ? CommandResult(mel::Value(true)) : done;
  }
  for (const MeshItem& item : *items) {
    mesh::Mesh mesh = item.mesh;
    if (auto done = force(args, mesh, item.ids(scene::ComponentType::Face)); !done)
      return fail("polyForceUV: '{}': {}", item.path.transform().partialName(),
                  done.error().message);
    HOST_TRY(nodes::setEvaluatedMesh(*item.path.node(), std::move(mesh)));
  }
  return mel::Value(true);
}

}  // namespace

void registerPolyForceUv(CommandRegistry& registry) {
  Syntax syntax;
  syntax.flag("cp", "cameraProjection")
      .flag("cm", "createNewMap", {ArgType::Bool})
      .flag("fh", "flipHorizontal")
      .flag("fv", "flipVertical")
      .flag("g", "global")
      .flag("l", "local")
      .flag("nor", "normalize", {ArgType::String})
      .flag("ni", "numItems", {ArgType::Unsigned})
      .flag("par", "preserveAspectRatio")
      .flag("uni", "unitize")
      .flag("u", "unshare")
      .flag("uvs", "uvSetName", {ArgType::String})
      .objects(0, -1, true);
  define(registry, "polyForceUV", syntax, polyForceUv);
}

}  // namespace host::builtins
