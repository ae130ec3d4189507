#pragma once

#include <unordered_map>
#include <vector>

#include "host/viewport/scene_walk.h"

namespace host::workspace {

enum class Mark : std::uint8_t;

/// Draws what shows objects that have no surface: locators, lights, curves, joints with their
/// bones, and what deformers are moved by. Kinds as the view's options ask for; hidden, template,
/// coloured and isolated as meshes are. Curves are evaluated anew, once for all places of one.
class MarkGatherer final : public viewport::PlaceVisitor {
 public:
  /// The view's camera and options, what is selected, and whether deformers are shown.
  MarkGatherer(const viewport::SceneView& scene, const viewport::PathStates& states,
               bool showsDeformers)
      : scene_(scene), states_(states), options_(scene.options), showsDeformers_(showsDeformers) {}
  void visit(const viewport::ShownPlace& place) override;

  viewport::DrawList list;
  std::vector<viewport::DrawnObject> objects;  ///< with the numbers of their items in `list`

 private:
  void draw(const viewport::ShownPlace& place, viewport::VertexDataPtr strokes,
            const math::Matrix4& world);

  void drawLattice(const viewport::ShownPlace& place);
  void drawPoints(std::vector<math::Vec3f> points, const viewport::Rgba& color);

  const viewport::SceneView& scene_;
  const viewport::PathStates& states_;
  const viewport::ViewOptions& options_;
  bool showsDeformers_;
  std::unordered_map<const dg::NodeType*, Mark> marks_;
  std::unordered_map<const dg::Node*, viewport::VertexDataPtr> shared_;  ///< object space
};

}  // namespace host::workspace
