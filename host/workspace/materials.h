#pragma once

#include <map>
#include <memory>
#include <unordered_map>
#include <vector>

#include "host/nodes/shading/bake.h"
#include "host/nodes/shading/projection_nodes.h"
#include "host/nodes/smooth_preview.h"
#include "host/scene/document.h"
#include "host/viewport/scene_view.h"
#include "host/workspace/pictures.h"

namespace host::workspace {

/// Turns the shading groups of a scene into what views draw, and keeps the textures of networks
/// that did not change.
///
/// Faces that no group has, in a mesh where others have one, and groups without a material show
/// green, so that they are found; a mesh in no group at all is drawn plain. A face that two groups
/// claim has the material of the one that came to it last.
class Materials {
 public:
  /// Gives the meshes of a view their materials (unless it shows all in the plain grey) and smooth
  /// previews, by the paths that they have.
  void dress(scene::Document& document, viewport::SceneView& scene);

 private:
  /// Which faces are whose, as it was when the numbers were made.
  struct Faces {
    std::vector<std::pair<const dg::Node*, std::vector<scene::Component>>> groups;
    Index faceCount = 0;
    std::shared_ptr<const std::vector<std::uint32_t>> numbers;
    bool isUsed = false;
  };
  struct Baked {
    viewport::TexturePtr texture;
    math::Vec3 mean, outside;
    double meanOpacity = 1, outsideOpacity = 1;
    bool hasAlpha = false, isUsed = false;
    std::vector<nodes::PicturePtr> pictures;  ///< alive, so that their addresses tell them apart
  };

  /// A smooth preview, as long as mesh and display stay the same.
  struct Preview {
    mesh::Mesh from;
    nodes::SmoothPreview how;
    nodes::PreviewMesh made;
    std::shared_ptr<const std::vector<std::uint32_t>> numbersFrom, numbers;
    bool isUsed = false;
  };

  /// A mesh with the UVs by which projections lie on its faces, as long as all of it stays.
  struct Projected {
    mesh::Mesh from, made;
    math::Matrix4 world;
    std::vector<std::optional<nodes::TextureProjection>> projections;  ///< one a material
    std::shared_ptr<const std::vector<std::uint32_t>> numbers;
    bool isUsed = false;
  };

  void smooth(viewport::RenderMesh& mesh);
  /// @param groups the shading groups by the mesh's materials, null where there is none
  void project(viewport::RenderMesh& mesh, const std::vector<dg::Node*>& groups);
  void dressMesh(scene::Document& document, viewport::RenderMesh& mesh);
  viewport::MaterialPtr materialOf(scene::Document& document, dg::Node& group);
  viewport::MaterialPtr read(scene::Document& document, const dg::Plug& shader);
  void readColor(scene::Document& document, dg::Node& shader, const char* color,
                 const char* transparency, viewport::Material& material);
  void addTexture(nodes::ShadeNetwork& network, nodes::ShadeNetwork::Color color,
                  nodes::ShadeNetwork::Color transparency, viewport::Material& material);

  Pictures pictures_;
  std::unordered_map<const dg::Node*, viewport::MaterialPtr> thisFrame_;
  std::unordered_map<std::uint64_t, Faces> faces_;
  std::unordered_map<std::uint64_t, Baked> baked_;
  std::unordered_map<std::uint64_t, Preview> previews_;
  std::unordered_map<std::uint64_t, Projected> projected_;
  std::unordered_map<const dg::Node*, dg::Node*> projectionOf_;  ///< this frame's, by group
  std::vector<nodes::PicturePtr> found_;  ///< by the network that is being read
};

}  // namespace host::workspace
