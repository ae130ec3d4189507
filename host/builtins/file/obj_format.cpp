#include <filesystem>
#include <unordered_set>

#include "host/base/messages.h"
#include "host/builtins/file/formats.h"
#include "host/builtins/file/obj_materials.h"
#include "host/io/finite_mesh.h"
#include "host/io/obj_reader.h"
#include "host/io/obj_writer.h"
#include "host/io/whole_file.h"
#include "host/nodes/mesh_components.h"
#include "host/nodes/mesh_shape.h"
#include "host/nodes/sets.h"
#include "host/scene/dag_paths.h"

namespace host::builtins {

namespace {

/// Names such as "Body.001" or "left arm" keep what a node's name can hold; the document replaces
/// the rest.
std::string objectName(const io::ObjObject& object) {
  if (!object.name.empty() && object.name != "default") return object.name;
  if (object.groups.size() == 1 && object.groups.front().name != "default")
    return object.groups.front().name;
  return "polySurface#";
}

/// The name of an imported node: in the namespace that was asked for, or with the prefix where it
/// would clash.
std::string importedName(const scene::Document& document, const FileReadOptions& options,
                         const std::string& wanted) {
  if (!options.isImport) return wanted;
  if (!options.nameSpace.empty() && options.nameSpace != ":")
    return options.nameSpace + ":" + wanted;
  const bool isTaken = !document.nodesNamed(wanted).empty();
  const bool isNumbered = wanted.ends_with('#');
  if (options.clashPrefix.empty() || (!options.renamesAll && (!isTaken || isNumbered)))
    return wanted;
  return options.clashPrefix + "_" + wanted;
}

Result<dg::Node*> addObject(scene::Document& document, const std::string& name,
                            io::ObjObject object, ObjShading& shading) {
  auto transform = document.createNode("transform", name);
  if (!transform) return failWith(std::move(transform.error()));
  auto shape = document.createNode("mesh", shapeNameFor((*transform)->name()), transform->get());
  if (!shape) return failWith(std::move(shape.error()));
  HOST_TRY(nodes::setStoredMesh(**shape, object.mesh));
  HOST_TRY(shading.assign(**shape, object));
  return transform->get();
}

Result<FileFormat::Placing> read(Context&, const std::string& path,
                                 const FileReadOptions& options) {
  auto read = io::readObj(path);
  if (!read) return failWith(std::move(read.error()));
  for (const auto& [warning, count] : read->warnings)
    postMessage(MessageKind::Warning, count > 1
                                          ? fmt::format("{}: {} ({} times)", path, warning, count)
                                          : fmt::format("{}: {}", path, warning));
  auto materials = readObjMaterials(*read, path);
  auto scene = std::make_shared<io::ObjScene>(std::move(*read));
  return [scene, materials, path, options](Context& context) -> Result<std::vector<dg::Node*>> {
    scene::Document& document = context.document;
    const auto nodeName = [&](const std::string& wanted) {
      return importedName(document, options, wanted);
    };
    ObjShading shading(document, materials,
                       std::filesystem::path(path).parent_path().generic_string(), nodeName);
    std::vector<dg::Node*> made;
    for (io::ObjObject& object : scene->objects) {
      const std::string name = nodeName(objectName(object));
      auto node = addObject(document, name, std::move(object), shading);
      if (!node) return failWith(std::move(node.error()));
      made.push_back(*node);
    }
    return made;
  };
}

/// Writes the materials beside the file. The file names its library by that name alone.
Result<void> writeLibrary(const std::string& path,
                          const std::map<std::string, io::MtlMaterial>& library,
                          io::ObjScene& scene) {
  if (library.empty()) return {};
  std::filesystem::path file(path);
  file.replace_extension(".mtl");
  std::vector<io::MtlMaterial> materials;
  for (const auto& [name, material] : library) materials.push_back(material);
  HOST_TRY(io::writeFileAtomically(file.string(), io::formatMtl(materials)));
  scene.materialLibraries.push_back(file.filename().string());
  return {};
}

/// OBJ files hold world-space points; an object at rest keeps its bits.
mesh::Mesh inWorldSpace(mesh::Mesh mesh, const math::Matrix4& matrix) {
  if (math::isIdentity(matrix)) return mesh;
  for (math::Vec3f& point : mesh.editPoints())
    point = math::transformPoint(math::Vec3(point), matrix).toFloat();
  if (mesh.lockedNormals().normals.empty()) return mesh;
  for (math::Vec3f& normal : mesh.editLockedNormals().normals)
    normal = math::normalized(math::transformNormal(math::Vec3(normal), matrix)).toFloat();
  return mesh;
}

struct PathHash {
  std::size_t operator()(const scene::DagPath& path) const { return scene::hashOf(path); }
};

/// Every mesh below the items; components stand for their object.
Result<std::vector<scene::DagPath>> meshesBelow(const scene::SelectionList& list) {
  std::vector<scene::DagPath> paths;
  std::unordered_set<scene::DagPath, PathHash> seen;
  scene::PlaceBudget budget;
  const auto visit = [&](scene::PathWalk walk) {
    while (!walk.isDone()) {
      if (walk.depth() > 0 && !scene::isTransform(walk.node())) {
        walk.skipBelow();
        continue;
      }
      for (const scene::DagPath& shape : nodes::meshPaths(walk.path()))
        if (seen.insert(shape).second) paths.push_back(shape);
      walk.next();
    }
  };
  for (const scene::SelectionItem& item : list.items())
    if (item.isDag())
      visit(scene::PathWalk(item.path, scene::PathWalk::Children::InOrder, &budget));
  if (budget.leftOut())
    return fail(
        "'{}' and others stand in more than {} places, which are too many to write one by "
        "one; nothing was written.",
        budget.leftOut()->name(), scene::kMostPaths);
  return paths;
}

bool isOn(const std::string& options, std::string_view name) {
  return options.find(std::string(name) + "=0") == std::string::npos;
}

Result<void> write(Context& context, const std::string& path, const FileWriteOptions& wanted) {
  const std::string& options = wanted.options;
  scene::SelectionList list = context.document.selection();
  if (!wanted.onlySelected) {
    list.clear();
    for (scene::Node* node : context.document.worldChildren()) list.add(scene::DagPath({node}));
  }
  const auto shapes = meshesBelow(list);
  if (!shapes) return failWith(shapes.error());
  io::ObjScene scene;
  std::map<std::string, io::MtlMaterial> library;
  const std::string folder = std::filesystem::path(path).parent_path().string();
  for (const scene::DagPath& shape : *shapes) {
    auto mesh = nodes::evaluatedMesh(*shape.node());
    if (!mesh) return failWith(std::move(mesh.error()));
    io::ObjObject object;
    object.name = shape.transform().node()->name();
    object.mesh = inWorldSpace(std::move(*mesh), shape.inclusiveMatrix());
    if (const std::size_t bad = io::makeFinite(object.mesh); bad > 0)
      postMessage(
          MessageKind::Warning,
          fmt::format("'{}': {} numbers that are not finite are saved as 0", object.name, bad));
    object.statesSmoothing = true;
    HOST_TRY(describeShading(context.document, shape, folder, object, library));
    scene.objects.push_back(std::move(object));
  }
  if (scene.objects.empty()) return fail("There are no polygon objects to write to '{}'.", path);
  io::ObjWriteOptions how;
  if (!isOn(options, "normals")) how.normals = io::ObjWriteOptions::Normals::Never;
  how.groups = isOn(options, "groups");
  how.materials = isOn(options, "materials") && wanted.withShading;
  how.smoothing = isOn(options, "smoothing");
  if (how.materials) HOST_TRY(writeLibrary(path, library, scene));
  return io::writeObj(path, scene, how);
}

}  // namespace

FileFormat objFormat() {
  FileFormat format;
  format.name = "OBJ";
  format.otherNames = {"OBJexport", "obj"};
  format.extensions = {".obj"};
  format.read = read;
  format.write = write;
  return format;
}

}  // namespace host::builtins
