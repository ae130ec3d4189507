#pragma once

#include <unordered_map>
#include <vector>

#include "host/viewport/scene_walk.h"

namespace host::workspace {

enum class Mark : std::uint8_t;

/// What views are asked to show by switches that their options don't have.
struct MarkKinds {
  bool surfaces = true, deformers = true;
};

/// Draws what shows objects that have no surface: locators, lights, curves, curved surfaces as
/// lines of their parameters, joints with their bones, and what deformers are moved by. Kinds as
/// the view's options ask for; hidden, template, coloured and isolated as meshes are. Curves are
/// evaluated anew, once for all places of one.
class MarkGatherer final : public viewport::PlaceVisitor {
 public:
  /// The view's camera and options, what is selected, and further kinds that it shows.
  MarkGatherer(const viewport::SceneView& scene, const viewport::PathStates& states,
               MarkKinds kinds)
      : scene_(scene), states_(states), options_(scene.options), kinds_(kinds) {}
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
  MarkKinds kinds_;
  std::unordered_map<const dg::NodeType*, Mark> marks_;
  std::unordered_map<const dg::Node*, viewport::VertexDataPtr> shared_;  ///< object space
};

}  // namespace host::workspace
