#include "host/builtins/file/obj_materials.h"

#include <algorithm>
#include <filesystem>

#include "host/base/messages.h"
#include "host/nodes/set_group.h"
#include "host/nodes/sets.h"
#include "host/scene/display_rules.h"

namespace host::builtins {

namespace {

namespace fs = std::filesystem;
using math::Vec3;
using scene::Component;
using scene::ComponentType;

void warn(const std::string& text) {
  postMessage(MessageKind::Warning, text);
}

Component facesOf(const std::vector<io::ObjFaceRange>& ranges) {
  std::vector<Index> faces;
  for (const io::ObjFaceRange& range : ranges)
    for (Index i = 0; i < range.count; ++i) faces.push_back(range.first + i);
  return Component(ComponentType::Face, std::move(faces));
}

/// The faces of an object that have no material.
Component bareFaces(const io::ObjObject& object) {
  std::vector<char> isCovered(static_cast<std::size_t>(object.mesh.faceCount()), 0);
  for (const io::ObjFaceSet& set : object.materials)
    for (const io::ObjFaceRange& range : set.ranges)
      std::fill_n(isCovered.begin() + range.first, range.count, char{1});
  std::vector<Index> bare;
  for (std::size_t i = 0; i < isCovered.size(); ++i)
    if (!isCovered[i]) bare.push_back(static_cast<Index>(i));
  return Component(ComponentType::Face, std::move(bare));
}

bool coversAll(const io::ObjFaceSet& set, Index faceCount) {
  return set.ranges.size() == 1 && set.ranges.front().first == 0 &&
         set.ranges.front().count == faceCount;
}

Vec3 colorOf(dg::Node& node, const char* attribute) {
  const dg::Plug plug = node.plug(attribute);
  return plug ? node.graph().getVec3(plug).value_or(Vec3{}) : Vec3{};
}

/// The picture that a file texture puts straight into a colour; empty for none.
std::string pictureOf(dg::Node& shader, const char* attribute) {
  const dg::Plug plug = shader.plug(attribute);
  const dg::Plug source = plug ? shader.graph().source(plug) : dg::Plug();
  if (!source || !source.node()->type().isA("file")) return {};
  const auto path = shader.graph().get(source.node()->plug("fileTextureName"));
  const auto* text = path ? std::get_if<std::string>(&*path) : nullptr;
  return text ? *text : std::string();
}

/// The picture of how opaque a shader is: a file's alpha, or its colours turned round by a node.
std::string opacityPictureOf(dg::Node& shader) {
  dg::Graph& graph = shader.graph();
  const dg::Plug plug = shader.plug("transparency");
  const dg::Plug source = plug ? graph.source(plug) : dg::Plug();
  if (!source) return {};
  if (source.node()->type().isA("reverse")) return pictureOf(*source.node(), "input");
  const bool isAlpha = source.attribute()->longName == "outTransparency";
  return isAlpha ? pictureOf(shader, "transparency") : std::string();
}

/// The way to a picture from a folder, where it lies in it; else its full path.
std::string pathFrom(const std::string& folder, const std::string& picture) {
  if (picture.empty()) return picture;
  std::error_code failure;
  const fs::path base =
      fs::weakly_canonical(folder.empty() ? fs::path(".") : fs::path(folder), failure);
  const fs::path file = fs::weakly_canonical(picture, failure);
  const fs::path way = file.lexically_relative(base);
  const bool isInside = !way.empty() && io::staysInFolder(way.generic_string());
  return (isInside ? way : file).generic_string();
}

io::MtlMaterial describe(dg::Node& shader, const std::string& name, const std::string& folder) {
  io::MtlMaterial material;
  material.name = name;
  if (shader.plug("color")) {
    material.diffuse = colorOf(shader, "color") * scene::numberOr(shader, "diffuse", 1);
    material.diffuseMap = pathFrom(folder, pictureOf(shader, "color"));
    if (!material.diffuseMap.empty()) material.diffuse = Vec3{1, 1, 1};
  } else if (shader.plug("outColor")) {
    material.diffuse = colorOf(shader, "outColor");
  }
  material.ambient = colorOf(shader, "ambientColor");
  material.emission = colorOf(shader, "incandescence");
  material.opacityMap = pathFrom(folder, opacityPictureOf(shader));
  const Vec3 clear = colorOf(shader, "transparency");
  if (material.opacityMap.empty())
    material.opacity = std::clamp(1 - (clear.x + clear.y + clear.z) / 3, 0.0, 1.0);
  if (!shader.type().isA("reflect")) return material;
  material.specular = colorOf(shader, "specularColor");
  const double eccentricity = std::max(0.02, scene::numberOr(shader, "eccentricity", 0.3));
  material.shininess = shader.type().isA("phong") ? scene::numberOr(shader, "cosinePower", 20)
                                                  : 2 / (eccentricity * eccentricity);
  return material;
}

/// The faces of a component in runs.
std::vector<io::ObjFaceRange> runsOf(const Component& component, Index faceCount) {
  std::vector<io::ObjFaceRange> runs;
  for (const Index face : component.expanded(faceCount)) {
    if (face >= faceCount) break;
    if (!runs.empty() && runs.back().first + runs.back().count == face)
      ++runs.back().count;
    else
      runs.push_back({face, 1});
  }
  return runs;
}

}  // namespace

std::map<std::string, io::MtlMaterial> readObjMaterials(const io::ObjScene& scene,
                                                        const std::string& path) {
  std::map<std::string, io::MtlMaterial> materials;
  const fs::path folder = fs::path(path).parent_path();
  const auto read = [&](const std::string& name) {
    if (!io::staysInFolder(name)) {
      warn(fmt::format("{}: the material library '{}' is not in the file's folder and is not read",
                       path, name));
      return;
    }
    auto library = io::readMtl((folder / name).string());
    if (!library) return warn(library.error().message);
    for (const auto& [warning, count] : library->warnings)
      warn(fmt::format("{}: {} ({})", name, warning, count));
    for (io::MtlMaterial& material : library->materials)
      materials[material.name] = std::move(material);
  };
  for (std::string name : scene.materialLibraries) {
    std::replace(name.begin(), name.end(), '\\', '/');
    std::error_code ignored;
    // A name may hold blanks, and a statement several names.
    if (name.find(' ') == std::string::npos || fs::exists(folder / name, ignored)) {
      read(name);
      continue;
    }
    for (std::size_t begin = 0; begin < name.size();) {
      const std::size_t end = std::min(name.find(' ', begin), name.size());
      if (end > begin) read(name.substr(begin, end - begin));
      begin = end + 1;
    }
  }
  return materials;
}

Result<void> ObjShading::assign(dg::Node& shape, const io::ObjObject& object) {
  const Index faceCount = object.mesh.faceCount();
  // All parts are put into their groups at once: there may be thousands.
  std::vector<nodes::SetPart> parts;
  if (object.materials.empty()) {
    HOST_TRY(nodes::assignInitialShading(document_, shape));
  } else if (Component bare = bareFaces(object); !bare.isEmpty()) {
    if (const auto& initial = document_.nodesNamed("initialShadingGroup"); !initial.empty())
      parts.push_back({initial.front(), std::move(bare)});
  }
  for (const io::ObjFaceSet& set : object.materials) {
    auto group = groupOf(set.name);
    if (!group) return failWith(std::move(group.error()));
    if (!coversAll(set, faceCount)) {
      parts.push_back({*group, facesOf(set.ranges)});
      continue;
    }
    scene::SelectionList whole;
    whole.add(scene::firstPath(shape));
    HOST_TRY(nodes::addToSet(document_, **group, whole));
  }
  for (const io::ObjFaceSet& set : object.groups) {
    // A group that is the whole object has given the object its name.
    if (coversAll(set, faceCount) || set.name == "default") continue;
    auto node = setOf(set.name);
    if (!node) return failWith(std::move(node.error()));
    parts.push_back({*node, facesOf(set.ranges)});
  }
  return nodes::makeGroups(document_, scene::firstPath(shape), parts);
}

Result<dg::Node*> ObjShading::setOf(const std::string& name) {
  dg::Node*& node = sets_[name];
  if (node) return node;
  auto made = document_.createNode("objectSet", nodeName_(name));
  if (!made) return failWith(std::move(made.error()));
  return node = made->get();
}

Result<dg::Node*> ObjShading::groupOf(const std::string& name) {
  dg::Node*& group = groups_[name];
  if (group) return group;
  auto shader = makeMaterial(name);
  if (!shader) return shader;
  auto made = document_.createNode("shadingEngine", (*shader)->name() + "SG");
  if (!made) return failWith(std::move(made.error()));
  dg::Graph& graph = document_.graph();
  HOST_TRY(graph.set((*made)->plug("renderableOnlySet"), std::int64_t{1}));
  HOST_TRY(graph.connect((*shader)->plug("outColor"), (*made)->plug("surfaceShader")));
  if (const auto& found = document_.nodesNamed("renderPartition"); !found.empty())
    HOST_TRY(
        graph.connect((*made)->plug("partition"), nodes::freeElement(found.front()->plug("sets"))));
  return group = made->get();
}

Result<dg::Node*> ObjShading::makeMaterial(const std::string& name) {
  const auto found = materials_.find(name);
  io::MtlMaterial material;
  if (found != materials_.end()) material = found->second;
  const bool shines = material.specular.x > 0 || material.specular.y > 0 || material.specular.z > 0;
  auto made = document_.createNode(shines ? "phong" : "lambert", nodeName_(name));
  if (!made) return failWith(std::move(made.error()));
  dg::Node& shader = **made;
  dg::Graph& graph = document_.graph();
  if (found == materials_.end()) return &shader;  // named, but nowhere stated
  HOST_TRY(graph.setVec3(shader.plug("color"), material.diffuse));
  HOST_TRY(graph.set(shader.plug("diffuse"), 1.0));
  HOST_TRY(graph.setVec3(shader.plug("ambientColor"), material.ambient));
  HOST_TRY(graph.setVec3(shader.plug("incandescence"), material.emission));
  const double clear = 1 - material.opacity;
  HOST_TRY(graph.setVec3(shader.plug("transparency"), Vec3{clear, clear, clear}));
  if (shines) {
    HOST_TRY(graph.setVec3(shader.plug("specularColor"), material.specular));
    HOST_TRY(graph.set(shader.plug("cosinePower"), std::max(2.0, material.shininess)));
  }
  if (const auto& lists = document_.nodesNamed("defaultShaderList1"); !lists.empty())
    HOST_TRY(
        graph.connect(shader.plug("message"), nodes::freeElement(lists.front()->plug("shaders"))));
  HOST_TRY(addPictures(shader, material));
  return &shader;
}

Result<dg::Node*> ObjShading::makePicture(const dg::Node& shader, const std::string& map,
                                          const std::string& suffix) {
  if (map.empty()) return nullptr;
  if (!io::staysInFolder(map) && !io::looksLikePicture(map)) {
    warn(
        fmt::format("material '{}': '{}' is not in the file's folder and no picture; it is not "
                    "taken over",
                    shader.name(), map));
    return nullptr;
  }
  auto file = document_.createNode("file", shader.name() + "_map" + suffix);
  if (!file) return failWith(std::move(file.error()));
  auto place = document_.createNode("place2dTexture", shader.name() + "_place" + suffix);
  if (!place) return failWith(std::move(place.error()));
  dg::Graph& graph = document_.graph();
  const fs::path picture(map);
  const fs::path full = picture.is_absolute() ? picture : fs::path(folder_) / picture;
  HOST_TRY(graph.set((*file)->plug("fileTextureName"), full.generic_string()));
  HOST_TRY(graph.connect((*place)->plug("outUV"), (*file)->plug("uvCoord")));
  return file->get();
}

Result<void> ObjShading::addPictures(dg::Node& shader, const io::MtlMaterial& material) {
  dg::Graph& graph = document_.graph();
  const auto color = makePicture(shader, material.diffuseMap, "");
  if (!color) return failWith(color.error());
  if (*color) HOST_TRY(graph.connect((*color)->plug("outColor"), shader.plug("color"), true));
  // The colour's own picture cuts out by its alpha; another says by its colours how opaque it is.
  if (material.opacityMap == material.diffuseMap)
    return *color
               ? graph.connect((*color)->plug("outTransparency"), shader.plug("transparency"), true)
               : Result<void>();
  const auto opacity = makePicture(shader, material.opacityMap, "_d");
  if (!opacity) return failWith(opacity.error());
  if (!*opacity) return {};
  auto turned = document_.createNode("reverse", shader.name() + "_clear");
  if (!turned) return failWith(std::move(turned.error()));
  HOST_TRY(graph.connect((*opacity)->plug("outColor"), (*turned)->plug("input")));
  return graph.connect((*turned)->plug("output"), shader.plug("transparency"), true);
}

Result<void> describeShading(scene::Document& document, const scene::DagPath& shape,
                             const std::string& folder, io::ObjObject& object,
                             std::map<std::string, io::MtlMaterial>& library) {
  const Index faceCount = object.mesh.faceCount();
  const auto nameOf = [&](dg::Node& group) -> std::string {
    const dg::Plug shader = document.graph().source(group.plug("surfaceShader"));
    const std::string name = shader ? shader.node()->name() : group.name();
    if (shader && !library.contains(name)) library[name] = describe(*shader.node(), name, folder);
    return name;
  };
  const scene::DagPath place = nodes::shadedPlace(shape);
  if (dg::Node* whole = nodes::shadingGroupOfWhole(place))
    object.materials.push_back({nameOf(*whole), {{0, faceCount}}});
  for (const nodes::SetGroup& group : nodes::groupsOf(place, nullptr)) {
    for (const Component& component : group.components) {
      if (component.type() != ComponentType::Face) continue;
      std::vector<io::ObjFaceRange> runs = runsOf(component, faceCount);
      if (runs.empty()) continue;
      const bool isShading = nodes::isShadingGroup(*group.set);
      std::vector<io::ObjFaceSet>& to = isShading ? object.materials : object.groups;
      to.push_back({isShading ? nameOf(*group.set) : group.set->name(), std::move(runs)});
    }
  }
  return {};
}

}  // namespace host::builtins
