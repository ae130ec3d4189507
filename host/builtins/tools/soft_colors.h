#pragma once

#include <memory>
#include <unordered_map>
#include <vector>

#include "host/edits/soft_selection.h"
#include "host/viewport/scene_view.h"

namespace host::builtins {

/// Says which colours views give the vertices around selected ones: by the share that each takes of
/// a move.
///
/// The shares are worked out when the selection, the settings or the mesh have changed, and stay
/// for as long as the pointer drags: what is dragged goes along by where it was. Where only some
/// vertices are told to have moved, and none that is selected, by volume only theirs are.
class SoftColors {
 public:
  struct Settings {
    edits::SoftSelection soft;
    std::vector<math::RampEntry> colors;  ///< by the share: 0 for all of it, 1 for nothing
    std::uint64_t revision = 0;           ///< another for other settings
  };

  /// Gives the meshes of a view with selected components their colours.
  void show(viewport::SceneView& scene, const Settings& settings, bool isDragging);
  /// Vertices whose shares were worked out, all told: what it has cost.
  [[nodiscard]] std::size_t worked() const { return worked_; }

 private:
  struct Entry {
    mesh::Mesh mesh;
    math::Matrix4 world;
    viewport::ComponentSets selected;
    std::uint64_t revision = 0;
    std::vector<VertexId> chosen;
    std::vector<edits::SoftWeight> weights;
    std::shared_ptr<const viewport::ColoredVertices> shown;
    bool isUsed = false;
  };
  void showGlobal(viewport::SceneView& scene, const Settings& settings, bool isDragging);
  void showEach(viewport::SceneView& scene, const Settings& settings, bool isDragging);
  void update(Entry& entry, const viewport::RenderMesh& mesh, const Settings& settings,
              bool isDragging);
  [[nodiscard]] bool mend(Entry& entry, const viewport::RenderMesh& mesh, const Settings& settings);

  std::unordered_map<std::uint64_t, Entry> entries_;
  std::vector<math::Vec3> chosenPlaces_;  ///< of the global falloff: all that are selected, world
  std::size_t worked_ = 0;
};

}  // namespace host::builtins
