#include "host/workspace/materials.h"

#include <algorithm>
#include <filesystem>
#include <span>

#include "host/nodes/set_group.h"
#include "host/nodes/sets.h"
#include "host/scene/display_rules.h"
#include "host/viewport/instance_id.h"

namespace host::workspace {

namespace {

using math::Vec3;
using nodes::ShadeNetwork;
using viewport::Material;
using viewport::MaterialPtr;

MaterialPtr unassigned() {
  static const MaterialPtr material = [] {
    auto made = std::make_shared<Material>();
    made->color = {0.05, 0.55, 0.16};
    made->diffuse = 1;
    return made;
  }();
  return material;
}

/// The mean of a colour that may be textured.
Vec3 colorOf(dg::Node& node, const char* attribute, ShadeNetwork& network) {
  const dg::Plug plug = node.plug(attribute);
  if (!plug) return {};
  const ShadeNetwork::Color color = network.addColor(plug);
  if (ShadeNetwork::isConstant(color)) return ShadeNetwork::constant(color);
  constexpr int kSamples = 8;
  Vec3 sum;
  for (int y = 0; y < kSamples; ++y)
    for (int x = 0; x < kSamples; ++x) {
      network.moveTo((x + 0.5) / kSamples, (y + 0.5) / kSamples);
      sum += network.color(color);
    }
  return sum * (1.0 / (kSamples * kSamples));
}

/// Exponent about the half vector and strength of the highlights of the shaders that have some.
void readHighlights(dg::Node& shader, ShadeNetwork& network, Material& material) {
  const dg::NodeType& type = shader.type();
  if (!type.isA("reflect")) return;
  material.specular = colorOf(shader, "specularColor", network);
  if (type.isA("blinn")) {
    const double eccentricity =
        std::clamp(scene::numberOr(shader, "eccentricity", 0.3), 0.02, 0.99);
    material.gloss = std::clamp(2 / (eccentricity * eccentricity) - 2, 1.0, 2000.0);
    material.specular *= std::clamp(scene::numberOr(shader, "specularRollOff", 0.7), 0.0, 1.0);
  } else if (type.isA("phong")) {
    // About the mirrored direction; about the half vector the angle is half as large.
    material.gloss = 4 * std::clamp(scene::numberOr(shader, "cosinePower", 20), 2.0, 500.0);
  } else if (type.isA("phongE")) {
    const double size = std::clamp(scene::numberOr(shader, "highlightSize", 0.5), 0.02, 1.0);
    const double roughness = std::clamp(scene::numberOr(shader, "roughness", 0.5), 0.0, 1.0);
    material.gloss = std::clamp((24 - 16 * roughness) / (size * size), 1.0, 2000.0);
    material.specular *= 1 - 0.5 * roughness;
  }
}

}  // namespace

void Materials::dress(scene::Document& document, viewport::SceneView& scene) {
  thisFrame_.clear();
  projectionOf_.clear();
  for (viewport::RenderMesh& mesh : scene.meshes) {
    if (mesh.path.isWorld()) continue;
    if (!scene.options.useDefaultMaterial) dressMesh(document, mesh);
    smooth(mesh);
  }
  const auto dropUnused = [](auto& all) {
    std::erase_if(all, [](const auto& each) { return !each.second.isUsed; });
    for (auto& [key, each] : all) each.isUsed = false;
  };
  dropUnused(faces_);
  dropUnused(baked_);
  dropUnused(previews_);
  dropUnused(projected_);
  pictures_.dropUnused();
}

void Materials::smooth(viewport::RenderMesh& mesh) {
  const nodes::SmoothPreview how = nodes::smoothPreviewOf(*mesh.path.node());
  if (how.mode == 0) return;
  Preview& preview = previews_[viewport::shapeOf(mesh.id)];
  preview.isUsed = true;
  const bool isSame = preview.how == how && preview.from == mesh.mesh;
  if (!isSame) {
    auto made = nodes::makePreview(mesh.mesh, how);
    if (!made) return;  // too many faces to show: the mesh shows as it is
    preview.made = std::move(*made);
    preview.from = mesh.mesh;
    preview.how = how;
    preview.numbersFrom.reset();
  }
  if (mesh.faceMaterials && preview.numbersFrom != mesh.faceMaterials) {
    auto numbers = std::make_shared<std::vector<std::uint32_t>>();
    for (const mesh::Origins::Stretch& each : preview.made.faces.stretches())
      for (Index i = 0; i < each.count; ++i) {
        const Index source = each.source == kNone ? kNone : each.source + i * each.step;
        numbers->push_back(source == kNone ? 0U : (*mesh.faceMaterials)[at(source)]);
      }
    preview.numbers = std::move(numbers);
    preview.numbersFrom = mesh.faceMaterials;
  }
  if (mesh.faceMaterials) mesh.faceMaterials = preview.numbers;
  mesh.smoothed = preview.made.mesh;
  mesh.showsCage = how.mode == 1;
}

void Materials::dressMesh(scene::Document& document, viewport::RenderMesh& mesh) {
  std::vector<std::pair<const dg::Node*, std::vector<scene::Component>>> groups;
  dg::Node* whole = nodes::shadingGroupOfWhole(mesh.path);
  std::vector<dg::Node*> owners;
  for (nodes::SetGroup& group : nodes::groupsOf(mesh.path, nullptr)) {
    if (!nodes::isShadingGroup(*group.set)) continue;
    owners.push_back(group.set);
    groups.emplace_back(group.set, std::move(group.components));
  }
  if (!whole && groups.empty()) return;
  mesh.materials = {whole ? materialOf(document, *whole) : unassigned()};
  owners.insert(owners.begin(), whole);
  if (groups.empty()) return project(mesh, owners);
  for (dg::Node* owner : std::span(owners).subspan(1))
    mesh.materials.push_back(materialOf(document, *owner));
  // Instances mostly have their faces in the same groups as the first place.
  const auto first = faces_.find(viewport::instanceId(viewport::shapeOf(mesh.id), 0));
  const bool isShared = first != faces_.end() && first->second.isUsed &&
                        first->second.faceCount == mesh.mesh.faceCount() &&
                        first->second.groups == groups;
  Faces& faces = isShared ? first->second : faces_[mesh.id];
  faces.isUsed = true;
  if (!faces.numbers || faces.faceCount != mesh.mesh.faceCount() || faces.groups != groups) {
    faces.faceCount = mesh.mesh.faceCount();
    auto numbers = std::make_shared<std::vector<std::uint32_t>>(at(faces.faceCount), 0U);
    for (std::size_t i = 0; i < groups.size(); ++i)
      for (const scene::Component& component : groups[i].second) {
        if (component.type() != scene::ComponentType::Face) continue;
        for (const Index face : component.expanded(faces.faceCount))
          if (face >= 0 && face < faces.faceCount)
            (*numbers)[at(face)] = static_cast<std::uint32_t>(i + 1);
      }
    faces.groups = std::move(groups);
    faces.numbers = std::move(numbers);
  }
  mesh.faceMaterials = faces.numbers;
  project(mesh, owners);
}

void Materials::project(viewport::RenderMesh& mesh, const std::vector<dg::Node*>& groups) {
  std::vector<std::optional<nodes::TextureProjection>> projections;
  for (dg::Node* group : groups) {
    const auto found = group ? projectionOf_.find(group) : projectionOf_.end();
    projections.push_back(
        found == projectionOf_.end() ? std::nullopt : nodes::textureProjectionOf(*found->second));
  }
  if (std::ranges::none_of(projections, [](const auto& each) { return each.has_value(); })) return;
  Projected& kept = projected_[mesh.id];
  kept.isUsed = true;
  const bool isSame = kept.world == mesh.world && kept.projections == projections &&
                      kept.numbers == mesh.faceMaterials && kept.from == mesh.mesh;
  if (!isSame) {
    std::vector<std::vector<FaceId>> faces(projections.size());
    for (FaceId face = 0; face < mesh.mesh.faceCount(); ++face)
      faces[mesh.faceMaterials ? (*mesh.faceMaterials)[at(face)] : 0].push_back(face);
    kept.made = mesh.mesh;
    for (std::size_t i = 0; i < faces.size(); ++i)
      if (projections[i] && !faces[i].empty())
        nodes::projectTexture(kept.made, faces[i], mesh.world, *projections[i]);
    kept.from = mesh.mesh;
    kept.world = mesh.world;
    kept.projections = std::move(projections);
    kept.numbers = mesh.faceMaterials;
  }
  mesh.mesh = kept.made;
}

MaterialPtr Materials::materialOf(scene::Document& document, dg::Node& group) {
  MaterialPtr& material = thisFrame_[&group];
  if (material) return material;
  const dg::Plug shader = group.graph().source(group.plug("surfaceShader"));
  MaterialPtr read = shader ? this->read(document, shader) : unassigned();
  if (shader) {
    const bool isLambert = shader.node()->type().isA("lambert");
    const dg::Plug color = isLambert ? shader.node()->plug("color") : shader;
    dg::Node* projection = isLambert || !shader.node()->type().isA("surfaceShader")
                               ? nodes::projectionBehind(color)
                               : nodes::projectionBehind(shader.node()->plug("outColor"));
    if (projection) projectionOf_[&group] = projection;
  }
  return thisFrame_[&group] = std::move(read);
}

MaterialPtr Materials::read(scene::Document& document, const dg::Plug& shader) {
  dg::Node& node = *shader.node();
  auto material = std::make_shared<Material>();
  if (node.type().isA("lambert")) {
    readColor(document, node, "color", "transparency", *material);
    ShadeNetwork network({});
    material->diffuse = scene::numberOr(node, "diffuse", 0.8);
    material->ambient = colorOf(node, "ambientColor", network);
    material->incandescence = colorOf(node, "incandescence", network);
    readHighlights(node, network, *material);
    return material;
  }
  material->diffuse = 1;
  if (node.type().isA("useBackground")) {
    material->lit = false;
    material->color = {0.05, 0.055, 0.065};
    return material;
  }
  if (node.type().isA("surfaceShader")) {
    material->lit = false;
    readColor(document, node, "outColor", "outTransparency", *material);
    return material;
  }
  // A texture, a utility or a shader of a plug-in: by the colour that it puts out.
  if (shader.attribute()->children.size() == 3)
    readColor(document, node, shader.attribute()->longName.c_str(), "outTransparency", *material);
  material->lit = nodes::shadeKindOf(node.type()) == nullptr;
  return material;
}

void Materials::readColor(scene::Document& document, dg::Node& shader, const char* color,
                          const char* transparency, Material& material) {
  const std::filesystem::path file(document.fileName());
  found_.clear();
  ShadeNetwork network([&](dg::Node& node) {
    const Result<dg::Value> path = node.graph().get(node.plug("fileTextureName"));
    const auto* text = path ? std::get_if<std::string>(&*path) : nullptr;
    const bool isOff = scene::numberOr(node, "disableFileLoad", 0) != 0;
    nodes::PicturePtr picture =
        text && !isOff ? pictures_.find(*text, file.parent_path().string()) : nullptr;
    if (picture) found_.push_back(picture);
    return picture;
  });
  const dg::Plug colorPlug = shader.plug(color), transparencyPlug = shader.plug(transparency);
  const ShadeNetwork::Color first = network.addColor(colorPlug);
  ShadeNetwork::Color second{};
  if (transparencyPlug && transparencyPlug.attribute()->children.size() == 3)
    second = network.addColor(transparencyPlug);
  if (!ShadeNetwork::isConstant(first) || !ShadeNetwork::isConstant(second))
    return addTexture(network, first, second, material);
  material.color = ShadeNetwork::constant(first);
  material.opacity = std::clamp(1 - nodes::luminance(ShadeNetwork::constant(second)), 0.0, 1.0);
}

void Materials::addTexture(ShadeNetwork& network, ShadeNetwork::Color color,
                           ShadeNetwork::Color transparency, Material& material) {
  std::vector<ShadeNetwork::Source*> roots;
  for (ShadeNetwork::Color* each : {&color, &transparency})
    for (ShadeNetwork::Source& source : *each) roots.push_back(&source);
  if (const auto placement = network.takePlacement(roots)) material.placement = *placement;
  std::vector<ShadeNetwork::Source> sources;
  for (const ShadeNetwork::Source* root : roots) sources.push_back(*root);
  Baked& baked = baked_[network.signature(sources)];
  baked.isUsed = true;
  if (!baked.texture) {
    nodes::BakedTexture pixels = nodes::bake(network, color, transparency);
    baked.mean = pixels.mean;
    baked.meanOpacity = pixels.meanOpacity;
    baked.hasAlpha = pixels.meanOpacity < 0.999;
    baked.pictures = found_;
    network.moveTo(10 * nodes::kOutsideFrame, 10 * nodes::kOutsideFrame);
    baked.outside = network.color(color);
    baked.outsideOpacity = std::clamp(1 - nodes::luminance(network.color(transparency)), 0.0, 1.0);
    baked.texture = std::make_shared<viewport::Texture>(
        viewport::Texture{pixels.width, pixels.height, std::move(pixels.rgba)});
  }
  material.texture = baked.texture;
  material.color = baked.mean;
  material.opacity = baked.meanOpacity;
  material.outsideColor = baked.outside;
  material.outsideOpacity = baked.outsideOpacity;
  material.hasAlpha = baked.hasAlpha;
}

}  // namespace host::workspace
