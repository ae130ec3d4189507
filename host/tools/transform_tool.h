#pragma once

#include "host/tools/select_tool.h"

namespace host::tools {

/// Selects with the left button and changes the selection with the middle one, as one command when
/// the drag ends: moves it in the plane that faces the viewer, turns it about the world's vertical,
/// or scales it evenly.
class TransformTool final : public SelectTool {
 public:
  enum class Change : std::uint8_t { Move, Rotate, Scale };
  TransformTool(ToolRegistry& registry, std::string className, Change change)
      : SelectTool(registry, std::move(className)), registry_(registry), change_(change) {}
  void press(const InputEvent& event) override;
  void release(const InputEvent& event) override;
  void abort() override;

 private:
  /// The command line for a drag from the press to `end`; empty when there is nothing to do.
  [[nodiscard]] std::string commandFor(viewport::ViewPoint end) const;

  ToolRegistry& registry_;
  Change change_;
  viewport::ViewPoint start_;
  std::string panel_;
  bool isDragging_ = false;
};

}  // namespace host::tools
