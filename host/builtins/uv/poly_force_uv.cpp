// polyForceUV: UVs for faces whatever they had: a unit square each, unshared, or as seen.
#include "host/builtins/uv/uv_edits.h"
#include "host/modelling/declare/history_command.h"
#include "host/nodes/mesh_shape.h"
#include "host/ops/uv/edit_uvs.h"
#include "host/ops/uv/uv_ids.h"

namespace host::builtins {

namespace {

using scene::ComponentType;

/// The name of the set that -createNewMap makes.
std::string newSetName(const ParsedArgs& args, const mesh::Mesh& mesh) {
  const std::string name = args.text("uvSetName");
  const std::string wanted = name.empty() ? "uvSet" : name;
  std::string free = wanted;
  for (int number = 1; mesh.findUvSet(free) >= 0; ++number) free = wanted + std::to_string(number);
  return free;
}

/// Does to a set of a mesh what the flags say.
Result<void> force(const ParsedArgs& args, mesh::Mesh& mesh, int set,
                   std::span<const FaceId> faces) {
  if (args.has("unitize")) ops::unitizeUvs(mesh, set, faces);
  if (args.has("unshare")) ops::unshareUvs(mesh, set, faces);
  const bool isLocal = !args.has("global");
  if (args.has("flipHorizontal")) ops::flipUvs(mesh, set, faces, {false, isLocal});
  if (args.has("flipVertical")) ops::flipUvs(mesh, set, faces, {true, isLocal});
  if (args.has("normalize")) {
    const std::string how = args.text("normalize");
    if (how != "collective" && how != "separate")
      return fail(ErrorKind::BadArgument, "-normalize is collective or separate, not '{}'.", how);
    ops::NormalizeUvsOptions options;
    options.isCollective = how == "collective";
    options.keepsRatio = args.has("preserveAspectRatio");
    ops::normalizeUvs(mesh, set, faces, options);
  }
  return {};
}

/// Runs a command on components of one mesh, as one step of the command that runs now.
Result<void> runOn(Context& context, const MeshItem& item, const char* command,
                   std::vector<mel::Value> words, ComponentType type, std::vector<Index> ids) {
  scene::SelectionList list;
  list.add(item.path, nodes::componentFromIds(item.mesh, type, std::move(ids)));
  for (const std::string& name : list.names()) words.emplace_back(name);
  const auto done = context.session.callCommand(command, words);
  return done ? Result<void>() : failWith(done.error());
}

mel::Value word(std::string text) {
  return mel::Value(std::move(text));
}

/// Has the history bring what was made of a set: corners that no longer share their UVs are cut
/// apart, then all UVs are moved to their places.
Result<void> keepInHistory(Context& context, MeshItem item, int set, const mesh::UvSet& wanted,
                           std::span<const FaceId> faces) {
  dg::Node& shape = *item.path.node();
  const mesh::UvSet& now = item.mesh.uvSet(set);
  const std::string name = now.name;
  const auto isBare = [&](FaceId f) {
    return item.mesh.cornerUv(set, item.mesh.firstCorner(f)) == kNone;
  };
  if (now.cornerIds != wanted.cornerIds) {
    std::vector<Index> bare, edges;
    for (const FaceId f : faces) {
      if (isBare(f)) bare.push_back(f);
      const auto around = item.mesh.faceEdges(f);
      edges.insert(edges.end(), around.begin(), around.end());
    }
    mesh::sortUnique(edges);
    if (!bare.empty())
      HOST_TRY(
          runOn(context, item, "polyPlanarProjection",
                {word("-md"), word("b"), word("-ibd"), mel::Value(false), word("-uvs"), word(name)},
                ComponentType::Face, std::move(bare)));
    HOST_TRY(runOn(context, item, "polyMapCut", {word("-uvs"), word(name)}, ComponentType::Edge,
                   std::move(edges)));
    auto cut = nodes::evaluatedMesh(shape);
    if (!cut) return failWith(cut.error());
    item.mesh = *std::move(cut);
  }
  mesh::UvSet moved = item.mesh.uvSet(set);
  for (const FaceId f : faces)
    for (CornerId c = item.mesh.firstCorner(f); c < item.mesh.firstCorner(f + 1); ++c) {
      const auto corner = at(c);
      if (wanted.cornerIds.empty() || wanted.cornerIds[corner] == kNone) continue;
      moved.points[at(moved.cornerIds[corner])] = wanted.points[at(wanted.cornerIds[corner])];
    }
  return placeMovedUvs(context.document, item, set, moved);
}

Result<void> forceOne(Context& context, const ParsedArgs& args, MeshItem item) {
  dg::Node& shape = *item.path.node();
  const bool makesSet = args.boolean("createNewMap");
  const bool hasHistory = nodes::hasHistory(shape);
  std::string name = args.text("uvSetName");
  if (makesSet) {
    name = newSetName(args, item.mesh);
    if (hasHistory) {
      HOST_TRY(runOn(context, item, "polyCopyUV",
                     {word("-ibd"), mel::Value(false), word("-cm"), mel::Value(true), word("-uvs"),
                      word(name)},
                     ComponentType::Face,
                     MeshItem{item.path, item.mesh, {}}.ids(ComponentType::Face)));
      auto copied = nodes::evaluatedMesh(shape);
      if (!copied) return failWith(copied.error());
      item.mesh = *std::move(copied);
    } else {
      mesh::UvSet copy = item.mesh.uvSet(item.mesh.currentUvSet());
      copy.name = name;
      item.mesh.setCurrentUvSet(item.mesh.addUvSet(std::move(copy)));
    }
  }
  const auto set = ops::findUvSet(item.mesh, name);
  if (!set) return failWith(set.error());
  std::vector<FaceId> faces = item.idsOf<FaceId>();
  if (args.has("numItems") && args.integer("numItems") < static_cast<int>(faces.size()))
    faces.resize(at(args.integer("numItems")));
  mesh::Mesh mesh = item.mesh;
  HOST_TRY(force(args, mesh, *set, faces));
  if (!hasHistory) return nodes::setEvaluatedMesh(shape, std::move(mesh));
  const mesh::UvSet wanted = mesh.uvSet(*set);
  return keepInHistory(context, std::move(item), *set, wanted, faces);
}

/// -cameraProjection: as the camera sees the faces.
CommandResult projectFromCamera(Context& context, const ParsedArgs& args,
                                const scene::SelectionList& list) {
  std::vector<mel::Value> words{word("-md"), word("c")};
  if (args.has("uvSetName")) {
    words.push_back(word("-uvs"));
    words.push_back(word(args.text("uvSetName")));
  }
  if (args.boolean("createNewMap")) {
    words.push_back(word("-cm"));
    words.emplace_back(true);
  }
  for (const std::string& name : list.names()) words.emplace_back(name);
  auto done = context.session.callCommand("polyPlanarProjection", words);
  return done ? CommandResult(mel::Value(true)) : done;
}

CommandResult polyForceUv(Context& context, const ParsedArgs& args) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  auto items = modelling::distinctMeshItems(*list);
  if (!items) return failWith(std::move(items.error()));
  if (items->empty()) return fail("polyForceUV: name or select polygon objects or faces.");
  if (args.has("cameraProjection")) return projectFromCamera(context, args, *list);
  for (MeshItem& item : *items) {
    const std::string name = item.path.transform().partialName();
    if (auto done = forceOne(context, args, std::move(item)); !done)
      return failAt(fmt::format("polyForceUV: '{}'", name), done.error());
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
