#pragma once

#include <memory>
#include <optional>

#include "host/edits/gesture.h"
#include "host/edits/soft_selection.h"
#include "host/tools/select_tool.h"
#include "host/tools/session_steps.h"

namespace host::tools {

/// Selects with the left button and changes the selection with the middle one, live under the hand:
/// objects and components follow the drag, releasing makes one step of undo, Escape puts everything
/// back.
///
/// Move: in the plane that faces the viewer, so that what lies at the depth of the selection's
/// middle stays under the pointer, whatever the scene's unit. Rotate: by half a degree a pixel to
/// the right, about the world's vertical, in orthographic views about the line of sight; objects
/// about their own pivots, components about their common middle. Scale: evenly, twice as large
/// every 100 pixels to the right.
class TransformTool final : public SelectTool {
 public:
  enum class Change : std::uint8_t { Move, Rotate, Scale };
  TransformTool(ToolRegistry& registry, std::string className, Change change)
      : SelectTool(registry, std::move(className)), registry_(registry), change_(change) {}
  void press(const InputEvent& event) override;
  void drag(const InputEvent& event) override;
  void release(const InputEvent& event) override;
  void abort() override;
  void cleanup() override;

  /// How components around the selected ones go along.
  void setSoftSelection(edits::SoftSelection soft) { soft_ = std::move(soft); }

 private:
  /// What a drag needs to know of where it began.
  struct Grip {
    scene::SelectionList selection;
    viewport::ViewProjection projection;
    math::Vec3 middle;
    viewport::ViewPoint start;
  };
  void grip();
  void complain(const std::string& message);
  void follow(viewport::ViewPoint pointer);
  [[nodiscard]] Result<void> edit(const Grip& grip, viewport::ViewPoint pointer) const;

  ToolRegistry& registry_;
  Change change_;
  edits::SoftSelection soft_;
  viewport::ViewPoint start_, last_;
  std::string panel_;
  bool isDragging_ = false;
  std::string lastError_;  ///< said once a drag
  SessionSteps steps_;
  std::optional<Grip> grip_;
  std::unique_ptr<edits::Gesture> gesture_;
};

}  // namespace host::tools
