#pragma once

#include <maya/M3dView.h>

#include <optional>
#include <string>

#include "host/api/core/access.h"
#include "host/viewport/projection.h"
#include "host/workspace/workspace.h"

namespace host::api {

/// What an M3dView refers to: a view by its panel's name, as views come and go with scripts.
struct ViewRep final : SharedRep {
  explicit ViewRep(std::string panelIn) : panel(std::move(panelIn)) {}
  std::string panel;
};

[[nodiscard]] M3dView wrap(const workspace::View& view);
/// The view behind; null when it is gone or was never set.
[[nodiscard]] workspace::View* viewOf(const M3dView& view, MStatus* status = nullptr);
/// A handle that a view has to itself, the same as long as its panel has its name; null for none.
[[nodiscard]] MNativeWindowHdl windowHandleOf(const workspace::View* view);
/// Its camera in its port; none when the camera is gone.
[[nodiscard]] std::optional<viewport::ViewProjection> projectionOf(const M3dView& view,
                                                                   MStatus* status = nullptr);
/// Draws the views anew when the program is idle; calls in between are one.
void scheduleViewRefresh();
/// The colour of an entry of the table of interface colours, from 0.
[[nodiscard]] MColor indexedColor(unsigned int index);
[[nodiscard]] unsigned int indexedColorCount();

}  // namespace host::api
