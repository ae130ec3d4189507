#pragma once

#include <optional>

#include "host/mesh/component_type.h"
#include "host/tools/tool_context.h"

namespace host::tools {

/// Selects what is clicked or lies in a rectangle that is dragged: Shift toggles, Control takes
/// away, both add. One step of undo a gesture. The component that a click would pick stands out
/// while the pointer moves over it.
class SelectTool : public ToolContext {
 public:
  SelectTool(ToolRegistry& registry, std::string className)
      : ToolContext(std::move(className)), registry_(registry) {}
  void press(const InputEvent& event) override;
  void drag(const InputEvent& event) override;
  void release(const InputEvent& event) override;
  void abort() override;
  void moved(const InputEvent& event) override;
  void cleanup() override;
  void mark(const std::string& panel, viewport::SceneView& scene) override;
  void draw(const std::string& panel, viewport::DrawList& list) override;

 private:
  ToolRegistry& registry_;
  viewport::ViewPoint start_, end_;
  std::string panel_;
  bool isPressed_ = false;
  struct Pointed {
    std::string panel;
    std::uint64_t mesh;  ///< RenderMesh::id
    mesh::ComponentType type;
    Index component;
  };
  std::optional<Pointed> pointed_;
};

/// The outline of a selection rectangle, in pixels.
void drawMarquee(viewport::ViewPoint from, viewport::ViewPoint to, viewport::DrawList& list);

}  // namespace host::tools
