#pragma once

#include <unordered_map>
#include <vector>

#include "host/viewport/scene_walk.h"

namespace host::workspace {

enum class Mark : std::uint8_t;

/// Draws what shows objects that have no surface: locators, lights, curves, curved surfaces as
/// lines of their parameters, and joints with their bones. Kinds as the view's options ask for;
/// hidden, template, coloured and isolated as meshes are. Curves are evaluated anew, once for all
/// places of one.
class MarkGatherer final : public viewport::PlaceVisitor {
 public:
  explicit MarkGatherer(const viewport::ViewOptions& options, bool showsSurfaces = true)
      : options_(options), showsSurfaces_(showsSurfaces) {}
  void visit(const viewport::ShownPlace& place) override;

  viewport::DrawList list;
  std::vector<viewport::DrawnObject> objects;  ///< with the numbers of their items in `list`

 private:
  void draw(const viewport::ShownPlace& place, viewport::VertexDataPtr strokes,
            const math::Matrix4& world);

  const viewport::ViewOptions& options_;
  const bool showsSurfaces_;
  std::unordered_map<const dg::NodeType*, Mark> marks_;
  std::unordered_map<const dg::Node*, viewport::VertexDataPtr> shared_;  ///< object space
};

}  // namespace host::workspace
