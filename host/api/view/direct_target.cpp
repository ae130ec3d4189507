#include "host/api/view/direct_target.h"

#include <utility>

#include "host/cmd/session.h"
#include "host/workspace/workspace.h"

namespace host::api {

DirectTarget& directTarget() {
  static DirectTarget target;
  return target;
}

DirectTarget::Scope::Scope(viewport::Backend& backend, const math::Matrix4& world) {
  directTarget().frame_ = &backend;
  directTarget().world_ = world;
}

DirectTarget::Scope::~Scope() {
  DirectTarget& target = directTarget();
  while (target.isOpen()) target.end();  // the object left its section open
  target.frame_ = nullptr;
  target.world_ = {};
}

viewport::Backend* DirectTarget::target() {
  if (frame_) return frame_;
  const auto backend = workspace::workspaceOf(cmd::currentSession()).views.offscreen();
  return backend ? *backend : nullptr;
}

bool DirectTarget::begin() {
  if (depth_++ > 0) return opened_ != nullptr;
  viewport::Backend* backend = target();
  isLive_ = false;
  if (!backend) return false;
  opened_ = backend;
  return isLive_ = backend->beginDirect(world_);
}

void DirectTarget::end() {
  if (depth_ == 0 || --depth_ > 0) return;
  viewport::Backend* backend = std::exchange(opened_, nullptr);
  if (backend) backend->endDirect();
  viewport::DrawList texts = std::exchange(texts_, {});
  // Between frames nothing but direct sections may be drawn.
  if (backend && frame_ && !texts.texts.empty()) backend->draw(texts);
}

void DirectTarget::addText(viewport::TextItem text) {
  text.position = math::transformPoint(text.position, world_);
  texts_.texts.push_back(std::move(text));
}

}  // namespace host::api
