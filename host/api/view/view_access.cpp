#include "host/api/view/view_access.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "host/cmd/session.h"
#include "host/viewport/scene_gather.h"
#include "host/workspace/workspace.h"

namespace host::api {

using DrawOverride = MHWRender::MPxDrawOverride;

template <>
MHWRender::MFrameContext Access::make<MHWRender::MFrameContext>(SharedRep* rep) {
  MHWRender::MFrameContext context;
  context.handle_ = Handle(rep);
  return context;
}

template <>
MHWRender::MDrawContext Access::make<MHWRender::MDrawContext>(SharedRep* rep) {
  MHWRender::MDrawContext context;
  context.handle_ = Handle(rep);
  return context;
}

template <>
MHWRender::MUIDrawManager Access::make<MHWRender::MUIDrawManager>(SharedRep* rep) {
  MHWRender::MUIDrawManager manager;
  manager.handle_ = Handle(rep);
  return manager;
}

template <>
MEvent Access::make<MEvent>(SharedRep* rep) {
  const Handle kept(rep);
  const tools::InputEvent& from = static_cast<EventRep*>(rep)->event;
  MEvent event;
  const auto pixel = [](double position) {  // the pixel that the place lies in
    constexpr double kLast = std::numeric_limits<short>::max();
    return static_cast<short>(std::floor(std::clamp(position, -kLast, kLast)));
  };
  event.x_ = pixel(from.position.x);
  event.y_ = pixel(from.position.y);
  event.button_ = from.button == tools::MouseButton::Left     ? MEvent::kLeftMouse
                  : from.button == tools::MouseButton::Middle ? MEvent::kMiddleMouse
                                                              : 0;
  event.modifiers_ = (from.shift ? MEvent::shiftKey : 0) | (from.control ? MEvent::controlKey : 0);
  event.isRelease_ = from.kind == tools::InputKind::KeyRelease;
  return event;
}

// The member template that the host's own representations are read through; here it reaches the
// callback.
template <>
const DrawCallback* Access::rep<const DrawCallback, DrawOverride>(const DrawOverride& object) {
  return &object.callback_;
}

DrawCallback callbackOf(const DrawOverride& drawOverride) {
  return *Access::rep<const DrawCallback, DrawOverride>(drawOverride);
}

FrameRep* makeFrame(const std::string& panel) {
  cmd::Session& session = cmd::currentSession();
  auto& views = workspace::workspaceOf(session).views;
  workspace::View* found = panel.empty() ? nullptr : views.find(panel);
  const workspace::View& view = found ? *found : views.active();
  const auto path = workspace::cameraPath(session.document(), view.cameraName);
  if (!path) return nullptr;
  const auto camera = viewport::gatherCamera(*path);
  if (!camera) return nullptr;
  auto* frame = new FrameRep(*camera, view.port);
  frame->options = view.options;
  frame->camera = *path;
  return frame;
}

}  // namespace host::api
