#pragma once

#include <maya/MDrawContext.h>
#include <maya/MEvent.h>
#include <maya/MFrameContext.h>
#include <maya/MPxDrawOverride.h>
#include <maya/MUIDrawManager.h>
#include <maya/MViewport2Renderer.h>

#include "host/api/core/access.h"
#include "host/tools/input_event.h"
#include "host/viewport/scene_view.h"

namespace host::api {

/// What a frame context answers from. Also a draw context's, whose object's matrix is `world`.
struct FrameRep final : SharedRep {
  FrameRep(const viewport::Camera& lens, viewport::PortSize port) : projection(lens, port) {}
  viewport::ViewProjection projection;
  viewport::ViewOptions options;
  scene::DagPath camera;
  math::Matrix4 world;
};

/// What a draw manager draws into, and with which pen.
struct DrawRep final : SharedRep {
  viewport::DrawList* list = nullptr;
  math::Matrix4 world;  ///< of the object that is drawn
  viewport::Rgba color{1, 1, 1, 1};
  float pointSize = 1, lineWidth = 1, fontHeight = 12;
  MHWRender::MUIDrawManager::LineStyle lineStyle = MHWRender::MUIDrawManager::kSolid;
  MHWRender::MUIDrawManager::PaintStyle paintStyle = MHWRender::MUIDrawManager::kFlat;
  int priority = 0;
  bool isXray = false;
  bool isOpen = false;  ///< between beginDrawable and endDrawable
};

/// An event in the form in which it is made into the API's.
struct EventRep final : SharedRep {
  explicit EventRep(tools::InputEvent eventIn) : event(std::move(eventIn)) {}
  tools::InputEvent event;
};

// These classes can be made by the host only.
template <>
MHWRender::MFrameContext Access::make<MHWRender::MFrameContext>(SharedRep* rep);
template <>
MHWRender::MDrawContext Access::make<MHWRender::MDrawContext>(SharedRep* rep);
template <>
MHWRender::MUIDrawManager Access::make<MHWRender::MUIDrawManager>(SharedRep* rep);
/// Takes an EventRep, which is not kept.
template <>
MEvent Access::make<MEvent>(SharedRep* rep);
using DrawCallback = MHWRender::MPxDrawOverride::GeometryDrawOverrideCb;
/// A draw override's callback; null when it has none.
[[nodiscard]] DrawCallback callbackOf(const MHWRender::MPxDrawOverride& drawOverride);

[[nodiscard]] inline viewport::Rgba toRgba(const MColor& color) {
  return {color.r, color.g, color.b, color.a};
}
[[nodiscard]] inline MColor toMColor(const viewport::Rgba& color) {
  return {color.r, color.g, color.b, color.a};
}

/// The frame of a view of the session: what a frame context is made of. Null when its camera is
/// gone.
[[nodiscard]] FrameRep* makeFrame(const std::string& panel);

}  // namespace host::api
